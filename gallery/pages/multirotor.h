// The flying model of the mesh page, and the ground beneath it. Lengths in model units: the craft is about 480 across;
// x to the right, y forward, z up, the craft's middle at the origin.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>

namespace gallery {

// What the mesh page makes of a triangle's attribute word: colour 0x00RRGGBB and these bits.
inline constexpr std::uint32_t kPartGlass = 0x80000000;  // translucent, seen from both sides; shown in the shade of its
                                                         // second vertex
inline constexpr std::uint32_t kPartShiny = 0x40000000;

inline constexpr int kRotors = 4;
inline constexpr int kRotorRing = 72;

struct Multirotor {
  HGLOBAL mesh;                   // null when memory is short
  std::array<int, kRotors> hubs;  // the vertex in the middle of each rotor; its ring follows
};

// Both belong to the caller (kv::meshDestroy).
Multirotor CreateMultirotor();
HGLOBAL CreateGround();

// Turns all rotors a little further, neighbours against each other.
void TurnRotors(const Multirotor& craft);

}  // namespace gallery
