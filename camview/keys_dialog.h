// Shows the keyboard commands. Main thread only.
#pragma once

#include <windows.h>

namespace camview {

void ShowKeys(HWND owner);

}  // namespace camview
