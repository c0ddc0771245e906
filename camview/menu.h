// The menu: what its choices stand for, and which items are checked and enabled. Main thread only.
#pragma once

#include <windows.h>

#include "camview/window.h"

namespace camview {

// Seconds of the items from IDM_TRAIL_FIRST and IDM_SPAN_FIRST on; a span of 0 is the whole recording.
inline constexpr double kTrails[] = {0, 0.5, 1, 2, 5, 10};
inline constexpr double kSpans[] = {1, 5, 10, 30, 60, 600, 3600, 0};

// Checks and disables the items of a menu that opens.
void PrepareMenu(View& view, HMENU menu);

}  // namespace camview
