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

// Adjacent pixels of one row with equal coverage, 1 to 255; 255 is the whole pixel.
struct CoverageSpan {
  int x, count;
  std::uint32_t coverage;
};

class CoverageShape {
 public:
  static constexpr int kMaxEdges = 1024;

  // Begins an empty shape that is limited to `area`. Returns false when the memory for the area cannot be allocated;
  // the shape then stays empty whatever is added.
  bool Begin(const PixelArea& area);

  // Adds a contour, closed from its last corner to the first. Coordinates are limited to 16 million pixels in both
  // directions. Returns false, and adds nothing, when a coordinate is NaN or the edges of all contours exceed
  // kMaxEdges.
  bool AddContour(std::span<const PointD> corners);

  // Returns whether a contour with this number of corners can be added. Does not depend on the area.
  bool HasCapacityFor(size_t corners) const { return corners <= static_cast<size_t>(kMaxEdges - added_); }

  // Returns the covered pixels of the next row that has some, from the top, as spans from left to right, which are
  // valid until the next call; none at the end. After the first call nothing more can be added.
  std::span<const CoverageSpan> NextRow(int* y);

 private:
  using EdgeIndex = std::uint16_t;
  static constexpr EdgeIndex kNoEdge = 0xFFFF;

  // x is at `top`.
  struct Edge {
    double x, slope, top, bottom;
    double direction;  // 1 downwards, -1 upwards
    EdgeIndex next;    // of those that begin in the same row
  };

  bool Reserve(int width, int height);
  bool StartRow();
  void AddToRow(double from, double to, double cover);
  void AddToPixel(int cell, double left, double cover);
  void AddToCell(int cell, double cover);
  int TakeSpans();

  PixelArea area_{};
  int width_ = 0;
  int widthCapacity_ = 0, heightCapacity_ = 0;
  std::unique_ptr<double[]> cells_;           // one row: change of coverage from this pixel to the right
  std::unique_ptr<std::uint32_t[]> touched_;  // a bit for each non-zero cell
  std::unique_ptr<CoverageSpan[]> spans_;
  std::unique_ptr<EdgeIndex[]> starts_;  // for each row of the area, the first edge that begins in it
  std::array<Edge, kMaxEdges> edges_;
  std::array<EdgeIndex, kMaxEdges> active_;     // those that reach the row
  int added_ = 0;                               // edges of all contours, including those outside the area
  int count_ = 0, waiting_ = 0, reaching_ = 0;  // edges within the area; of these, below the row, and in `active_`
  bool scanning_ = false;
  int row_ = 0;
};

}  // namespace kv
