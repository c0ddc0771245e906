#include "camera/ports.h"

#include <winternl.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_port.h"
#include "camera/text.h"
#include "kv/framework/file_path.h"

namespace camera {

// ---- The clock ------------------------------------------------------------------------------------------------------

double Now() {
  LARGE_INTEGER count, frequency;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

void SleepUntil(double time) {
  const double left = time - Now();
  if (left > 0) Sleep(static_cast<DWORD>(std::lround(left * 1000)));
}

bool WaitUntil(double time, HANDLE stop) {
  constexpr double kMaxWaitMs = 1e9;
  const double leftMs = std::clamp((time - Now()) * 1000, 0.0, kMaxWaitMs);
  return WaitForSingleObject(stop, static_cast<DWORD>(std::lround(leftMs))) != WAIT_OBJECT_0;
}

bool WaitExactlyUntil(double time, HANDLE stop) {
  constexpr double kMaxWakeDelay = 0.002;
  if (!WaitUntil(time - kMaxWakeDelay, stop)) return false;
  while (Now() < time) YieldProcessor();
  return true;
}

// ---- Programs that have a port open ---------------------------------------------------------------------------------

namespace {

// From ntdll, for which not every toolchain has an import library, and which winternl.h declares only in part.
using QueryFile = NTSTATUS(NTAPI*)(HANDLE, IO_STATUS_BLOCK*, void*, ULONG, int);
using QuerySystem = NTSTATUS(NTAPI*)(int, void*, ULONG, ULONG*);
constexpr int kFileNumber = 6, kVolumeDevice = 4;
constexpr int kExtendedHandles = 64;
constexpr NTSTATUS kTooSmall = static_cast<NTSTATUS>(0xC0000004);

struct HandleEntry {
  void* object;
  ULONG_PTR process;
  ULONG_PTR handle;
  ULONG access;
  USHORT backTrace, type;
  ULONG attributes, reserved;
};

struct HandleList {
  ULONG_PTR count, reserved;
  HandleEntry entries[1];
};

template <class Function>
Function Native(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)));
}

std::vector<char> AllHandles() {
  const auto query = Native<QuerySystem>("NtQuerySystemInformation");
  std::vector<char> list(1 << 18);
  for (int tries = 0; query && tries < 6; ++tries) {
    const NTSTATUS status = query(kExtendedHandles, list.data(), static_cast<ULONG>(list.size()), nullptr);
    if (status == 0) return list;
    if (status != kTooSmall) break;
    list.resize(list.size() * 4);
  }
  return {};
}

std::string ProgramOf(HANDLE process) {
  wchar_t path[MAX_PATH] = L"";
  DWORD size = MAX_PATH;
  if (!QueryFullProcessImageNameW(process, 0, path, &size)) return "another program";
  return Narrow(kv::FileNameOf(path));
}

// Returns whether several programs can open a serial port at the same time, as with Wine.
bool SharesPorts() {
  return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

// Returns the device's type and the number of its file; zeros when it has none. Not its name: since version 10, Wine
// returns an empty one.
PortHolders::key_type DeviceOf(HANDLE handle) {
  const auto queryFile = Native<QueryFile>("NtQueryInformationFile");
  const auto queryVolume = Native<QueryFile>("NtQueryVolumeInformationFile");
  IO_STATUS_BLOCK status{};
  LARGE_INTEGER number{};
  struct {
    ULONG type, characteristics;
  } device{};
  const bool isKnown = queryFile && queryVolume &&
                       queryFile(handle, &status, &number, sizeof(number), kFileNumber) == 0 &&
                       queryVolume(handle, &status, &device, sizeof(device), kVolumeDevice) == 0;
  return isKnown ? PortHolders::key_type(device.type, number.QuadPart) : PortHolders::key_type();
}

// Adds the other process as a holder if its handle is of a character device.
void AddHolder(HANDLE process, HANDLE theirs, PortHolders* holders) {
  HANDLE mine = nullptr;
  if (!DuplicateHandle(process, theirs, GetCurrentProcess(), &mine, 0, FALSE, DUPLICATE_SAME_ACCESS)) return;
  if (GetFileType(mine) == FILE_TYPE_CHAR) {
    const PortHolders::key_type device = DeviceOf(mine);
    if (device.second != 0) holders->emplace(device, ProgramOf(process));
  }
  CloseHandle(mine);
}

}  // namespace

PortHolders FindPortHolders() {
  PortHolders holders;
  if (!SharesPorts()) return holders;
  const std::vector<char> bytes = AllHandles();
  if (bytes.empty()) return holders;
  const auto* list = reinterpret_cast<const HandleList*>(bytes.data());
  HANDLE process = nullptr;
  ULONG_PTR id = 0;
  for (ULONG_PTR i = 0; i < list->count; ++i) {
    const HandleEntry& entry = list->entries[i];
    constexpr ULONG kReadAndWrite = FILE_READ_DATA | FILE_WRITE_DATA;
    if (entry.process == GetCurrentProcessId() || (entry.access & kReadAndWrite) != kReadAndWrite) continue;
    if (entry.process != id) {
      if (process) CloseHandle(process);
      id = entry.process;
      process = OpenProcess(PROCESS_DUP_HANDLE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(id));
    }
    if (process) AddHolder(process, reinterpret_cast<HANDLE>(entry.handle), &holders);
  }
  if (process) CloseHandle(process);
  return holders;
}

// ---- Opening --------------------------------------------------------------------------------------------------------

namespace {

constexpr DWORD kGatherMs = 1;
// What the line carries, and what it may carry in addition because clocks and wake-ups are not exact.
constexpr double kBytesPerSecond = kv::kCameraBaudRate / 10.0, kSlackBytes = 128;

PortState StateFor(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return PortState::kAbsent;
    case ERROR_SHARING_VIOLATION:
    case ERROR_BUSY: return PortState::kBusy;
    // Windows reports "access denied" when another program has the port open; there, missing rights are so rare that
    // the sentence only mentions them. Elsewhere the two are distinguished.
    case ERROR_ACCESS_DENIED: return SharesPorts() ? PortState::kAccessDenied : PortState::kBusy;
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

PortStatus OpenPort(int number, const PortHolders* holders, Port* port) {
  port->Close();
  const std::wstring name = L"COM" + std::to_wstring(number), device = L"\\\\.\\" + name;
  // Of two programs that start at the same time, the one that creates this mutex first gets the port. The other one
  // only asks whether the port exists: with read and write access it would be a holder to the first one.
  port->claim_ = CreateMutexW(nullptr, FALSE, (L"Global\\camtool " + name).c_str());
  const bool isClaimed = port->claim_ && GetLastError() != ERROR_ALREADY_EXISTS;
  port->handle_ = CreateFileW(device.c_str(), isClaimed ? GENERIC_READ | GENERIC_WRITE : 0, 0, nullptr, OPEN_EXISTING,
                              FILE_FLAG_OVERLAPPED, nullptr);
  if (!port->isOpen()) {
    const DWORD error = GetLastError();
    port->Close();
    return {StateFor(error), error, {}};
  }
  // Before anything is set: settings and purges would disturb the program that uses the port.
  const PortHolders found = holders ? PortHolders() : FindPortHolders();
  if (!holders) holders = &found;
  const auto holder = holders->empty() ? holders->end() : holders->find(DeviceOf(port->handle_));
  if (holder != holders->end() || !isClaimed) {
    port->Close();
    return {PortState::kBusy, 0, holder != holders->end() ? holder->second : "camtool or camview"};
  }
  if (kv::ConfigureCameraPort(port->handle_)) return {PortState::kOpened, 0, {}};
  const DWORD error = GetLastError();
  port->Close();
  return {PortState::kUnusable, error, {}};
}

int ParsePort(std::string_view text) {
  if (text.size() < 4 || text.size() > 6) return 0;
  for (int i = 0; i < 3; ++i) {
    if ((text[i] & ~0x20) != "COM"[i]) return 0;
  }
  int port = 0;
  for (const char digit : text.substr(3)) {
    if (digit < '0' || digit > '9') return 0;
    port = port * 10 + (digit - '0');
  }
  return port;
}

std::string WhyNotOpened(int number, const PortStatus& status) {
  const std::string name = "COM" + std::to_string(number);
  switch (status.state) {
    case PortState::kAbsent:
      return name + " does not exist; plug in its adapter, or run \"camtool scan\" for the ports that do";
    case PortState::kBusy:
      return name + " is in use by " +
             (status.holder.empty() ? "another program (or, rarely, access is denied)" : status.holder) +
             "; close it, or name another port";
    case PortState::kAccessDenied:
      return name + " cannot be opened: access denied; give this user access to the device";
    case PortState::kUnusable:
      return name + " does not accept the camera's settings (error " + std::to_string(status.error) +
             "); it is not a serial port, or its adapter hangs: unplug it and plug it in again";
    default: return name + " is open";
  }
}

// ---- Reading --------------------------------------------------------------------------------------------------------

PortReader::PortReader(HANDLE port)
    : port_(port), event_(CreateEventA(nullptr, TRUE, FALSE, nullptr)), freshSince_(Now()) {
  // A read waits for the first byte and completes with those that are there. In the form for that, Wine's reads wait
  // until they are full; another form, in which reads on Windows do not wait at all, works there.
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = MAXDWORD;
  if (!SharesPorts()) {
    timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
    timeouts.ReadTotalTimeoutConstant = MAXDWORD - 1;
  }
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

// Appends the bytes that are there.
void PortReader::AppendWaiting(std::string* bytes) {
  DWORD errors = 0, read = 0;
  COMSTAT state{};
  if (!ClearCommError(port_, &errors, &state) || state.cbInQue == 0) return;
  const size_t first = bytes->size();
  bytes->resize(first + state.cbInQue);
  if (ReadFile(port_, bytes->data() + first, state.cbInQue, nullptr, &overlapped_) ||
      GetLastError() == ERROR_IO_PENDING) {
    GetOverlappedResult(port_, &overlapped_, &read, TRUE);
  }
  bytes->resize(first + read);
}

// After opening, drops what the line cannot have carried since the last read, until a read has no such bytes.
void PortReader::DropOlderBytes(double seconds, std::string* bytes) {
  if (freshSince_ == 0) return;
  const double carried = (seconds - freshSince_) * kBytesPerSecond, size = static_cast<double>(bytes->size());
  const bool isOlder = size > carried + kSlackBytes;
  freshSince_ = isOlder ? seconds : 0;
  if (isOlder) bytes->erase(0, bytes->size() - static_cast<size_t>(carried));
}

PortReader::Outcome PortReader::Read(DWORD waitMs, HANDLE stop, std::string* bytes, double* seconds) {
  bytes->clear();
  if (!isPending_) {
    overlapped_ = {};
    overlapped_.hEvent = event_;
    if (!ReadFile(port_, buffer_, sizeof(buffer_), nullptr, &overlapped_) && GetLastError() != ERROR_IO_PENDING) {
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
  bytes->assign(buffer_, read);
  // Bytes may arrive one by one; a chunk for each would take more space than the bytes. After a line's end there is a
  // pause.
  if (bytes->back() != '\n') {
    Sleep(kGatherMs);
    AppendWaiting(bytes);
  }
  DropOlderBytes(*seconds, bytes);
  return bytes->empty() ? Outcome::kNothing : Outcome::kBytes;
}

// ---- Writing --------------------------------------------------------------------------------------------------------

Written WritePort(HANDLE port, const char* bytes, size_t size, DWORD timeoutMs) {
  if (size == 0) return Written::kAll;
  OVERLAPPED overlapped{};
  overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  DWORD written = 0;
  Written outcome = Written::kAll;
  if (!WriteFile(port, bytes, static_cast<DWORD>(size), nullptr, &overlapped) && GetLastError() != ERROR_IO_PENDING) {
    outcome = Written::kGone;
  } else {
    const bool done = WaitForSingleObject(overlapped.hEvent, timeoutMs) == WAIT_OBJECT_0;
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

}  // namespace camera
