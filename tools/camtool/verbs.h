// camtool's verbs. Each takes the arguments behind its name and returns the process's exit code.
#pragma once

#include <span>

namespace camtool {

inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsageError = 2;  // main prints the verb's usage

struct Verb {
  const char* name;
  const char* usage;
  const char* purpose;
  int (*run)(std::span<char* const> arguments);
};

// Streams records until the time is up, Ctrl+C, or the port fails.
int Simulate(std::span<char* const> arguments);

}  // namespace camtool
