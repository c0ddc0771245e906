// From floating to whole numbers without undefined results. Any thread.
#pragma once

#include <climits>

namespace kv {

// The value without its fraction, towards zero; the nearest int when it lies beyond, 0 for NaN.
constexpr int ToInt(double value) {
  if (value >= INT_MAX) return INT_MAX;
  if (value <= INT_MIN) return INT_MIN;
  return value == value ? static_cast<int>(value) : 0;
}

}  // namespace kv
