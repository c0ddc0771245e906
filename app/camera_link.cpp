#include "app/camera_link.h"

#include <cstring>

#include "app/app_context.h"
#include "camera/camera_record.h"

namespace kv {

namespace {

constexpr DWORD kDisconnectPauseMs = 250;
constexpr DWORD kReplyBytes = 64;
constexpr int kBufferBytes = 1024;
constexpr int kScannedPorts = kLastScannedPort - kFirstScannedPort + 1;

struct WaitList {
  HANDLE events[2];
  DWORD count;
};

// Waits for a transfer that may be pending and returns the number of bytes transferred.
DWORD FinishTransfer(BOOL started, HANDLE hPort, const WaitList& waits, DWORD timeoutMs, OVERLAPPED* overlapped,
                     DWORD movedAtOnce) {
  if (started) return movedAtOnce;
  if (GetLastError() != ERROR_IO_PENDING) return 0;
  WaitForMultipleObjects(waits.count, waits.events, FALSE, timeoutMs);
  DWORD moved = 0;
  return GetOverlappedResult(hPort, overlapped, &moved, FALSE) ? moved : 0;
}

DWORD SendCommand(HANDLE hPort, const char* command, const WaitList& waits, OVERLAPPED* overlapped) {
  DWORD written = 0;
  const BOOL started = WriteFile(hPort, command, lstrlenA(command), &written, overlapped);
  return FinishTransfer(started, hPort, waits, kCommandTimeoutMs, overlapped, written);
}

DWORD ReceiveReply(HANDLE hPort, char* reply, const WaitList& waits, OVERLAPPED* overlapped) {
  // A read that is still pending after its wait may write later, even after the port is closed. There is a buffer for
  // each port of a scan, so that none is soon used by another read.
  static char buffers[kScannedPorts][kBufferBytes];
  static int next = 0;
  char(&buffer)[kBufferBytes] = buffers[next];
  next = (next + 1) % kScannedPorts;
  std::memset(buffer, 0, sizeof(buffer));
  ResetEvent(overlapped->hEvent);
  DWORD read = 0;
  const BOOL started = ReadFile(hPort, buffer, kReplyBytes, &read, overlapped);
  read = FinishTransfer(started, hPort, waits, kReplyTimeoutMs, overlapped, read);
  if (read > 0 && !IsBadWritePtr(reply, read)) lstrcpynA(reply, buffer, kBufferBytes);
  return read;
}

void Disconnect(AppContext* context) {
  SetEvent(context->hConnectEvent);
  context->bConnected = FALSE;
  Sleep(kDisconnectPauseMs);
  if (ClosePort(context)) context->nPort = -1;
}

bool CameraSendsOn(int portNumber, HANDLE hQuitEvent) {
  // One for each port, never freed, like the buffers: a pending read completes into it.
  static OVERLAPPED transfers[kScannedPorts];
  OVERLAPPED& transfer = transfers[portNumber - kFirstScannedPort];
  if (!HasOverlappedIoCompleted(&transfer))
    return false;  // still pending from an earlier scan, although the port was closed
  HANDLE port = OpenCameraPort(portNumber);
  if (port == INVALID_HANDLE_VALUE) return false;
  SetPortBaudRate(port, kCameraBaudRate);
  transfer = {.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr)};
  char reply[256] = "";
  const DWORD received = PortTransaction(port, hQuitEvent, nullptr, reply, &transfer);
  CloseHandle(port);
  CloseHandle(transfer.hEvent);
  return received > kSilentPortBytes;
}

// Returns the number of the camera's port, or -1.
int FindCameraPort(HANDLE hQuitEvent) {
  for (int port = kFirstScannedPort; port <= kLastScannedPort; ++port) {
    if (CameraSendsOn(port, hQuitEvent)) return port;
  }
  return -1;
}

// Reads up to one record, waiting without a timeout until bytes arrive or the quit event is signaled. Returns the
// number of bytes. The read itself resets its event. Sets `canContinue` to true when the wait has just shown that the
// quit event is not signaled.
DWORD ReadRecord(HANDLE hPort, HANDLE hQuitEvent, char* buffer, OVERLAPPED* overlapped, bool* canContinue) {
  DWORD read = 0;
  if (ReadFile(hPort, buffer, kRecordLength, &read, overlapped)) return read;
  if (GetLastError() != ERROR_IO_PENDING) return 0;
  const HANDLE waits[] = {hQuitEvent, overlapped->hEvent};
  if (WaitForMultipleObjects(2, waits, FALSE, INFINITE) != WAIT_OBJECT_0 + 1) return 0;
  *canContinue = true;
  return GetOverlappedResult(hPort, overlapped, &read, FALSE) ? read : 0;
}

void StorePoints(AppContext* context, const CameraPoint (&points)[kPointCount]) {
  for (int i = 0; i < kPointCount; ++i) {
    CameraPoint& stored = context->points[i];
    if (points[i].x == stored.x && points[i].y == stored.y) continue;
    stored = points[i];
    context->bChanged = TRUE;
  }
}

}  // namespace

bool ClosePort(AppContext* context) {
  HANDLE port = context->hPort;
  if (port == INVALID_HANDLE_VALUE) return false;
  // Withdrawn before it is closed: the handle's value may then be reused for another file, which the reader would read.
  context->hPort = INVALID_HANDLE_VALUE;
  CloseHandle(port);
  return true;
}

DWORD PortTransaction(HANDLE hPort, HANDLE hExtraEvent, const char* command, char* reply, OVERLAPPED* overlapped) {
  if (hPort == INVALID_HANDLE_VALUE || IsBadReadPtr(overlapped, sizeof(*overlapped))) return 0;
  PurgeComm(hPort, PURGE_TXCLEAR | PURGE_RXCLEAR);
  WaitList waits{};
  if (hExtraEvent) waits.events[waits.count++] = hExtraEvent;
  if (overlapped->hEvent) waits.events[waits.count++] = overlapped->hEvent;
  ResetEvent(overlapped->hEvent);
  DWORD moved = 0;
  if (!IsBadReadPtr(command, 2)) {
    moved = SendCommand(hPort, command, waits, overlapped);
    if (moved != static_cast<DWORD>(lstrlenA(command))) return 0;
  }
  if (!IsBadWritePtr(reply, 2)) moved = ReceiveReply(hPort, reply, waits, overlapped);
  return moved;
}

DWORD ConnectCamera(AppContext* context, BOOL connect) {
  if (!IsContextUsable(context)) return FALSE;
  Disconnect(context);
  if (!connect) return TRUE;
  const int port = FindCameraPort(context->hQuitEvent);
  if (port < 0) return FALSE;
  context->nPort = port;
  context->hPort = OpenCameraPort(port);
  SetPortBaudRate(context->hPort, kCameraBaudRate);
  context->bConnected = TRUE;
  return TRUE;
}

DWORD WINAPI CameraReaderThread(void* parameter) {
  auto* context = static_cast<AppContext*>(parameter);
  if (!IsContextUsable(context)) ExitThread(1);
  OVERLAPPED overlapped{};
  CameraPoint points[kPointCount];
  for (CameraPoint& point : points) point = {kFieldWidth, kFieldHeight};
  // Quirk: polls without a pause while no port is open, so that the first record after a connect is read at once.
  for (bool canContinue = false; canContinue || WaitForSingleObject(context->hQuitEvent, 0) == WAIT_TIMEOUT;) {
    canContinue = false;
    // Creating the event may fail at first. Without an event the read could not be waited for, and the next one would
    // use the same OVERLAPPED.
    if (!overlapped.hEvent) overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    HANDLE port = context->hPort;
    if (port == INVALID_HANDLE_VALUE || !overlapped.hEvent) continue;
    char buffer[kBufferBytes] = "";
    const DWORD read = ReadRecord(port, context->hQuitEvent, buffer, &overlapped, &canContinue);
    if (read != kRecordLength || !HasRecordShape(buffer)) continue;
    ParseRecord(buffer, points);
    StorePoints(context, points);
  }
  if (overlapped.hEvent) CloseHandle(overlapped.hEvent);
  ExitThread(1);
}

}  // namespace kv
