// How often each point was at each place in a range of records, counted in steps so that millions of records do not
// stop the window. Pure; one thread at a time.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

// Counts by place. A cell is a square of `bin` x `bin` values: the cell in column i and row j begins at the values
// (left + i) * bin and (top + j) * bin. A histogram is a grid with one row.
struct CountGrid {
  LONG bin = 1;
  LONG left = 0, top = 0, width = 0, height = 0;
  std::vector<DWORD> counts;  // width * height, by rows; empty: nothing was counted

  // Returns the count of a cell; 0 beyond the grid.
  DWORD At(LONG column, LONG row) const;
};

// Returns the histogram of x (coordinate 0) or y (1).
CountGrid HistogramOf(const CountGrid& grid, int coordinate);
// Returns a grid with cells of `bin` values, from one with cells of one value. A histogram remains one.
CountGrid Binned(const CountGrid& grid, LONG bin);

// Returns the count of the cell of `bin` values that contains a value, from a grid with cells of one value.
long long CountOf(const CountGrid& grid, LONG bin, LONG x, LONG y);

// Of a grid with cells of one value. `y` is only meaningful for a grid of places.
struct GridFigures {
  long long count = 0;
  DWORD highest = 0;  // count of a cell
  camera::Spread x, y;
};
GridFigures FiguresOf(const CountGrid& grid);

class Distributions {
 public:
  // Counts the records `first` to `end` - 1, or a part of them: a call adds or takes away at most `most` records, of
  // those in which the range differs from the previous one. Returns whether all are counted, or allocation has failed,
  // which leaves nothing counted. Call Clear before records of another store.
  bool Count(const RecordStore& store, long long first, long long end, long long most);
  // Returns to the initial state, which uses no memory.
  void Clear();
  // Returns the places of a point after all records have been counted.
  CountGrid PlacesOf(int point) const;

 private:
  bool Restart(long long first);
  void Add(const RecordStore& store, long long from, long long to, DWORD amount);

  std::unique_ptr<DWORD[]> counts_;      // by point, y and x
  long long first_ = 0, end_ = 0;        // of the counted records
  ChannelExtremes extremes_[kChannels];  // of all counted records
};

}  // namespace camview
