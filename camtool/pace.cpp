#include "camtool/pace.h"

#include <algorithm>
#include <cmath>

namespace camtool {

double Now() {
  LARGE_INTEGER count, frequency;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void SleepUntil(double time) {
  const double left = time - Now();
  if (left > 0) Sleep(static_cast<DWORD>(std::lround(left * 1000)));
}

bool WaitUntil(double time, HANDLE stop) {
  constexpr double kLongestMs = 1e9;
  const double leftMs = std::clamp((time - Now()) * 1000, 0.0, kLongestMs);
  return WaitForSingleObject(stop, static_cast<DWORD>(std::lround(leftMs))) != WAIT_OBJECT_0;
}

bool WaitExactlyUntil(double time, HANDLE stop) {
  constexpr double kLatestWake = 0.002;
  if (!WaitUntil(time - kLatestWake, stop)) return false;
  while (Now() < time) YieldProcessor();
  return true;
}

}  // namespace camtool
