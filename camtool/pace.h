// Time for things that must happen at a steady pace. Any thread.
#pragma once

#include <windows.h>

namespace camtool {

// Seconds on a clock that only goes forward.
double Now();

// Sleeps until that time of the clock; returns at once when it has passed. As exact as the system's timer period, which
// the caller sets.
void SleepUntil(double time);

// The same, but `stop` ends it early. False when it was signalled.
bool WaitUntil(double time, HANDLE stop);

// The same, to some microseconds on an idle machine: the last two milliseconds, by which a system may wake a thread too
// late, are spent looking at the clock. They take a processor core.
bool WaitExactlyUntil(double time, HANDLE stop);

}  // namespace camtool
