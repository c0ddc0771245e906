// COM ports as camtool uses them: opened for itself alone, with a reason when that fails, read with the time at which
// bytes came. Any thread; a port and its reader belong to one.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace camtool {

enum class PortState { kOpened, kAbsent, kBusy, kNoRight, kUnusable };

// How opening a port went.
struct PortStatus {
  PortState state = PortState::kAbsent;
  DWORD error = 0;     // the system's, unless opened
  std::string holder;  // the program that uses a busy port, where the system tells
};

// An open port, and the right to it: no other camtool opens it meanwhile. Closed by destruction.
class Port {
 public:
  Port() = default;
  ~Port() { Close(); }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;

  bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE handle() const { return handle_; }
  void Close();

 private:
  friend PortStatus OpenPort(int number, const std::map<std::wstring, std::string>& holders, Port* port);
  HANDLE handle_ = INVALID_HANDLE_VALUE;
  HANDLE claim_ = nullptr;
};

// Who uses which serial device, by the device's own name. Windows lets one program open a port and refuses all others,
// so it is empty there; Wine lets any number in, and each would get a part of the bytes.
using PortHolders = std::map<std::wstring, std::string>;
PortHolders FindPortHolders();

// Opens COM`number` (1 to 999) with the camera's line settings, as Tarnwick does. `port` is closed before.
PortStatus OpenPort(int number, const PortHolders& holders, Port* port);

// A sentence for a port that did not open: what is the matter and what to do.
std::string WhyNotOpened(int number, const PortStatus& status);

// Opens the port or says on standard error why not.
bool OpenPortOrComplain(int number, Port* port);

// Reads a port whose read time-outs it sets for itself.
class PortReader {
 public:
  explicit PortReader(HANDLE port);
  ~PortReader();
  PortReader(const PortReader&) = delete;
  PortReader& operator=(const PortReader&) = delete;

  enum class Outcome { kBytes, kNothing, kGone };
  // Waits until bytes come, `waitMs` have passed or `stop` (may be null) is signalled. Bytes that follow within a
  // millisecond or two come along. `seconds` is when the first came, on camtool's clock. kGone: the port has failed,
  // its device having been unplugged.
  Outcome Read(DWORD waitMs, HANDLE stop, std::string* bytes, double* seconds);

 private:
  HANDLE port_;
  HANDLE event_;
  OVERLAPPED overlapped_{};
  char first_ = 0;
  bool isPending_ = false;
};

// Writes all bytes. A line without a listener fills up; as a real line would, it then loses them (kLost) instead of
// delaying what comes later.
enum class Written { kAll, kLost, kGone };
Written WritePort(HANDLE port, const char* bytes, size_t size, DWORD patienceMs);

}  // namespace camtool
