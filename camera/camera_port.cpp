#include "camera/camera_port.h"

#include "kv/framework/bounded_format.h"

namespace kv {

namespace {

constexpr DWORD kQueueBytes = 65536;

DCB ReadLineState(HANDLE hPort, BOOL* done) {
  DCB line{};
  line.DCBlength = sizeof(line);
  *done = GetCommState(hPort, &line);
  line.DCBlength = sizeof(line);
  return line;
}

bool SetLine(HANDLE hPort) {
  BOOL read = FALSE;
  DCB line = ReadLineState(hPort, &read);
  line.fBinary = TRUE;
  line.BaudRate = kCameraBaudRate;
  line.ByteSize = 8;
  line.Parity = NOPARITY;
  line.StopBits = ONESTOPBIT;
  line.fOutxCtsFlow = FALSE;
  line.fOutxDsrFlow = FALSE;
  line.fDsrSensitivity = FALSE;
  line.fOutX = FALSE;
  line.fInX = FALSE;
  line.fDtrControl = DTR_CONTROL_DISABLE;
  line.fRtsControl = RTS_CONTROL_DISABLE;
  return SetCommState(hPort, &line) != FALSE;
}

// Results are not tested: drivers differ, and the camera sends in any case.
void PrepareTransfer(HANDLE hPort) {
  SetupComm(hPort, kQueueBytes, kQueueBytes);
  SetCommMask(hPort, EV_RXCHAR | EV_RXFLAG);
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = 5;
  SetCommTimeouts(hPort, &timeouts);
  EscapeCommFunction(hPort, CLRDTR);
  EscapeCommFunction(hPort, CLRRTS);
  PurgeComm(hPort, PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR);
}

}  // namespace

DWORD SetPortBaudRate(HANDLE hPort, DWORD baud) {
  if (hPort == INVALID_HANDLE_VALUE) return FALSE;
  BOOL read = FALSE;
  DCB line = ReadLineState(hPort, &read);
  if (!read) return FALSE;
  line.BaudRate = baud;
  return SetCommState(hPort, &line) != FALSE;
}

bool ConfigureCameraPort(HANDLE hPort) {
  if (!SetLine(hPort)) return false;
  PrepareTransfer(hPort);
  return true;
}

HANDLE OpenCameraPort(int portNumber) {
  if (portNumber < 1 || portNumber > 999) return INVALID_HANDLE_VALUE;
  wchar_t name[32];
  FormatBounded(name, sizeof(name), L"\\\\.\\COM%d", portNumber);
  HANDLE port = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
  if (port == INVALID_HANDLE_VALUE || ConfigureCameraPort(port)) return port;
  CloseHandle(port);
  return INVALID_HANDLE_VALUE;
}

}  // namespace kv
