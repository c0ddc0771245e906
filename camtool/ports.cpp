#include "camtool/ports.h"

#include <cstddef>
#include <string>

#include "app/camera_link.h"
#include "camtool/console.h"
#include "camtool/device_name.h"
#include "camtool/pace.h"

namespace camtool {

namespace {

constexpr DWORD kGatherMs = 1;

PortState StateFor(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return PortState::kAbsent;
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY: return PortState::kBusy;
    // Windows says "access denied" when another program has the port; that a user has no right to a port is so rare
    // there that the sentence only mentions it. Elsewhere the two are told apart.
    case ERROR_ACCESS_DENIED: return SharesPorts() ? PortState::kNoRight : PortState::kBusy;
    default: return PortState::kUnusable;
  }
}

}  // namespace

void Port::Close() {
  if (isOpen()) CloseHandle(handle_);
  if (claim_) CloseHandle(claim_);
  handle_ = INVALID_HANDLE_VALUE;
  claim_ = nullptr;
}

PortStatus OpenPort(int number, const PortHolders& holders, Port* port) {
  port->Close();
  const std::wstring name = L"COM" + std::to_wstring(number), device = L"\\\\.\\" + name;
  HANDLE probe = CreateFileW(device.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                             FILE_FLAG_OVERLAPPED, nullptr);
  if (probe == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    return {StateFor(error), error, {}};
  }
  // Known before anything is set: settings and purges would disturb whoever is at work there.
  const auto holder = holders.empty() ? holders.end() : holders.find(DeviceName(probe));
  CloseHandle(probe);
  if (holder != holders.end()) return {PortState::kBusy, 0, holder->second};
  // Two that start in the same moment find no holder; which of them has the port is decided by who makes this first.
  port->claim_ = CreateMutexW(nullptr, FALSE, (L"Global\\camtool " + name).c_str());
  if (!port->claim_ || GetLastError() == ERROR_ALREADY_EXISTS) {
    port->Close();
    return {PortState::kBusy, 0, "another camtool"};
  }
  port->handle_ = kv::OpenCameraPort(number);
  if (port->isOpen()) return {PortState::kOpened, 0, {}};
  const DWORD error = GetLastError();
  port->Close();
  return {PortState::kUnusable, error, {}};
}

std::string WhyNotOpened(int number, const PortStatus& status) {
  const std::string name = "COM" + std::to_string(number);
  switch (status.state) {
    case PortState::kAbsent:
      return name + " does not exist; plug in its adapter, or run \"camtool scan\" for the ports that do";
    case PortState::kBusy:
      return name + " is in use by " +
             (status.holder.empty() ? "another program (or, rarely, not for this user)" : status.holder) +
             "; close it, or name another port";
    case PortState::kNoRight: return name + ": access denied; give this user the right to the device";
    case PortState::kUnusable:
      return name + " does not take the camera's settings (error " + std::to_string(status.error) +
             "); it is no serial port, or its adapter hangs: unplug it and plug it in again";
    default: return name + " is open";
  }
}

bool OpenPortOrComplain(int number, Port* port) {
  const PortStatus status = OpenPort(number, FindPortHolders(), port);
  if (!port->isOpen()) Complain((status.state == PortState::kBusy ? "busy: " : "") + WhyNotOpened(number, status));
  return port->isOpen();
}

// ---- Reading -------------------------------------------------------------------------------------------------------

PortReader::PortReader(HANDLE port) : port_(port), event_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {
  // None: a read of one byte ends when there is one.
  COMMTIMEOUTS timeouts{};
  SetCommTimeouts(port_, &timeouts);
}

PortReader::~PortReader() {
  if (isPending_) {
    CancelIo(port_);
    DWORD read = 0;
    GetOverlappedResult(port_, &overlapped_, &read, TRUE);
  }
  CloseHandle(event_);
}

PortReader::Outcome PortReader::Read(DWORD waitMs, HANDLE stop, std::string* bytes, double* seconds) {
  bytes->clear();
  if (!isPending_) {
    overlapped_ = {};
    overlapped_.hEvent = event_;
    ResetEvent(event_);
    if (!ReadFile(port_, &first_, 1, nullptr, &overlapped_) && GetLastError() != ERROR_IO_PENDING) {
      return Outcome::kGone;
    }
    isPending_ = true;
  }
  const HANDLE waits[] = {event_, stop};
  if (WaitForMultipleObjects(stop ? 2 : 1, waits, FALSE, waitMs) != WAIT_OBJECT_0) return Outcome::kNothing;
  isPending_ = false;
  *seconds = Now();
  DWORD read = 0;
  if (!GetOverlappedResult(port_, &overlapped_, &read, FALSE) || read == 0) return Outcome::kGone;
  bytes->assign(1, first_);
  // A line brings bytes one by one; a record of its own for each would cost more than the bytes.
  Sleep(kGatherMs);
  DWORD errors = 0;
  COMSTAT state{};
  if (!ClearCommError(port_, &errors, &state) || state.cbInQue == 0) return Outcome::kBytes;
  bytes->resize(1 + state.cbInQue);
  ResetEvent(event_);
  if (!ReadFile(port_, bytes->data() + 1, state.cbInQue, nullptr, &overlapped_) && GetLastError() != ERROR_IO_PENDING) {
    bytes->resize(1);
    return Outcome::kBytes;
  }
  GetOverlappedResult(port_, &overlapped_, &read, TRUE);
  bytes->resize(1 + read);
  return Outcome::kBytes;
}

// ---- Writing -------------------------------------------------------------------------------------------------------

Written WritePort(HANDLE port, const char* bytes, size_t size, DWORD patienceMs) {
  if (size == 0) return Written::kAll;
  OVERLAPPED overlapped{};
  overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  DWORD written = 0;
  Written outcome = Written::kAll;
  if (!WriteFile(port, bytes, static_cast<DWORD>(size), nullptr, &overlapped) && GetLastError() != ERROR_IO_PENDING) {
    outcome = Written::kGone;
  } else {
    const bool done = WaitForSingleObject(overlapped.hEvent, patienceMs) == WAIT_OBJECT_0;
    if (!done) CancelIo(port);
    if (!GetOverlappedResult(port, &overlapped, &written, TRUE)) {
      outcome = done ? Written::kGone : Written::kLost;
    } else if (written != size) {
      outcome = Written::kLost;
    }
  }
  CloseHandle(overlapped.hEvent);
  return outcome;
}

}  // namespace camtool
