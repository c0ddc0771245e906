// The page of notes that are opened and saved through the file dialogs.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK FilesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
