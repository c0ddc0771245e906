// The page "Extended list": ten million camera records that nobody stores, in columns wider than the window, drawn by
// the page as they come into view.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK ListPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
