// The flight export: a sample flight, handed to a flight track view and exported as KML and as waypoints.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK FlightPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
