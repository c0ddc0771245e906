// The strip chart's axes: steps of 1, 2 and 5, time steps, ranges that end on a tick, and labels. Pure; any thread.
#pragma once

#include <string>

namespace kv {

struct AxisRange {
  double low, high;
};

// The smallest number of the form 1, 2 or 5 times a power of ten that is at least `least` (positive).
double NiceStep(double least);
// The same for times in seconds. With `clock`, steps from a second to a day divide a minute, an hour or a day.
double TimeStep(double least, bool clock);

// A range that contains `low` to `high` and ends on multiples of a step, with about `ticks` steps. If both are equal,
// the range has a margin.
AxisRange NiceRange(double low, double high, int ticks);

// The ticks (multiples of `step`) from `low` to `high`: at most kMaxTicks, however large the numbers are.
inline constexpr int kMaxTicks = 1000;
struct Ticks {
  double first, step;  // `first` in steps
  int count;

  double At(int i) const { return (first + i) * step; }
};
Ticks TicksBetween(double low, double high, double step);

// A number with the decimals that the step needs, or with a few digits and a power of ten.
std::wstring TickText(double value, double step);
// A time in seconds with unit, or the time of day.
std::wstring TimeText(double seconds, double step, bool clock);

}  // namespace kv
