#include "kv/lists/extended_list_layout.h"

#include <algorithm>
#include <limits>

namespace kv {

namespace {

using Wide = long long;

LONG Limited(Wide value) {
  return static_cast<LONG>(std::clamp<Wide>(value, std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()));
}

// The height of all rows, limited to the range of a bar.
LONG HeightOfRows(DWORD rowCount, LONG rowHeight) {
  constexpr Wide kMaxRange = std::numeric_limits<LONG>::max() - 1;
  return static_cast<LONG>(std::min(static_cast<Wide>(rowCount) * rowHeight, kMaxRange));
}

SCROLLINFO Bar(LONG last, LONG page, LONG position) {
  return {.cbSize = sizeof(SCROLLINFO),
          .fMask = SIF_ALL | SIF_DISABLENOSCROLL,
          .nMin = 0,
          .nMax = std::max<LONG>(last, 0),
          .nPage = static_cast<UINT>(page),
          .nPos = position,
          .nTrackPos = 0};
}

}  // namespace

LONG UsableRowHeight(UINT measured) {
  const LONG height = static_cast<LONG>(measured);
  return height > 0 ? height : kDefaultRowHeight;
}

LONG UsableSurfaceWidth(WPARAM extent) {
  return std::clamp<LONG>(static_cast<LONG>(extent), 0, kMaxSurfaceWidth);
}

RowRun VisibleRows(DWORD rowCount, LONG rowHeight, LONG verticalOffset, LONG surfaceHeight) {
  Wide first = verticalOffset / rowHeight;
  Wide top = rowHeight;  // below the header
  if (first < 0) {
    top -= first * rowHeight;
    first = 0;
  }
  if (first >= rowCount || top > surfaceHeight) return {};
  const Wide fitting = (surfaceHeight - top) / rowHeight + 1;
  return {static_cast<DWORD>(first), static_cast<DWORD>(std::min(fitting, rowCount - first)), static_cast<LONG>(top)};
}

RECT RowRect(LONG surfaceWidth, LONG top, LONG rowHeight) {
  return {0, top, surfaceWidth, Limited(static_cast<Wide>(top) + rowHeight)};
}

LONG ScrolledOffset(int request, LONG offset, LONG line, const SCROLLINFO& bar) {
  const auto moved = [&](int lines) { return Limited(offset + static_cast<Wide>(line) * lines); };
  switch (request) {
    case SB_LINEUP: return moved(-1);
    case SB_LINEDOWN: return moved(1);
    case SB_PAGEUP: return moved(-10);
    case SB_PAGEDOWN: return moved(10);
    case SB_THUMBTRACK: return bar.nTrackPos;
    case SB_ENDSCROLL: return bar.nPos;
    default: return offset;
  }
}

SCROLLINFO HorizontalBar(LONG surfaceWidth, LONG clientWidth, LONG horizontalOffset) {
  return Bar(surfaceWidth - 1, clientWidth, horizontalOffset);
}

SCROLLINFO VerticalBar(DWORD rowCount, LONG rowHeight, LONG clientHeight, LONG verticalOffset) {
  return Bar(HeightOfRows(rowCount, rowHeight), clientHeight, verticalOffset);
}

LONG RowsInView(LONG rowHeight, LONG clientHeight) {
  return std::max<LONG>(clientHeight / rowHeight - 1, 1);
}

SCROLLINFO NavigatedBar(DWORD rowCount, LONG rowHeight, LONG clientHeight, LONG verticalOffset) {
  const Wide page = static_cast<Wide>(RowsInView(rowHeight, clientHeight)) * rowHeight;
  return Bar(HeightOfRows(rowCount, rowHeight) - 1, Limited(page), verticalOffset);
}

LONG LastOffset(const SCROLLINFO& bar) {
  return std::max<LONG>(bar.nMax - static_cast<LONG>(bar.nPage) + 1, 0);
}

LONG SurfaceLeft(LONG horizontalOffset, LONG surfaceWidth, LONG clientWidth) {
  return static_cast<LONG>(std::clamp<Wide>(-static_cast<Wide>(horizontalOffset), -surfaceWidth, clientWidth));
}

}  // namespace kv
