// A hint in an empty box. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// Shows `text` in gray in a list box or edit control while that is empty, for example how to fill it. The text is no
// content of the control. Replaces the previous text; an empty one removes it. Returns 0 if the dialog has no list box
// or edit control with that id.
BOOL SetEmptyText(HWND dialog, int id, const std::wstring& text);

}  // namespace kv
