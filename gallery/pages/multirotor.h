// The model of the mesh page, and the ground below. Lengths in model units: the craft is about 480 wide; x to the
// right, y forward, z up, with the craft's center at the origin.
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
// Gives NaN for a vector of length 0.
inline Vector Unit(const Vector& a) {
  return a * (1 / Length(a));
}

// Attributes of a triangle: color 0x00RRGGBB and these bits.
inline constexpr std::uint32_t kPartGlass = 0x80000000;  // translucent, seen from both sides; shown in the shade of its
                                                         // second vertex
inline constexpr std::uint32_t kPartShiny = 0x40000000;

inline constexpr int kRotors = 4;
inline constexpr int kRotorRing = 72;

struct Multirotor {
  HGLOBAL mesh;                   // null when allocation failed
  std::array<int, kRotors> hubs;  // the center vertex of each rotor, followed by its ring
};

// The caller owns both (kv::meshDestroy).
Multirotor CreateMultirotor();
HGLOBAL CreateGround();

// Advances all rotors, adjacent ones in opposite directions.
void TurnRotors(const Multirotor& craft);

}  // namespace gallery
