// The serial link to the camera: finds the port that it talks on, opens it (38400 baud, 8 data bits, no parity, one
// stop bit) and reads its records on a thread of their own. Nothing is ever sent to the camera; it streams by itself.
//
// Shutdown order, which the main dialog keeps: signal hConnectEvent, close the port (this ends a pending read), signal
// hQuitEvent, wait for the thread, terminate it if it does not come, close its handle and hConnectEvent. hQuitEvent is
// closed by start-up, after the message loop.
#pragma once

#include <windows.h>

#include "app/app_context.h"

namespace kv {

inline constexpr DWORD kCameraBaudRate = 38400;
inline constexpr int kFirstScannedPort = 1;
inline constexpr int kLastScannedPort = 98;
// A port belongs to the camera when it sends more bytes than this within kReplyTimeoutMs.
inline constexpr DWORD kSilentPortBytes = 15;
inline constexpr DWORD kReplyTimeoutMs = 250;
inline constexpr DWORD kCommandTimeoutMs = 100;

// Changes only the baud rate of an open port. Returns 0 for an invalid handle or when the driver refuses.
DWORD SetPortBaudRate(HANDLE hPort, DWORD baud);

// Opens COM`portNumber` (1..999) for overlapped use with the camera's line settings, empty queues and both modem lines
// dropped. A read ends when it is full or the line has been quiet for 5 ms after at least one byte: that gap between
// records is what realigns the reader. Returns INVALID_HANDLE_VALUE on failure; the caller closes the handle.
HANDLE OpenCameraPort(int portNumber);

// Sends an optional zero-terminated command, then reads an optional reply of up to 64 bytes (the buffer must have room
// for a terminator behind it). `hExtraEvent` (may be null) ends the waits early; `overlapped` brings a manual-reset
// event. Returns the bytes that the last step moved, or 0. A transfer still pending on return ends when the caller
// closes the port. Main thread only.
DWORD PortTransaction(HANDLE hPort, HANDLE hExtraEvent, const char* command, char* reply, OVERLAPPED* overlapped);

// Disconnects (always, with a pause of 250 ms) and, with `connect`, scans for the camera and opens its port. Returns 1
// on success and for every disconnect; 0 for an unusable record or when no port sends. Blocks up to 250 ms for each
// silent port. Main thread only.
DWORD ConnectCamera(AppContext* context, BOOL connect);

// Takes the open port from the reader and closes it, which ends a pending read. False when none is open. Main thread
// only.
bool ClosePort(AppContext* context);

// Thread procedure; the parameter is the AppContext. Runs until hQuitEvent is signalled, whether a port is open or not.
DWORD WINAPI CameraReaderThread(void* parameter);

}  // namespace kv
