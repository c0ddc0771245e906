// Exact area coverage: which part of each pixel a shape covers, in 256 levels. Pure arithmetic, without a window or a
// device context.
//
// A shape is one or more closed contours of straight edges, filled by the non-zero rule: where contours of one
// direction overlap the shape is covered once, and a contour that runs the other way within one cuts a hole. The area
// that each edge covers on its right is added up per scan line, so no sampling grid shows, however steep or flat an
// edge is.
//
// A CoverageShape belongs to one thread at a time. Nothing throws: a contour that cannot be held is rejected.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace kv {

// A place in pixels; whole numbers are the edges between them, y grows downwards.
struct PointD {
  double x, y;
};

// Whole pixels, the right and bottom ones not included.
struct PixelArea {
  int left, top, right, bottom;
};

// Neighbouring pixels of one row that are covered alike.
struct CoverageSpan {
  int x, y, count;
  std::uint8_t coverage;  // 1 to 255; 255 is the whole pixel
};

class CoverageShape {
 public:
  static constexpr int kMaxEdges = 1024;

  // Starts an empty shape of which only what lies within `area` is wanted. False when the memory for a row cannot be
  // allocated: the shape then stays empty whatever is added.
  bool Begin(const PixelArea& area);

  // Adds a contour, closed from its last corner to the first. Places are limited to 16 million pixels either way.
  // False, with nothing added, when a place is not a number or the edges of all contours outgrow kMaxEdges.
  bool AddContour(std::span<const PointD> corners);

  // Whether a contour of so many corners can be added: the same whatever area is wanted of the shape.
  bool HasCapacityFor(size_t corners) const { return corners <= static_cast<size_t>(kMaxEdges - added_); }

  // Hands out what is covered, row by row from the top and from left to right; false at the end, with the shape empty.
  // After the first call nothing more can be added.
  bool Next(CoverageSpan* span);

 private:
  // x is that of `top`.
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
  std::unique_ptr<double[]> cells_;  // of one row: what the edges add to the coverage from here on to the right
  std::unique_ptr<std::uint32_t[]> touched_;  // a bit for each cell that is not 0
  std::array<Edge, kMaxEdges> edges_;         // sorted by their top once the first row is asked for
  int added_ = 0;                             // edges of all contours, also of what lies outside the area
  int count_ = 0, first_ = 0, last_ = 0;      // edges within the area; those that reach the row are first_ to last_
  bool scanning_ = false;
  int row_ = 0, cell_ = 0;
  double covered_ = 0;
};

}  // namespace kv
