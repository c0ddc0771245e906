// The window classes that the gallery's pages use. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

// Registers (non-zero) or unregisters all of them.
void RegisterAllClasses(HINSTANCE instance, BOOL registerThem);

}  // namespace gallery
