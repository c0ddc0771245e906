// Registration of the window class "kvLineRecorder", the strip chart (kv/controls/strip_chart/strip_chart.h). Main
// thread only.
#pragma once

#include <windows.h>

namespace kv {

// Registers (non-zero flag) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterLineRecorderClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
