// All window classes of the library in one call, so that any dialog template may name any of them. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Registers (non-zero flag) or unregisters every window class of the library for a module. Returns 0 when a class could
// not be registered; those that could are then unregistered again. Unregister after the last window is gone.
BOOL RegisterAllClasses(HINSTANCE instance, BOOL registerThem);

}  // namespace kv
