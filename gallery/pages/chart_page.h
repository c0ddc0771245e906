// The page "Optical flow chart": the tool's chart, with four points on courses of their own in place of a camera.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK ChartPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
