// COM ports as camtool uses them: opened for itself alone, with a reason when that fails, read with the time at which
// bytes came. Any thread; a port and its reader belong to one.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace camtool {

enum class PortState { kOpened, kAbsent, kBusy, kNoRight, kUnusable };

struct OpenedPort {
  PortState state = PortState::kAbsent;
  HANDLE handle = INVALID_HANDLE_VALUE;  // the caller closes it
  DWORD error = 0;                       // the system's, unless opened
  std::string holder;                    // the program that uses a busy port, where the system tells
};

// Who uses which serial device, by the device's own name. Windows lets one program open a port and refuses all others,
// so it is empty there; Wine lets any number in, and each would get a part of the bytes.
using PortHolders = std::map<std::wstring, std::string>;
PortHolders FindPortHolders();

// Opens COM`number` (1 to 999) with the camera's line settings, as Tarnwick does.
OpenedPort OpenPort(int number, const PortHolders& holders);

// A sentence for a port that did not open: what is the matter and what to do.
std::string WhyNotOpened(int number, const OpenedPort& port);

// Opens the port or says on standard error why not.
HANDLE OpenPortOrComplain(int number);

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
