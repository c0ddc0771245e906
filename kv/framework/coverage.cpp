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
std::uint32_t LevelOf(double covered) {
  return static_cast<std::uint32_t>(static_cast<int>(std::min(std::fabs(covered), 1.0) * 255 + 0.5001));
}

}  // namespace

bool CoverageShape::Reserve(int width, int height) {
  if (width > widthCapacity_) {
    // Zeroed here, and left zeroed after each row.
    cells_.reset(new (std::nothrow) double[width]());
    touched_.reset(new (std::nothrow) std::uint32_t[width / kWordBits + 1]());
    spans_.reset(new (std::nothrow) CoverageSpan[width]);
    widthCapacity_ = cells_ && touched_ && spans_ ? width : 0;
  }
  if (height > heightCapacity_) {
    starts_.reset(new (std::nothrow) EdgeIndex[height]);
    heightCapacity_ = starts_ ? height : 0;
  }
  return widthCapacity_ >= width && heightCapacity_ >= height;
}

bool CoverageShape::Begin(const PixelArea& area) {
  area_ = area;
  added_ = count_ = waiting_ = reaching_ = 0;
  scanning_ = false;
  width_ = 0;
  if (area.right <= area.left || area.bottom <= area.top) return true;
  if (!Reserve(area.right - area.left, area.bottom - area.top)) return false;
  width_ = area.right - area.left;
  return true;
}

bool CoverageShape::AddContour(std::span<const PointD> corners) {
  if (scanning_ || width_ == 0 || !HasCapacityFor(corners.size())) return false;
  const int before = count_;
  double right = area_.left;
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
    right = std::max(right, from.x);
    if (!counts) continue;
    edges_[count_++] = {upper.x, (lower.x - upper.x) / (lower.y - upper.y), upper.y, lower.y, down ? -1.0 : 1.0,
                        kNoEdge};
  }
  if (right <= area_.left) count_ = before;  // the whole contour is to the left, where its edges cancel each other
  added_ += static_cast<int>(corners.size());
  return true;
}

std::span<const CoverageSpan> CoverageShape::NextRow(int* y) {
  if (!scanning_) {
    scanning_ = true;
    std::fill_n(starts_.get(), width_ ? area_.bottom - area_.top : 0, kNoEdge);
    for (waiting_ = 0; waiting_ < count_; ++waiting_) {
      const int row = static_cast<int>(std::max(edges_[waiting_].top - area_.top, 0.0));
      edges_[waiting_].next = std::exchange(starts_[row], static_cast<EdgeIndex>(waiting_));
    }
    row_ = area_.top - 1;
  }
  while (StartRow()) {
    if (const int spans = TakeSpans()) {
      *y = row_;
      return {spans_.get(), static_cast<size_t>(spans)};
    }
  }
  return {};
}

// Advances to the next row that an edge reaches, and adds all edges to its cells.
bool CoverageShape::StartRow() {
  ++row_;
  if (reaching_ == 0) {
    if (waiting_ == 0) return false;
    while (starts_[row_ - area_.top] == kNoEdge) ++row_;
  }
  if (row_ >= area_.bottom) {
    waiting_ = reaching_ = 0;
    return false;
  }
  for (EdgeIndex i = starts_[row_ - area_.top]; i != kNoEdge; i = edges_[i].next) {
    active_[reaching_++] = i;
    --waiting_;
  }
  const double top = row_, bottom = row_ + 1.0;
  for (int i = 0; i < reaching_;) {
    const Edge& edge = edges_[active_[i]];
    const double from = std::max(edge.top, top), to = std::min(edge.bottom, bottom);
    if (to > from) {
      const double origin = edge.x - area_.left;
      const double begin = origin + edge.slope * (from - edge.top), end = origin + edge.slope * (to - edge.top);
      const int cell = static_cast<int>(begin);
      if (begin >= 0 && end >= 0 && begin < width_ && static_cast<int>(end) == cell) {  // most edges are steep
        AddToPixel(cell, (begin + end) / 2 - cell, edge.direction * (to - from));
      } else {
        AddToRow(begin, end, edge.direction * (to - from));
      }
    }
    if (edge.bottom <= bottom) {
      active_[i] = active_[--reaching_];
    } else {
      ++i;
    }
  }
  return true;
}

// Converts the cells to spans, and clears them. Returns the number of spans.
int CoverageShape::TakeSpans() {
  CoverageSpan* span = spans_.get();
  double covered = 0;
  int begin = 0;
  std::uint32_t level = 0;
  for (int word = 0; word * kWordBits < width_; ++word) {
    for (std::uint32_t bits = std::exchange(touched_[word], 0); bits; bits &= bits - 1) {
      const int cell = word * kWordBits + std::countr_zero(bits);
      covered += std::exchange(cells_[cell], 0.0);
      const std::uint32_t next = LevelOf(covered);
      if (next == level) continue;  // within another contour
      if (level) *span++ = {area_.left + begin, cell - begin, level};
      level = next;
      begin = cell;
    }
  }
  if (level) *span++ = {area_.left + begin, width_ - begin, level};
  return static_cast<int>(span - spans_.get());
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
  int cell = static_cast<int>(from);
  if (to > cell + 1) {
    const double coverPerPixel = cover / (to - from), first = coverPerPixel * (cell + 1 - from);
    AddToPixel(cell, (from + cell + 1) / 2 - cell, first);
    cover -= first;
    for (++cell; to > cell + 1 && cell < width_; ++cell) {
      AddToPixel(cell, 0.5, coverPerPixel);
      cover -= coverPerPixel;
    }
    from = cell;
  }
  AddToPixel(cell, (from + to) / 2 - cell, cover);
}

// Adds a part of an edge within a pixel, of which `left` is the part to the left of the edge.
inline void CoverageShape::AddToPixel(int cell, double left, double cover) {
  AddToCell(cell, cover * (1 - left));
  AddToCell(cell + 1, cover * left);
}

inline void CoverageShape::AddToCell(int cell, double cover) {
  if (cell >= width_) return;
  cells_[cell] += cover;
  touched_[cell / kWordBits] |= 1u << cell % kWordBits;
}

}  // namespace kv
