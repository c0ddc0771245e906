// The gallery's frame: a list of the pages at the left, the selected page at the right, its title and description above
// it. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

inline constexpr wchar_t kFrameTemplate[] = L"DLG_GALLERY";

// Dialog procedure; the creation parameter is the index of the page to begin with.
INT_PTR CALLBACK FrameProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam);

void SelectPage(HWND frame, int index);

// Shows the frame and all pages that exist in the language of modules.resources.
void RefreshTexts(HWND frame);

}  // namespace gallery
