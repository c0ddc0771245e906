#include "camview/distributions.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

namespace {

constexpr size_t kSide = kv::kNoPoint + 1, kCellsOfPoint = kSide * kSide, kCells = kCellsOfPoint * kv::kPointCount;

size_t IndexOf(const CountGrid& grid, LONG column, LONG row) {
  return static_cast<size_t>(row) * static_cast<size_t>(grid.width) + static_cast<size_t>(column);
}

void AddValues(LONG value, DWORD count, camera::Spread* spread) {
  spread->sum += static_cast<long long>(value) * count;
  spread->squares += static_cast<long long>(value) * value * count;
}

}  // namespace

DWORD CountGrid::At(LONG column, LONG row) const {
  const bool isWithin = column >= 0 && column < width && row >= 0 && row < height;
  return isWithin ? counts[IndexOf(*this, column, row)] : 0;
}

CountGrid HistogramOf(const CountGrid& grid, int coordinate) {
  if (grid.counts.empty()) return {};
  CountGrid histogram{.bin = grid.bin,
                      .left = coordinate == 0 ? grid.left : grid.top,
                      .width = coordinate == 0 ? grid.width : grid.height,
                      .height = 1};
  histogram.counts.resize(static_cast<size_t>(histogram.width));
  for (LONG row = 0; row < grid.height; ++row) {
    for (LONG column = 0; column < grid.width; ++column) {
      histogram.counts[static_cast<size_t>(coordinate == 0 ? column : row)] += grid.counts[IndexOf(grid, column, row)];
    }
  }
  return histogram;
}

CountGrid Binned(const CountGrid& grid, LONG bin) {
  if (bin <= 1 || grid.counts.empty()) return grid;
  CountGrid binned{.bin = bin, .left = grid.left / bin, .top = grid.top / bin};
  binned.width = (grid.left + grid.width - 1) / bin - binned.left + 1;
  binned.height = (grid.top + grid.height - 1) / bin - binned.top + 1;
  binned.counts.resize(static_cast<size_t>(binned.width) * static_cast<size_t>(binned.height));
  for (LONG row = 0; row < grid.height; ++row) {
    for (LONG column = 0; column < grid.width; ++column) {
      const size_t target =
          IndexOf(binned, (grid.left + column) / bin - binned.left, (grid.top + row) / bin - binned.top);
      binned.counts[target] += grid.counts[IndexOf(grid, column, row)];
    }
  }
  return binned;
}

long long CountOf(const CountGrid& grid, LONG bin, LONG x, LONG y) {
  const LONG left = x / bin * bin - grid.left, top = y / bin * bin - grid.top;
  long long count = 0;
  for (LONG row = top; row < top + bin; ++row) {
    for (LONG column = left; column < left + bin; ++column) count += grid.At(column, row);
  }
  return count;
}

GridFigures FiguresOf(const CountGrid& grid) {
  GridFigures figures;
  for (LONG row = 0; row < grid.height; ++row) {
    for (LONG column = 0; column < grid.width; ++column) {
      const DWORD count = grid.counts[IndexOf(grid, column, row)];
      figures.count += count;
      figures.highest = std::max(figures.highest, count);
      AddValues(grid.left + column, count, &figures.x);
      AddValues(grid.top + row, count, &figures.y);
    }
  }
  figures.x.lowest = grid.left;
  figures.x.highest = grid.left + grid.width - 1;
  figures.y.lowest = grid.top;
  figures.y.highest = grid.top + grid.height - 1;
  return figures;
}

// ---- Counting -------------------------------------------------------------------------------------------------------

void Distributions::Clear() {
  counts_.reset();
  first_ = end_ = 0;
}

bool Distributions::Restart(long long first) {
  first_ = end_ = first;
  if (!counts_) {
    counts_.reset(new (std::nothrow) DWORD[kCells]());
    return counts_ != nullptr;
  }
  std::fill_n(counts_.get(), kCells, 0);
  return true;
}

void Distributions::Add(const RecordStore& store, long long from, long long to, DWORD amount) {
  ForRecords(store, from, to, [&](const StoredRecord& record) {
    DWORD* counts = counts_.get();
    for (const kv::CameraPoint& point : record.points) {
      if (camera::IsSeen(point)) counts[static_cast<size_t>(point.y) * kSide + static_cast<size_t>(point.x)] += amount;
      counts += kCellsOfPoint;
    }
  });
}

bool Distributions::Count(const RecordStore& store, long long first, long long end, long long most) {
  first = std::max(first, store.First());
  end = std::max(std::min(end, store.End()), first);
  const long long common = std::min(end_, end) - std::max(first_, first);
  // Beginning anew is necessary when counted records no longer exist, and often less work.
  const bool isAnew = !counts_ || common <= 0 || first_ < store.First() || end_ - first_ - common > common;
  if (isAnew && !Restart(first)) return true;
  const auto take = [&](long long wanted) {
    const long long taken = std::clamp(wanted, 0LL, most);
    most -= taken;
    return taken;
  };
  const auto change = [&](long long from, long long count, DWORD amount) { Add(store, from, from + count, amount); };
  constexpr DWORD kAway = static_cast<DWORD>(-1);
  long long count = take(first - first_);
  change(first_, count, kAway);
  first_ += count;
  count = take(end_ - end);
  change(end_ - count, count, kAway);
  end_ -= count;
  count = take(first_ - first);
  change(first_ - count, count, 1);
  first_ -= count;
  count = take(end - end_);
  change(end_, count, 1);
  end_ += count;
  const bool isComplete = first_ == first && end_ == end;
  for (int i = 0; isComplete && i < kChannels; ++i) extremes_[i] = store.ExtremesOf(first, end, i);
  return isComplete;
}

CountGrid Distributions::PlacesOf(int point) const {
  const ChannelExtremes &x = extremes_[2 * point], &y = extremes_[2 * point + 1];
  if (!counts_ || first_ == end_ || x.lowest > x.highest) return {};
  CountGrid grid{
      .left = x.lowest, .top = y.lowest, .width = x.highest - x.lowest + 1, .height = y.highest - y.lowest + 1};
  grid.counts.reserve(static_cast<size_t>(grid.width) * static_cast<size_t>(grid.height));
  const DWORD* row = counts_.get() + static_cast<size_t>(point) * kCellsOfPoint +
                     static_cast<size_t>(grid.top) * kSide + static_cast<size_t>(grid.left);
  for (LONG i = 0; i < grid.height; ++i, row += kSide) grid.counts.insert(grid.counts.end(), row, row + grid.width);
  return grid;
}

}  // namespace camview
