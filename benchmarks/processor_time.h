// Processor time, which depends little on other load.
#pragma once

#include <windows.h>

#include <chrono>

inline double CpuSeconds() {
  FILETIME created, ended, kernel, user;
  GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
  const auto seconds = [](FILETIME time) {
    return static_cast<double>(ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart) / 1e7;
  };
  return seconds(kernel) + seconds(user);
}

// The processor time of one call of `work` in ms, averaged over many calls.
template <class Work>
double MillisecondsEach(Work work) {
  constexpr auto kMinTime = std::chrono::milliseconds(600);
  work(0);
  const double cpu = CpuSeconds();
  const auto start = std::chrono::steady_clock::now();
  int count = 0;
  do {
    work(++count);
  } while (std::chrono::steady_clock::now() - start < kMinTime);
  return (CpuSeconds() - cpu) * 1000 / count;
}
