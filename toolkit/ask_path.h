// Asking the user for a file, as users expect it: the system's dialog with the type of the proposed file and all files,
// in a size of the user's choice. Main thread only.
//
// `path` proposes folder, name and extension; any of them may be missing. Both return 0, with `path` as it was, when
// the user cancelled or the system cannot show the dialog. The working folder of the process stays.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// A file that exists.
BOOL AskOpenPath(HWND owner, const wchar_t* title, std::wstring* path);

// A file to write, in a folder that exists. A name without an extension gets the proposed one, and the user is asked
// before an existing file is chosen.
BOOL AskSavePath(HWND owner, const wchar_t* title, std::wstring* path);

}  // namespace kv
