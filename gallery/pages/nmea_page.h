// A simulated boat's position as NMEA text in a terminal, and the maker's web pages.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK NmeaPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
