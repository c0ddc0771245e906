// The capture page: the picture of the first capture device that answers, live and recorded to a file, or the plain
// word that none did.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK CapturePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
