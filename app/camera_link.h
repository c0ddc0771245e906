// The serial link to the camera: finds the camera's port, opens it (camera/camera_port.h) and reads records on a
// separate thread.
//
// Shutdown order, as the main dialog does it: signal hConnectEvent, close the port (this ends a pending read), signal
// hQuitEvent, wait for the thread, terminate it after a timeout, close its handle and hConnectEvent. Start-up closes
// hQuitEvent after the message loop.
#pragma once

#include <windows.h>

#include "app/app_context.h"
#include "camera/camera_port.h"  // IWYU pragma: export

namespace kv {

inline constexpr DWORD kCommandTimeoutMs = 100;

// Sends an optional zero-terminated command, then reads an optional reply of up to 64 bytes (the buffer must have one
// more byte for a terminator). `hExtraEvent` (may be null) ends the waits early; `overlapped` contains a manual-reset
// event. Returns the number of bytes of the last transfer, or 0. A transfer that is still pending completes when the
// caller closes the port. Main thread only.
DWORD PortTransaction(HANDLE hPort, HANDLE hExtraEvent, const char* command, char* reply, OVERLAPPED* overlapped);

// Disconnects (always, with a pause of 250 ms) and, if `connect`, scans for the camera and opens its port. Returns 1 on
// success and for every disconnect; 0 for an unusable context or when no port sends. Blocks up to 250 ms for each
// silent port. Main thread only.
DWORD ConnectCamera(AppContext* context, BOOL connect);

// Withdraws the open port from the reader and closes it, which ends a pending read. Returns false when no port is open.
// Main thread only.
bool ClosePort(AppContext* context);

// Thread procedure; the parameter is the AppContext. Runs until hQuitEvent is signaled, with or without an open port.
DWORD WINAPI CameraReaderThread(void* parameter);

}  // namespace kv
