// Sends a control random messages with good and bad pointers. The control must survive, and the second half of the
// messages must leave no memory behind; nothing else is promised.
#pragma once

#include <windows.h>

#include <vector>

namespace kvtest {

// How many messages a storm has: the environment variable KV_STORM, or a number that keeps ./test quick.
int StormLength();

// Memory that the process has asked the system for, in bytes.
SIZE_T MemoryInUse();

// Mixes in `own`, further messages that the control handles. Leaves out what would end the window, open the clipboard
// each time, or hand a wild pointer to Windows itself instead of to the control. Sizes stay below 300 pixels.
void SendMessageStorm(HWND control, const std::vector<UINT>& own = {});

}  // namespace kvtest
