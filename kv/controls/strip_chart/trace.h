// Draws the line of one channel, column by column of pixels. A column depends only on the samples in and beside it, so
// that a partial redraw equals a full redraw.
//
// A column covers the part of the line within it, with the width of the pen. With few samples it is computed for
// quarters of a column, so that steep lines are smooth; with many it extends from their minimum to their maximum.
#pragma once

#include <memory>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/supplied_samples.h"
#include "kv/framework/canvas.h"

namespace kv {

// Accumulates the coverage of one column's pixels.
class TraceRows {
 public:
  bool Create(int height);
  // Adds a vertical range, in rows from the top, with a `weight` relative to kWhole.
  void Add(double top, double bottom, int weight);
  // Blends the accumulated coverage into the column of pixels and resets it.
  void Flush(const Surface& surface, LONG x, LONG top, COLORREF color);

  static constexpr int kWhole = 256;

 private:
  void AddEdge(int height, int weight);

  int height_ = 0, first_ = 0, last_ = -1;
  std::unique_ptr<int[]> cells_;  // difference of coverage to the row above
};

struct TraceView {
  double secondsPerColumn;
  AxisRange range;
  double width;  // line width in pixels
  bool isLogarithmic;
  unsigned count;  // only the first `count` samples are shown
};

// The part of the line in a column. Defined for SampleStore and SuppliedSamples.
template <class Samples>
Extent LineInColumn(const Samples& samples, const TraceView& view, long long column);

// Draws the columns from..to-1 of the time axis, with `from` at x. Column 0 begins at time 0. Defined for SampleStore
// and SuppliedSamples.
template <class Samples>
void DrawTrace(Canvas& canvas, TraceRows& rows, const Samples& samples, const TraceView& view, const RECT& plot,
               long long from, long long to, LONG x, COLORREF color);

}  // namespace kv
