// Random and mutated inputs, the same for the same seed, in memory whose end is the end of what may be read.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace fuzz {

// Bytes at the end of a page with no access behind it: reading one byte too many ends the program.
class GuardedArea {
 public:
  explicit GuardedArea(size_t capacity);
  ~GuardedArea();
  GuardedArea(const GuardedArea&) = delete;
  GuardedArea& operator=(const GuardedArea&) = delete;

  // A copy of the bytes, cut at the capacity, that ends where the area does.
  std::string_view Put(std::string_view bytes);

 private:
  size_t capacity_;
  char* base_;
  char* end_;
};

struct Source {
  std::mt19937 random;
  std::span<const std::string> examples;  // what good input looks like
  std::span<const std::string> words;     // what is worth putting in
  size_t longest;
};

// One input: pure noise, noise of the examples' own characters, or an example (or two, joined) with some of its bytes
// changed, taken out, doubled or replaced by words.
std::string NextInput(Source* source);

}  // namespace fuzz
