// Layout of the extended list: pure arithmetic. Lengths are in pixels. Nothing overflows, whatever the number of rows,
// the row height and the offsets are: results are clamped to 32 bits.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr LONG kDefaultRowHeight = 17;
inline constexpr LONG kMaxSurfaceWidth = 16384;
inline constexpr LONG kHorizontalLine = 17;  // one step of the horizontal bar

// Returns the row height for a parent's result: the result, or the default when it is 0 or beyond 2^31 - 1 (negative).
LONG UsableRowHeight(UINT measured);

// Returns the surface width for a requested extent, 0..kMaxSurfaceWidth; negative is 0.
LONG UsableSurfaceWidth(WPARAM extent);

// The rows of one screenful below the header row.
struct RowRun {
  DWORD first;
  DWORD count;
  LONG top;  // of the first row, in the surface
};

// Returns the rows from the one at the vertical offset (or from row 0, further down, for a negative offset) to the last
// one whose top is within the surface height. `rowHeight` is positive.
RowRun VisibleRows(DWORD rowCount, LONG rowHeight, LONG verticalOffset, LONG surfaceHeight);

// Returns the rectangle of a row across the surface.
RECT RowRect(LONG surfaceWidth, LONG top, LONG rowHeight);

// Returns the offset after a scroll request: a step of `line` or ten of them, or the position of the bar. Not limited
// to the bar's range. Unknown requests return `offset`.
LONG ScrolledOffset(int request, LONG offset, LONG line, const SCROLLINFO& bar);

// The state of the bars. The range ends at 2^31 - 2, so that the number of positions fits 32 bits.
SCROLLINFO HorizontalBar(LONG surfaceWidth, LONG clientWidth, LONG horizontalOffset);
SCROLLINFO VerticalBar(DWORD rowCount, LONG rowHeight, LONG clientHeight, LONG verticalOffset);

// With list navigation: a page is the complete visible rows below the header (at least one), so the last offset shows
// the last row at the lower edge.
LONG RowsInView(LONG rowHeight, LONG clientHeight);
SCROLLINFO NavigatedBar(DWORD rowCount, LONG rowHeight, LONG clientHeight, LONG verticalOffset);
LONG LastOffset(const SCROLLINFO& bar);

// Returns the client x of the surface's left edge, clamped just outside the window.
LONG SurfaceLeft(LONG horizontalOffset, LONG surfaceWidth, LONG clientWidth);

}  // namespace kv
