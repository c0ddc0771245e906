// The gallery's frame: a list of pages at the left, the selected page at the right, its title and description above.
// Main thread only.
#pragma once

#include <windows.h>

#include "kv/framework/language.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

inline constexpr wchar_t kFileStem[] = L"kvgallery";  // of the language libraries and help files

struct StartOptions {
  int page = -1;                       // -1: the page shown last
  int language = kv::kStoredLanguage;  // or an index of the language table
  bool walk = false;
};

// Returns the frame for these options, which must outlive it. It stores its position, whether it was maximized, and its
// page.
kv::ScaledDialog FrameDialog(const StartOptions& options);

// Shows a page. If the previous page had the focus, the new one gets it.
void SelectPage(HWND frame, int index);

// Positions of the frame's parts in pixels, in proportion to the window.
struct FrameLayout {
  int listWidth, rowHeight, headerHeight, titleHeight, margin, titlePx, textPx;
};
FrameLayout LayoutFor(SIZE client);

// Draws the header, title and description of a page; with a negative page, only the background.
void DrawHeader(HDC dc, const RECT& header, const FrameLayout& layout, int page);

}  // namespace gallery
