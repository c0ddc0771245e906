// Sends a control random messages with good and bad pointers. The control must survive; nothing else is promised.
#pragma once

#include <windows.h>

namespace kvtest {

// How many messages a storm has: the environment variable KV_STORM, or a number that keeps ./test quick.
int StormLength();

// Leaves out what would end the window, open the clipboard each time, or hand a wild pointer to Windows itself instead
// of to the control. Sizes stay below 300 pixels.
void SendMessageStorm(HWND control);

}  // namespace kvtest
