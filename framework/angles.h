// Degrees and radians, for all who turn, project or draw. Pure; any thread.
#pragma once

#include <numbers>

namespace kv {

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kRadiansPerDegree = kPi / 180;
static_assert(kRadiansPerDegree == 0.017453292519943295);

constexpr double Radians(double degrees) {
  return degrees * kRadiansPerDegree;
}

constexpr double Degrees(double radians) {
  return radians / kRadiansPerDegree;
}

}  // namespace kv
