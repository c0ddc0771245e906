// The display instruments: all layouts live on a simulated flight, their states, and how small they may be.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK InstrumentsPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
