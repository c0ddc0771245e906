// Sends a control random messages with good and bad pointers, in a parent that measures and draws at random, sends the
// control messages while it is asked and destroys it now and then. The control must survive that, leave no memory
// behind and not touch a record that is gone; nothing else is promised.
#pragma once

#include <windows.h>

#include <functional>
#include <vector>

#include "tests/support/test_window.h"

namespace kvtest {

// Memory that the process has asked the system for, in bytes.
SIZE_T MemoryInUse();

// `make` gives the control, and another one whenever it has been destroyed. Mixes in `own`, further messages that the
// control handles; left out is what would hand a wild pointer to Windows itself instead of to the control. Sizes stay
// below 300 pixels. The environment variable KV_FUZZ sets the number of messages.
void FuzzMessages(RecordingParent& parent, const std::function<HWND()>& make, const std::vector<UINT>& own);

}  // namespace kvtest
