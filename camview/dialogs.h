// The dialogs of camview. Main thread only.
#pragma once

#include <windows.h>

#include <string_view>

namespace camview {

// Asks for a port: lists ports while a scan finds them, with what they send, or accepts a typed name. Returns the
// number of the chosen port, 1 to 999; 0 when the user canceled.
int AskForPort(HWND parent);

// Parses "COM3", "com3" or "3", with surrounding blanks; 0 for anything else. Pure.
int PortOfName(std::wstring_view name);

// Shows what keys and mouse do.
void ShowKeys(HWND parent);

}  // namespace camview
