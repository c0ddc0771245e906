// The simulated flight of the pages: pure functions of time in seconds.
#pragma once

#include <cmath>

#include "kv/framework/numbers.h"

namespace gallery {

inline double Wave(double seconds, double period, double phase = 0) {
  return std::sin((seconds / period + phase) * 2 * kv::kPi);
}

inline double Airspeed(double t) {
  return 112 + 28 * Wave(t, 23) + 6 * Wave(t, 4.1);
}
inline double Heading(double t) {
  return 275 + 60 * Wave(t, 47) + 4 * Wave(t, 5.3);
}
inline double Altitude(double t) {
  return 4200 + 1900 * Wave(t, 61);
}
inline double Climb(double t) {
  return 12 * Wave(t, 61, 0.25) + 1.5 * Wave(t, 3.7);
}
inline double Power(double t) {
  return 68 + 26 * Wave(t, 61, 0.2);
}
// Pitch and roll follow from climbing and turning.
inline double Pitch(double t) {
  return 8 * Wave(t, 61, 0.25) + 0.7 * Wave(t, 3.7);
}
inline double Roll(double t) {
  return 24 * Wave(t, 47, 0.25) + 5 * Wave(t, 5.3, 0.25);
}
inline double Slip(double t) {
  return 0.35 * Wave(t, 7.9);
}

}  // namespace gallery
