#include "views3d/mesh_depth_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

namespace kv {

namespace {

constexpr int kDigitBits = 11, kDigits = 6;  // six digits take in the 64 bits of a key
constexpr std::uint32_t kDigitValues = 1u << kDigitBits;

struct DepthEntry {
  std::uint64_t key;
  std::uint32_t triangle;  // its index before the sort
};

// A whole number that orders as the depth does.
std::uint64_t DepthKey(double depth) {
  if (std::isnan(depth)) return 0;
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(depth + 0.0);  // makes 0 of -0
  return bits & kSign ? ~bits : bits | kSign;
}

std::uint32_t DigitOf(std::uint64_t key, int digit) {
  return static_cast<std::uint32_t>(key >> (digit * kDigitBits)) & (kDigitValues - 1);
}

using DigitCounts = std::array<std::array<std::uint32_t, kDigitValues>, kDigits>;

// From the lowest digit to the highest; a pass keeps the order of equal digits. A digit in which all keys agree needs
// no pass. Returns which of the two arrays holds the result.
DepthEntry* SortEntries(DepthEntry* entries, DepthEntry* other, size_t count, DigitCounts* counts) {
  for (int digit = 0; digit < kDigits; ++digit) {
    auto& places = (*counts)[digit];
    if (places[DigitOf(entries[0].key, digit)] == count) continue;
    std::uint32_t next = 0;
    for (std::uint32_t& place : places) next += std::exchange(place, next);
    for (size_t i = 0; i < count; ++i) other[places[DigitOf(entries[i].key, digit)]++] = entries[i];
    std::swap(entries, other);
  }
  return entries;
}

// Moves every triangle to its place, along the rings that the order makes; empties the order by that.
void MoveIntoOrder(std::span<MeshTriangle> triangles, DepthEntry* order) {
  for (std::uint32_t first = 0; first < triangles.size(); ++first) {
    if (order[first].triangle == first) continue;
    const MeshTriangle moved = triangles[first];
    std::uint32_t place = first;
    for (std::uint32_t from; (from = std::exchange(order[place].triangle, place)) != first; place = from) {
      triangles[place] = triangles[from];
    }
    triangles[place] = moved;
  }
}

}  // namespace

void SortByDepth(std::span<MeshTriangle> triangles) {
  const size_t count = triangles.size();
  if (count < 2) return;
  const std::unique_ptr<DepthEntry[]> entries(new (std::nothrow) DepthEntry[2 * count]);
  const std::unique_ptr<DigitCounts> counts(new (std::nothrow) DigitCounts{});
  if (!entries || !counts) {
    std::stable_sort(triangles.begin(), triangles.end(), [](const MeshTriangle& first, const MeshTriangle& second) {
      return DepthKey(first.depth) < DepthKey(second.depth);
    });
    return;
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t key = DepthKey(triangles[i].depth);
    entries[i] = {key, i};
    for (int digit = 0; digit < kDigits; ++digit) ++(*counts)[digit][DigitOf(key, digit)];
  }
  MoveIntoOrder(triangles, SortEntries(entries.get(), entries.get() + count, count, counts.get()));
}

}  // namespace kv
