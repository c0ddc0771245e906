// Compiled HTML help in the user's language. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Opens the help file stem + code + ".chm" of the language (see FindLanguageFile; another language's file stands in for
// a missing one) with an HTML help command (HH_DISPLAY_TOPIC is 0) and its data. Without a file, or without an HTML
// help facility on the machine, nothing opens. In every case the window is repainted, since help may have covered it.
// Always 1.
BOOL OpenHelp(HWND window, int language, const wchar_t* stem, UINT command, DWORD_PTR data);

// The system's HTML help, loaded when it is first called. A test puts another function here; production code never
// does.
using HtmlHelpCall = HWND(WINAPI*)(HWND caller, const wchar_t* file, UINT command, DWORD_PTR data);
extern HtmlHelpCall htmlHelp;

}  // namespace kv
