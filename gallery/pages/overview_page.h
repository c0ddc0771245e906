// The first page: what the gallery shows and how to use it.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK OverviewPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
