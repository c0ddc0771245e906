// The frame's menu bar and its tool tip, in the language that is shown. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

// Each puts a new one in the place of the former.
void ReplaceMenu(HWND frame);
void ReplaceToolTips(HWND frame);

}  // namespace gallery
