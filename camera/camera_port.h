// A serial port with the camera's line settings: 38400 baud, 8 data bits, no parity, one stop bit. Nothing is sent to
// the camera, which sends without being asked. Any thread.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr DWORD kCameraBaudRate = 38400;
// The ports among which the camera is searched for.
inline constexpr int kFirstScannedPort = 1;
inline constexpr int kLastScannedPort = 98;
// A port is the camera's if it sends more than this number of bytes within kReplyTimeoutMs.
inline constexpr DWORD kSilentPortBytes = 15;
inline constexpr DWORD kReplyTimeoutMs = 250;

// Changes the baud rate of an open port. Returns 0 for an invalid handle or when the driver rejects the rate.
DWORD SetPortBaudRate(HANDLE hPort, DWORD baud);

// Sets the camera's line settings and timeouts of an open port, empties its queues and clears both modem lines. Returns
// false when the driver rejects the line settings.
bool ConfigureCameraPort(HANDLE hPort);

// Opens COM`portNumber` (1..999) for overlapped I/O with the camera's line settings, empty queues and both modem lines
// cleared. A read completes when its buffer is full, or when at least one byte was received and none follows for 5 ms:
// this gap between records realigns the reader. Returns INVALID_HANDLE_VALUE on failure; the caller closes the handle.
HANDLE OpenCameraPort(int portNumber);

}  // namespace kv
