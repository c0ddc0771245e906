// Numbers: from floating to whole ones without undefined results, degrees and radians, and text in fixed-point
// notation. Any thread; no state.
#pragma once

#include <climits>
#include <cstddef>
#include <numbers>

namespace kv {

// The value without its fraction, towards zero; the nearest int when it lies beyond, 0 for NaN.
constexpr int ToInt(double value) {
  if (value >= INT_MAX) return INT_MAX;
  if (value <= INT_MIN) return INT_MIN;
  return value == value ? static_cast<int>(value) : 0;
}

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kRadiansPerDegree = kPi / 180;
static_assert(kRadiansPerDegree == 0.017453292519943295);

constexpr double Radians(double degrees) {
  return degrees * kRadiansPerDegree;
}

constexpr double Degrees(double radians) {
  return radians / kRadiansPerDegree;
}

// Numbers in fixed-point notation, character for character what the C run-time's "%.10f" and its like print in the "C"
// locale, but several times faster.

inline constexpr int kMaxFixedDecimals = 10;
// Room that any number takes at most: sign, 309 digits, point and decimals.
inline constexpr size_t kFixedNumberCapacity = 328;

// Writes `value` with `decimals` (1..kMaxFixedDecimals) digits after the point, without a terminator, and returns the
// end of the text. `to` has room for kFixedNumberCapacity characters. Values that are not finite come out as the
// run-time prints them.
char* FormatFixed(char* to, double value, int decimals);

}  // namespace kv
