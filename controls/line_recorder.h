// Registers the window class "kvLineRecorder", the strip chart (controls/strip_chart/strip_chart.h says what it does),
// so that dialog templates may name it. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Registers (non-zero) or unregisters the class; returns 0 only when registering fails.
BOOL RegisterLineRecorderClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
