// The gallery's frame: a list of the pages at the left, the selected page at the right, its title and description above
// it. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

inline constexpr wchar_t kFrameTemplate[] = L"DLG_GALLERY";

// Dialog procedure; the creation parameter is the index of the page to begin with, or -1 for the one that was shown
// last. It remembers its place, whether it was maximised, and its page.
INT_PTR CALLBACK FrameProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam);

// Shows a page. When the focus was in the one before, it goes into this one.
void SelectPage(HWND frame, int index);

// The window of the page that is shown; null before the first.
HWND ShownPage();

// Shows the frame and all pages that exist in the language of modules.resources.
void RefreshTexts(HWND frame);

}  // namespace gallery
