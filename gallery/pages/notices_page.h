// The page of the notification icon and notices about USB devices.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK NoticesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
