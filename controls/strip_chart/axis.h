// The strip chart's axes: steps of 1, 2 and 5, steps of the clock, ranges that end on a tick, and what stands beside
// the ticks. Pure; any thread.
#pragma once

#include <string>

namespace kv {

struct AxisRange {
  double low, high;
};

// The least of 1, 2 and 5 times a power of ten that is not below `least` (positive).
double NiceStep(double least);
// The same for times in seconds; from a second to a day, with `clock`, what divides a minute, an hour or a day.
double TimeStep(double least, bool clock);

// The range in which `low` to `high` lies between multiples of a step of which about `ticks` fit; around a single value
// some room.
AxisRange NiceRange(double low, double high, int ticks);

// The index of the first tick, a multiple of `step`, that is not below a value.
double FirstTick(double low, double step);

// A number in as many decimal places as the step needs, or to a few digits with a power of ten.
std::wstring TickText(double value, double step);
// A time: seconds with their unit, or the time of day.
std::wstring TimeText(double seconds, double step, bool clock);

}  // namespace kv
