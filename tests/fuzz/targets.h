// What is fed to the fuzzer's inputs.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/test_window.h"

namespace fuzz {

// Bytes of an area in which an input is fed.
inline constexpr size_t kAreaSize = 8192;
// A copy of the bytes, cut at the area's size, that ends where the area does: reading one byte too many ends the
// program.
std::string_view PutAtEnd(const kvtest::GuardedBytes& area, std::string_view bytes);

struct Target {
  const char* name;
  size_t longest;  // bytes of an input
  std::vector<std::string> (*examples)();
  std::vector<std::string> words;
  // Feeds one input, whose end is guarded. The promise that the answer breaks, or null; whether the input was taken for
  // good goes to `accepted`.
  const char* (*feed)(std::string_view input, bool* accepted);
};

// Those that ask nothing of the system.
std::vector<Target> PlainTargets();

// All.
std::vector<Target> Targets();

// Bytes worth putting into encoded text and lengths.
extern const std::vector<std::string> kByteWords;

}  // namespace fuzz
