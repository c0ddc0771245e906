// The page of languages with their files, choosing one, and trying out which words mean yes.
#pragma once

#include <windows.h>

namespace gallery {

INT_PTR CALLBACK LanguagePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
