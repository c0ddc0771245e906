// What the system itself calls an open device, and which programs have devices open. Windows' native interface, which
// Wine shares. Any thread.
#pragma once

#include <windows.h>

#include <string>

namespace camtool {

// Whether several programs can have one serial port open at a time, as with Wine.
bool SharesPorts();

// "" when it has none.
std::wstring DeviceName(HANDLE device);

}  // namespace camtool
