// The extended list's arithmetic, apart from windows. Lengths are pixels. Nothing here overflows, whatever the number
// of rows, the row height and the offsets are: results beyond 32 bits end at their limit.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr LONG kDefaultRowHeight = 17;
inline constexpr LONG kMaxSurfaceWidth = 16384;
inline constexpr LONG kHorizontalLine = 17;  // one step of the horizontal bar

// The row height that a parent's answer stands for: itself, or the default when it is 0 or beyond 2^31 - 1 (a negative
// number). No row could be found again at such a height.
LONG UsableRowHeight(UINT measured);

// The surface width for a wanted extent, 0..kMaxSurfaceWidth; a negative extent counts as 0.
LONG UsableSurfaceWidth(WPARAM extent);

// The data rows of one screenful below the header row.
struct RowRun {
  DWORD first;
  DWORD count;
  LONG top;  // of the first row, in the surface
};

// Rows start at the vertical offset's row, or with row 0 lower down when the offset lies above it, and end at the last
// one whose top does not lie past the surface height. `rowHeight` is positive.
RowRun VisibleRows(DWORD rowCount, LONG rowHeight, LONG verticalOffset, LONG surfaceHeight);

// The rectangle of a row across the surface.
RECT RowRect(LONG surfaceWidth, LONG top, LONG rowHeight);

// Where a scroll request leads from `offset`: a step of `line` or ten of them, or what the bar itself says. Not limited
// to the bar's range. Requests without a meaning give `offset`.
LONG ScrolledOffset(int request, LONG offset, LONG line, const SCROLLINFO& bar);

// What the bars show. The bar's range ends one short of 2^31 - 1, so that the number of its positions fits 32 bits too.
SCROLLINFO HorizontalBar(LONG surfaceWidth, LONG clientWidth, LONG horizontalOffset);
SCROLLINFO VerticalBar(DWORD rowCount, LONG rowHeight, LONG clientHeight, LONG verticalOffset);

// With list navigation: a page is the whole rows in view below the header (at least one), so the bar's end, the last
// offset, shows the last row at the lower edge.
LONG RowsInView(LONG rowHeight, LONG clientHeight);
SCROLLINFO NavigatedBar(DWORD rowCount, LONG rowHeight, LONG clientHeight, LONG verticalOffset);
LONG LastOffset(const SCROLLINFO& bar);

// The client x at which the surface's left edge is shown; an edge too far away to show anything stays just out of view.
LONG SurfaceLeft(LONG horizontalOffset, LONG surfaceWidth, LONG clientWidth);

}  // namespace kv
