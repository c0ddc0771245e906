#include "kv/controls/strip_chart/trace.h"
#include "kv/controls/strip_chart/axis.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <utility>

#include "kv/controls/strip_chart/sample_store.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"

namespace kv {

namespace {

constexpr unsigned kManySamples = 4;  // per column
constexpr int kParts = 4;             // parts of a column with fewer samples

// Adds the value at a time between the sample `before` and the next one.
template <class Samples>
void AddCrossing(const Samples& samples, unsigned before, double time, Extent* passed) {
  if (samples.HasGapBefore(before + 1)) return;
  const double start = samples.TimeAt(before), length = samples.TimeAt(before + 1) - start;
  const double value = samples.ValueAt(before);
  passed->Add(value + (samples.ValueAt(before + 1) - value) * ((time - start) / length));
}

// The part of the line between two times; hints speed up the search for its first and last sample.
template <class Samples>
Extent PassedBetween(const Samples& samples, unsigned count, double from, double to, unsigned hint, unsigned endHint) {
  const unsigned first = std::min(samples.FirstFrom(from, hint), count);
  const unsigned end = std::min(samples.FirstAfter(to, endHint), count);
  Extent passed = samples.ExtentOf(first, end);
  if (first > 0 && first < count) AddCrossing(samples, first - 1, from, &passed);
  if (end > 0 && end < count) AddCrossing(samples, end - 1, to, &passed);
  return passed;
}

// The same for a column whose samples first..next-1 are known.
template <class Samples>
Extent PassedInColumn(const Samples& samples, unsigned count, double from, double to, unsigned first, unsigned next) {
  Extent passed = samples.ExtentOf(first, next);
  if (first > 0) AddCrossing(samples, first - 1, from, &passed);
  if (next < count) AddCrossing(samples, next - 1, to, &passed);
  return passed;
}

}  // namespace

bool TraceRows::Create(int height) {
  if (cells_ && height == height_) return true;
  cells_.reset(new (std::nothrow) int[static_cast<size_t>(height) + 2]());
  height_ = cells_ ? height : 0;
  first_ = height_;
  last_ = -1;
  return cells_ != nullptr;
}

void TraceRows::AddEdge(int height, int weight) {
  const int row = height / 256, below = height % 256;
  cells_[row] += weight * (256 - below);
  cells_[row + 1] += weight * below;
  first_ = std::min(first_, row);
  last_ = std::max(last_, row + 1);
}

void TraceRows::Add(double top, double bottom, int weight) {
  const auto place = [this](double y) {
    return static_cast<int>(std::clamp(y, 0.0, static_cast<double>(height_)) * 256 + 0.5);
  };
  const int from = place(top), to = place(bottom);
  if (from >= to) return;
  AddEdge(from, weight);
  AddEdge(to, -weight);
}

void TraceRows::Flush(const Surface& surface, LONG x, LONG top, COLORREF color) {
  const DWORD pixel = PixelOfColor(color);
  const size_t stride = static_cast<size_t>(surface.size().cx);
  DWORD* target = surface.Row(top) + x + stride * first_;
  int covered = 0;
  for (int row = first_; row <= last_; ++row, target += stride) {
    covered += std::exchange(cells_[row], 0);
    if (row >= height_) continue;
    const DWORD coverage = (static_cast<DWORD>(covered) * 255 + kWhole * 128) / (kWhole * 256);
    if (coverage == 255) {
      *target = pixel;
    } else if (coverage) {
      BlendPixels(target, 1, pixel, coverage);
    }
  }
  first_ = height_;
  last_ = -1;
}

template <class Samples>
Extent LineInColumn(const Samples& samples, const TraceView& view, long long column) {
  const double start = static_cast<double>(column);
  const unsigned hint = samples.count() / 2;
  return PassedBetween(samples, view.count, start * view.secondsPerColumn, (start + 1) * view.secondsPerColumn, hint,
                       hint);
}

template <class Samples>
void DrawTrace(Canvas& canvas, TraceRows& rows, const Samples& samples, const TraceView& view, const RECT& plot,
               long long from, long long to, LONG x, COLORREF color) {
  if (view.count == 0) return;
  const double column = view.secondsPerColumn, half = view.width / 2, reach = half * 0.6;
  const double scale = (plot.bottom - plot.top) / (view.range.high - view.range.low);
  const auto add = [&](const Extent& passed, int weight) {
    if (passed.empty() || (view.isLogarithmic && passed.high <= 0)) return;
    const auto row = [&](double value) { return (view.range.high - AxisPosition(value, view.isLogarithmic)) * scale; };
    rows.Add(row(passed.high) - half, row(passed.low) + half, weight);
  };
  canvas.FinishGdi();
  unsigned first = samples.FirstFrom(static_cast<double>(from) * column, samples.count() / 2), many = 0;
  for (; from < to; ++from, ++x) {
    const double start = static_cast<double>(from);
    // Hidden samples do not count: the column is drawn as if they did not exist.
    const unsigned next = std::min(samples.FirstFrom((start + 1) * column, first + many), std::max(view.count, first));
    many = next - first;
    if (many > kManySamples) {
      add(PassedInColumn(samples, view.count, start * column, (start + 1) * column, first, next), TraceRows::kWhole);
    } else {
      for (int part = 0; part < kParts; ++part) {
        const double left = start + static_cast<double>(part) / kParts - reach;
        add(PassedBetween(samples, view.count, left * column, (left + 1.0 / kParts + 2 * reach) * column, first, next),
            TraceRows::kWhole / kParts);
      }
    }
    rows.Flush(canvas.surface(), x, plot.top, color);
    first = next;
  }
}

template Extent LineInColumn(const SampleStore&, const TraceView&, long long);
template Extent LineInColumn(const SuppliedSamples&, const TraceView&, long long);
template void DrawTrace(Canvas&, TraceRows&, const SampleStore&, const TraceView&, const RECT&, long long, long long,
                        LONG, COLORREF);
template void DrawTrace(Canvas&, TraceRows&, const SuppliedSamples&, const TraceView&, const RECT&, long long,
                        long long, LONG, COLORREF);

}  // namespace kv
