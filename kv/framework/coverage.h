// Exact area coverage: the part of each pixel that a shape covers, in 256 levels. Pure arithmetic, without a window or
// a device context.
//
// A shape is one or more closed contours of straight edges, filled by the non-zero rule: overlapping contours of the
// same direction count once, and a contour of the opposite direction within another cuts a hole. The area to the right
// of each edge is accumulated per scan line, so there is no sampling grid, however steep or flat an edge is.
//
// A CoverageShape belongs to one thread at a time. Nothing throws: a contour that exceeds the capacity is rejected.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kv {

// A point in pixels; whole numbers are the edges between pixels, y grows downwards.
struct PointD {
  double x, y;
};

// Whole pixels; right and bottom are exclusive.
struct PixelArea {
  int left, top, right, bottom;
};

// Adjacent pixels of one row with equal coverage.
struct CoverageSpan {
  int x, y, count;
  std::uint8_t coverage;  // 1 to 255; 255 is the whole pixel
};

class CoverageShape {
 public:
  static constexpr int kMaxEdges = 1024;

  // Begins an empty shape that is limited to `area`. Returns false when the memory for a row cannot be allocated; the
  // shape then stays empty whatever is added.
  bool Begin(const PixelArea& area);

  // Adds a contour, closed from its last corner to the first. Coordinates are limited to 16 million pixels in both
  // directions. Returns false, and adds nothing, when a coordinate is NaN or the edges of all contours exceed
  // kMaxEdges.
  bool AddContour(std::span<const PointD> corners);

  // Returns whether a contour with this number of corners can be added. Does not depend on the area.
  bool HasCapacityFor(size_t corners) const { return corners <= static_cast<size_t>(kMaxEdges - added_); }

  // Returns the covered pixels one span at a time, row by row from the top and from left to right; false at the end,
  // with the shape empty. After the first call nothing more can be added.
  bool Next(CoverageSpan* span);

 private:
  // x is at `top`.
  struct Edge {
    double x, slope, top, bottom;
    double direction;  // 1 downwards, -1 upwards
  };

  bool StartRow();
  void AddToRow(double from, double to, double cover);
  void AddToCell(int cell, double cover);
  int NextTouched(int cell) const;

  PixelArea area_{};
  int width_ = 0;
  int rowCapacity_ = 0;
  std::unique_ptr<double[]> cells_;           // one row: change of coverage from this pixel to the right
  std::unique_ptr<std::uint32_t[]> touched_;  // a bit for each non-zero cell
  std::array<Edge, kMaxEdges> edges_;         // sorted by top after the first row is requested
  int added_ = 0;                             // edges of all contours, including those outside the area
  int count_ = 0, first_ = 0, last_ = 0;      // edges within the area; first_ to last_ reach the row
  bool scanning_ = false;
  int row_ = 0, cell_ = 0;
  double covered_ = 0;
};

}  // namespace kv
