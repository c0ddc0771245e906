#include "views3d/mesh_depth_order.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include "views3d/mesh_model.h"

namespace kv {

namespace {

constexpr int kDigitBits = 11, kDigits = 3;  // three digits take in the 32 bits of a place
constexpr std::uint32_t kDigitValues = 1u << kDigitBits;

struct DepthEntry {
  std::uint32_t place;     // where between the least and the greatest depth
  std::uint32_t triangle;  // its index before the sort
};

// A whole number that orders as the depth does, to the last bit.
std::uint64_t DepthKey(double depth) {
  if (std::isnan(depth)) return 0;
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(depth + 0.0);  // makes 0 of -0
  return bits & kSign ? ~bits : bits | kSign;
}

std::uint32_t DigitOf(std::uint32_t place, int digit) {
  return (place >> (digit * kDigitBits)) & (kDigitValues - 1);
}

using DigitCounts = std::array<std::array<std::uint32_t, kDigitValues>, kDigits>;

// Places rise with the depths; where the depths lie too far apart for that, all are at one place.
void FillEntries(std::span<const MeshTriangle> triangles, DepthEntry* entries, DigitCounts* counts) {
  double least = std::numeric_limits<double>::infinity(), greatest = -least;
  for (const MeshTriangle& triangle : triangles) {
    const double depth = triangle.depth;  // may be off a double's natural place, where no reference can refer to it
    least = std::min(least, depth);
    greatest = std::max(greatest, depth);
  }
  const double range = greatest - least, perUnit = std::numeric_limits<std::uint32_t>::max() / range;
  const bool placed = range > 0 && std::isfinite(range) && std::isfinite(perUnit);
  for (std::uint32_t i = 0; i < triangles.size(); ++i) {
    const double depth = triangles[i].depth;
    const bool numbered = placed && !std::isnan(depth);
    entries[i] = {numbered ? static_cast<std::uint32_t>((depth - least) * perUnit) : 0, i};
    for (int digit = 0; digit < kDigits; ++digit) ++(*counts)[digit][DigitOf(entries[i].place, digit)];
  }
}

// From the lowest digit to the highest; a pass keeps the order of equal digits. A digit in which all places agree needs
// no pass. Returns which of the two arrays holds the result.
DepthEntry* SortPlaces(DepthEntry* entries, DepthEntry* other, size_t count, DigitCounts* counts) {
  for (int digit = 0; digit < kDigits; ++digit) {
    auto& starts = (*counts)[digit];
    if (starts[DigitOf(entries[0].place, digit)] == count) continue;
    std::uint32_t next = 0;
    for (std::uint32_t& start : starts) next += std::exchange(start, next);
    for (size_t i = 0; i < count; ++i) other[starts[DigitOf(entries[i].place, digit)]++] = entries[i];
    std::swap(entries, other);
  }
  return entries;
}

// Depths so near to each other that they share a place.
void SortWithinPlaces(std::span<const MeshTriangle> triangles, DepthEntry* entries) {
  const auto nearer = [triangles](const DepthEntry& first, const DepthEntry& second) {
    return DepthKey(triangles[first.triangle].depth) < DepthKey(triangles[second.triangle].depth);
  };
  DepthEntry* const end = entries + triangles.size();
  for (DepthEntry* run = entries; run != end;) {
    DepthEntry* next = run + 1;
    while (next != end && next->place == run->place) ++next;
    if (next - run > 1 && !std::is_sorted(run, next, nearer)) std::stable_sort(run, next, nearer);
    run = next;
  }
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
    std::ranges::stable_sort(triangles, [](const MeshTriangle& first, const MeshTriangle& second) {
      return DepthKey(first.depth) < DepthKey(second.depth);
    });
    return;
  }
  FillEntries(triangles, entries.get(), counts.get());
  DepthEntry* sorted = SortPlaces(entries.get(), entries.get() + count, count, counts.get());
  SortWithinPlaces(triangles, sorted);
  MoveIntoOrder(triangles, sorted);
}

}  // namespace kv
