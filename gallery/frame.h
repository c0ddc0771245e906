// The gallery's frame: a list of the pages at the left, the selected page at the right, its title and description above
// it. Main thread only.
#pragma once

#include <windows.h>

#include "gallery/command_line.h"
#include "toolkit/scaled_dialog.h"

namespace gallery {

inline constexpr wchar_t kFileStem[] = L"kvgallery";  // of its language libraries and help files

// The frame that begins as the options say, which must live as long as it does. It remembers its place, whether it was
// maximised, and its page.
kv::ScaledDialog FrameDialog(const StartOptions& options);

// Shows a page. When the focus was in the one before, it goes into this one.
void SelectPage(HWND frame, int index);

// What the frame consists of. Everything in pixels, in proportion to the window.
struct FrameLayout {
  int listWidth, rowHeight, headerHeight, titleHeight, margin, titlePx, textPx;
};
FrameLayout LayoutFor(SIZE client);

// The header: title and description of a page; with a negative page, the background alone.
void DrawHeader(HDC dc, const RECT& header, const FrameLayout& layout, int page);

}  // namespace gallery
