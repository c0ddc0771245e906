// The functions that the fuzzer calls with its inputs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/test_window.h"

namespace fuzz {

// The size in bytes of the area for an input.
inline constexpr size_t kAreaSize = 8192;
// A copy of the bytes, truncated to the area's size, at the end of the area: reading beyond it ends the program.
std::string_view PutAtEnd(const kvtest::GuardedBytes& area, std::string_view bytes);

struct Target {
  const char* name;
  size_t longest;  // maximum size of an input in bytes
  std::vector<std::string> (*examples)();
  std::vector<std::string> words;
  // Processes one input, whose end is guarded. Returns the contract that the result violates, or null; `accepted` tells
  // whether the input was valid.
  const char* (*feed)(std::string_view input, bool* accepted);
};

// Targets that make no system calls.
std::vector<Target> PlainTargets();

// All targets.
std::vector<Target> Targets();

// Bytes that are interesting in encoded text and lengths.
extern const std::vector<std::string> kByteWords;

}  // namespace fuzz
