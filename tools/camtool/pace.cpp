#include "tools/camtool/pace.h"

#include <windows.h>

namespace camtool {

double Now() {
  LARGE_INTEGER count, frequency;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void SleepUntil(double time) {
  const double left = time - Now();
  if (left > 0) Sleep(static_cast<DWORD>(left * 1000 + 0.5));
}

}  // namespace camtool
