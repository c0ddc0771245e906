// Start-up: registers the window classes, creates the shared state and the main dialog, and runs the message loop. Main
// thread only.
#pragma once

#include <windows.h>

namespace kv {

// Runs the tool until its main dialog closes; `instance` is the module with the resources. Failures are not reported:
// if allocation or the dialog fails, the function returns.
void RunTarnwick(HINSTANCE instance);

}  // namespace kv
