// The page "Bitmap control": pictures as they are, transparent, squared and chosen by name; clicks that fall through to
// the controls beneath; and a log of what the page is told.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK BitmapPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
