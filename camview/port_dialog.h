// Asks for a port: lists those that are found while they are, with what is on them, or takes a typed name. Main thread
// only.
#pragma once

#include <windows.h>

#include <string_view>

namespace camview {

// The number of the chosen port, 1 to 999; 0 when the user cancelled.
int AskForPort(HWND owner);

// "COM3", "com3" or "3", with blanks around; 0 for anything else. Pure.
int PortOfName(std::wstring_view name);

}  // namespace camview
