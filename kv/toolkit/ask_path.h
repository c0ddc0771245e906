// File dialogs for opening and saving: the system's resizable dialogs, with filters for the type of the proposed file
// and for all files. Main thread only.
//
// `path` proposes folder, name and extension; each may be missing. Both functions return 0, and leave `path` unchanged,
// when the user cancels or the system cannot show the dialog. The working folder of the process does not change.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// Asks for an existing file.
BOOL AskOpenPath(HWND owner, const wchar_t* title, std::wstring* path);

// Asks for a file to write, in an existing folder. Appends the proposed extension to a name without one, and asks for
// confirmation if the file exists. `otherExtension` (".txt") is a second type that the user can choose.
BOOL AskSavePath(HWND owner, const wchar_t* title, std::wstring* path, const wchar_t* otherExtension = L"");

}  // namespace kv
