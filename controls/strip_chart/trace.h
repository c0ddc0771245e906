// The line of one channel, column by column of pixels. What a column looks like depends on the samples in and beside it
// and on nothing else, so that a column drawn alone is the same as in a picture drawn at once.
//
// A column covers what the line passes through, made as thick as the pen. Where there are few samples, a quarter of a
// column at a time, so that steep lines are smooth; where there are many, from their minimum to their maximum.
#pragma once

#include <memory>

#include "controls/strip_chart/axis.h"
#include "controls/strip_chart/sample_store.h"
#include "framework/canvas.h"

namespace kv {

// The coverage of one column's pixels while it is gathered.
class TraceRows {
 public:
  bool Create(int height);
  // From one height to another, rows from the top; `weight` of kWhole.
  void Add(double top, double bottom, int weight);
  // Blends what was added into the column of pixels and begins anew.
  void Flush(const Surface& surface, LONG x, LONG top, COLORREF color);

  static constexpr int kWhole = 256;

 private:
  void AddEdge(int height, int weight);

  int height_ = 0, first_ = 0, last_ = -1;
  std::unique_ptr<int[]> cells_;  // how much more is covered from this row on than above it
};

struct TraceView {
  double secondsPerColumn;
  AxisRange range;
  double width;    // of the line, in pixels
  unsigned count;  // only the first samples are shown
};

// Draws the columns from..to-1 of the time axis, column 0 being at time 0, with `from` at x.
void DrawTrace(Canvas& canvas, TraceRows& rows, const SampleStore& store, const TraceView& view, const RECT& plot,
               long long from, long long to, LONG x, COLORREF color);

}  // namespace kv
