// The link to the spreadsheet program with its state, and a conversation with a DDE server of the user's choice.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK DdePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
