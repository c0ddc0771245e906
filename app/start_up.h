// The tool's life from start to end: window classes, the application record, the main dialog, the message loop. Main
// thread only.
#pragma once

#include <windows.h>

namespace kv {

// Runs the tool until its main dialog closes; `instance` is the module whose resources all parts use. No failure is
// reported: without memory or without the dialog the run simply ends.
void RunTarnwick(HINSTANCE instance);

}  // namespace kv
