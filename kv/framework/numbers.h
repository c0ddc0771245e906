// Conversion of floating-point numbers to integers, of degrees and radians, and to fixed-point text. Any thread; no
// state.
#pragma once

#include <climits>
#include <cstddef>
#include <numbers>

namespace kv {

// Returns the value truncated toward zero, clamped to the range of int; 0 for NaN.
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

// For a text with `decimals` digits after the point: returns 0 for a number that would be shown as -0, others
// unchanged.
double WithoutMinusZero(double value, int decimals);

// Returns a heading or bearing in degrees from 0 up to, not including, 360; 0 for NaN and infinity.
double NormalHeading(double degrees);

// The same, rounded for a text: without decimals, 359.6 and -0.2 give 0.
double RoundedHeading(double degrees, int decimals);

// Fixed-point text, identical to the output of the C runtime's "%.10f" etc. in the "C" locale, but several times
// faster.

inline constexpr int kMaxFixedDecimals = 10;
// The maximum number of characters: sign, 309 digits, point and decimals.
inline constexpr size_t kFixedNumberCapacity = 328;

// Writes `value` with `decimals` (1..kMaxFixedDecimals) digits after the point, without a terminator, and returns the
// end of the text. `to` must hold kFixedNumberCapacity characters. Infinity and NaN are written as the runtime prints
// them.
char* FormatFixed(char* to, double value, int decimals);

}  // namespace kv
