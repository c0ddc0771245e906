// Numbers in fixed-point notation, character for character what the C run-time's "%.10f" and its like print in the "C"
// locale, but several times faster. Any thread; no state.
#pragma once

#include <cstddef>

namespace kv {

inline constexpr int kMaxFixedDecimals = 10;
// Room that any number takes at most: sign, 309 digits, point and decimals.
inline constexpr size_t kFixedNumberRoom = 328;

// Writes `value` with `decimals` (1..kMaxFixedDecimals) digits after the point, without a terminator, and returns the
// end of the text. `to` has room for kFixedNumberRoom characters. Values that are not finite come out as the run-time
// prints them.
char* PutFixed(char* to, double value, int decimals);

}  // namespace kv
