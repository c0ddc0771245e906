// The flying model of the mesh page, and the ground beneath it. Lengths in model units: the craft is about 480 across;
// x to the right, y forward, z up, the craft's middle at the origin.
#pragma once

#include <windows.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace gallery {

struct Vector {
  double x, y, z;
};
inline Vector operator+(const Vector& a, const Vector& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector operator*(const Vector& a, double factor) {
  return {a.x * factor, a.y * factor, a.z * factor};
}
inline Vector operator-(const Vector& a, const Vector& b) {
  return a + b * -1;
}
inline double Dot(const Vector& a, const Vector& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vector Cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vector& a) {
  return std::sqrt(Dot(a, a));
}
// No numbers for a vector without length.
inline Vector Unit(const Vector& a) {
  return a * (1 / Length(a));
}

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
