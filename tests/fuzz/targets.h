// What is fed to the fuzzer's inputs.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

struct Target {
  const char* name;
  size_t longest;  // bytes of an input
  // Of every million that are asked for, so many are made: the slow ones get fewer.
  double share;
  std::vector<std::string> (*examples)();
  std::vector<std::string> words;
  // Feeds one input, whose end is guarded. False when the answer breaks a promise (`why` says which); whether the input
  // was taken for good goes to `accepted`.
  bool (*feed)(std::string_view input, bool* accepted, const char** why);
};

// Those that ask nothing of the system.
std::vector<Target> PlainTargets();

// All.
std::span<const Target> Targets();

// Bytes worth putting into encoded text and lengths.
extern const std::vector<std::string> kByteWords;

// False, with the promise that an answer breaks as the reason.
bool Broken(const char** why, const char* promise);

}  // namespace fuzz
