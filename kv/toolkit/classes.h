// Registers all window classes of the library, for dialog templates. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Registers (non-zero flag) or unregisters every window class of the library for a module. If a class cannot be
// registered, unregisters the others again and returns 0. Unregister after the last window has been destroyed.
BOOL RegisterAllClasses(HINSTANCE instance, BOOL registerThem);

}  // namespace kv
