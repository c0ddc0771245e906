// Window class "kvLineRecorder", the strip-chart recorder: its registration only, so that dialog templates may name it.
// A control of the class shows a plain panel and behaves like any window, at every DPI alike. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Registers (non-zero) or unregisters the class; returns 0 only when registering fails.
BOOL RegisterLineRecorderClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
