// The page "Dialog services": proportional scaling, tool tips, trackbar ticks, scroll bar, the window store, the
// calendar.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK DialogServicesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
