#include "kv/framework/coverage.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <utility>

namespace kv {

namespace {

constexpr double kMaxCoordinate = 1 << 24;
constexpr int kWordBits = 32;

// Rounds half up. The small constant compensates rounding errors of the sum, so that a pixel gets the same level
// whatever area of its shape is requested.
std::uint8_t LevelOf(double covered) {
  return static_cast<std::uint8_t>(std::min(std::fabs(covered), 1.0) * 255 + 0.5001);
}

}  // namespace

bool CoverageShape::Begin(const PixelArea& area) {
  area_ = area;
  added_ = count_ = first_ = last_ = 0;
  scanning_ = false;
  width_ = 0;
  if (area.right <= area.left || area.bottom <= area.top) return true;
  const int width = area.right - area.left;
  if (width > rowCapacity_) {
    // Zeroed here, and left zeroed after each row.
    cells_.reset(new (std::nothrow) double[width]());
    touched_.reset(new (std::nothrow) std::uint32_t[width / kWordBits + 1]());
    rowCapacity_ = cells_ && touched_ ? width : 0;
    if (!rowCapacity_) return false;
  }
  width_ = width;
  return true;
}

bool CoverageShape::AddContour(std::span<const PointD> corners) {
  if (scanning_ || width_ == 0 || !HasCapacityFor(corners.size())) return false;
  const int before = count_;
  for (size_t i = 0; i < corners.size(); ++i) {
    const PointD &a = corners[i], &b = corners[i + 1 < corners.size() ? i + 1 : 0];
    if (std::isnan(a.x) || std::isnan(a.y)) {
      count_ = before;
      return false;
    }
    const auto limited = [](double value) { return std::clamp(value, -kMaxCoordinate, kMaxCoordinate); };
    const PointD from{limited(a.x), limited(a.y)}, to{limited(b.x), limited(b.y)};
    const bool down = to.y > from.y;
    const PointD &upper = down ? from : to, &lower = down ? to : from;
    const bool counts = upper.y < lower.y && lower.y > area_.top && upper.y < area_.bottom &&
                        std::min(from.x, to.x) < area_.right;  // an edge further right covers nothing of the area
    if (!counts) continue;
    edges_[count_++] = {upper.x, (lower.x - upper.x) / (lower.y - upper.y), upper.y, lower.y, down ? -1.0 : 1.0};
  }
  added_ += static_cast<int>(corners.size());
  return true;
}

bool CoverageShape::Next(CoverageSpan* span) {
  if (!scanning_) {
    scanning_ = true;
    std::sort(edges_.begin(), edges_.begin() + count_, [](const Edge& a, const Edge& b) { return a.top < b.top; });
    row_ = area_.top - 1;
    cell_ = width_;
  }
  for (;;) {
    while (cell_ < width_) {
      const int cell = cell_;
      covered_ += std::exchange(cells_[cell], 0.0);
      touched_[cell / kWordBits] &= ~(1u << cell % kWordBits);
      cell_ = NextTouched(cell);
      if (const std::uint8_t level = LevelOf(covered_)) {
        *span = {area_.left + cell, row_, cell_ - cell, level};
        return true;
      }
    }
    if (!StartRow()) return false;
  }
}

// Advances to the next row that an edge reaches.
bool CoverageShape::StartRow() {
  ++row_;
  if (first_ == last_) {
    if (last_ == count_) {
      count_ = first_ = last_ = 0;
      return false;
    }
    row_ = std::max(row_, static_cast<int>(std::floor(edges_[last_].top)));
  }
  if (row_ >= area_.bottom) {
    count_ = first_ = last_ = 0;
    return false;
  }
  const double top = row_, bottom = row_ + 1.0;
  while (last_ < count_ && edges_[last_].top < bottom) ++last_;
  for (int i = first_; i < last_; ++i) {
    const Edge edge = edges_[i];
    const double from = std::max(edge.top, top), to = std::min(edge.bottom, bottom);
    if (to > from) {
      const double origin = edge.x - area_.left;
      AddToRow(origin + edge.slope * (from - edge.top), origin + edge.slope * (to - edge.top),
               edge.direction * (to - from));
    }
    // Replaces an edge that ends here with the first one.
    if (edge.bottom <= bottom) edges_[i] = edges_[first_++];
  }
  covered_ = 0;
  cell_ = touched_[0] & 1 ? 0 : NextTouched(0);
  return true;
}

// Adds the part of an edge within the row, between two x relative to the area. It covers every pixel to its right by
// `cover`, and the pixels that it crosses in part.
void CoverageShape::AddToRow(double from, double to, double cover) {
  if (from > to) std::swap(from, to);
  if (from >= width_) return;
  if (to <= 0) {
    AddToCell(0, cover);
    return;
  }
  if (from < 0) {
    const double here = -from * cover / (to - from);
    AddToCell(0, here);
    cover -= here;
    from = 0;
  }
  const auto add = [this](int cell, double begin, double end, double here) {
    const double free = (begin + end) / 2 - cell;  // the part of this pixel to the left of the edge
    AddToCell(cell, here * (1 - free));
    AddToCell(cell + 1, here * free);
  };
  int cell = static_cast<int>(from);
  if (to > cell + 1) {
    const double coverPerPixel = cover / (to - from);
    for (; to > cell + 1 && cell < width_; ++cell) {
      const double here = coverPerPixel * (cell + 1 - from);
      add(cell, from, cell + 1, here);
      cover -= here;
      from = cell + 1;
    }
  }
  add(cell, from, to, cover);
}

void CoverageShape::AddToCell(int cell, double cover) {
  if (cell >= width_) return;
  cells_[cell] += cover;
  touched_[cell / kWordBits] |= 1u << cell % kWordBits;
}

// Returns the next touched cell after this one, or the end of the row.
int CoverageShape::NextTouched(int cell) const {
  int word = ++cell / kWordBits;
  std::uint32_t bits = cell < width_ ? touched_[word] >> cell % kWordBits << cell % kWordBits : 0;
  while (bits == 0 && (word + 1) * kWordBits < width_) bits = touched_[++word];
  return bits ? std::min(word * kWordBits + std::countr_zero(bits), width_) : width_;
}

}  // namespace kv
