// What the frame consists of, and its header: title and description of a page. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

// Everything in pixels, in proportion to the window.
struct FrameLayout {
  int listWidth, rowHeight, headerHeight, titleHeight, margin, titlePx, textPx;
};

FrameLayout LayoutFor(SIZE client);

// With a negative page, the background alone.
void DrawHeader(HDC dc, const RECT& header, const FrameLayout& layout, int page);

}  // namespace gallery
