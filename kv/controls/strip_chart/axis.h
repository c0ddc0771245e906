// The strip chart's axes: steps of 1, 2 and 5, time steps, ranges that end on a tick, and labels. Pure; any thread.
#pragma once

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace kv {

// In values or, of a logarithmic axis, in their decimal logarithms.
struct AxisRange {
  double low, high;
};

// Where a value is on an axis; values of 0 and below are infinitely far down on a logarithmic one.
inline double AxisPosition(double value, bool isLogarithmic) {
  return !isLogarithmic ? value : value > 0 ? std::log10(value) : -std::numeric_limits<double>::infinity();
}

// The smallest number of the form 1, 2 or 5 times a power of ten that is at least `least` (positive).
double NiceStep(double least);

enum class TimeFormat { kSeconds, kTimeOfDay, kElapsed };
// The same for times in seconds. Unless in seconds, steps from a second to a day divide a minute, an hour or a day.
double TimeStep(double least, TimeFormat format);

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

// The ticks of a value axis, with grid lines; those between decades have no text.
struct AxisTick {
  double position;
  std::wstring text;
};
std::vector<AxisTick> AxisTicks(const AxisRange& range, double step, bool isLogarithmic);

// A number with the decimals that the step needs, or with a few digits and a power of ten.
std::wstring TickText(double value, double step);
// "75.2 s"; "00:01:15.2" or "00:01"; "1:15.2", "1:02:03" or "-0:05".
std::wstring TimeText(double seconds, double step, TimeFormat format);

}  // namespace kv
