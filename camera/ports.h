// COM ports: exclusive opening with a reason for failure, and reading with the time of each arrival. Any thread; a port
// and its reader belong to one thread.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace camera {

// ---- The clock ------------------------------------------------------------------------------------------------------

// Returns seconds of a monotonic clock.
double Now();

// Sleeps until that time; returns at once if it has passed. As precise as the system's timer period, which the caller
// sets.
void SleepUntil(double time);

// The same, but returns false as soon as `stop` is signaled.
bool WaitUntil(double time, HANDLE stop);

// The same with a precision of microseconds on an idle machine: busy-waits for the last two milliseconds, by which a
// system may wake a thread too late.
bool WaitExactlyUntil(double time, HANDLE stop);

// ---- Opening --------------------------------------------------------------------------------------------------------

enum class PortState { kOpened, kAbsent, kBusy, kAccessDenied, kUnusable };

// The result of opening a port.
struct PortStatus {
  PortState state = PortState::kAbsent;
  DWORD error = 0;     // system error code
  std::string holder;  // the program that uses a busy port, if known
};

// The programs that have serial devices open, by the device's type and the number of its file. Empty on Windows, where
// only one program can open a port; with Wine several can, and each would receive a part of the bytes.
using PortHolders = std::map<std::pair<ULONG, long long>, std::string>;
PortHolders FindPortHolders();

// An open port, which other users of this header cannot open meanwhile. The destructor closes it.
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
  friend PortStatus OpenPort(int number, const PortHolders* holders, Port* port);
  HANDLE handle_ = INVALID_HANDLE_VALUE;
  HANDLE claim_ = nullptr;
};

// Opens COM`number` (1 to 999) once, with the camera's line settings, as Tarnwick does. Closes `port` first. A port
// that is in use keeps its settings and its data; of several programs that open it at the same time, exactly one gets
// it. Null `holders` are found if the port exists; who opens several ports finds them once.
PortStatus OpenPort(int number, const PortHolders* holders, Port* port);

// Returns the number of "COM1" to "COM999", ignoring case; 0 for anything else.
int ParsePort(std::string_view text);

// Returns a sentence with the reason why a port was not opened, and what to do.
std::string WhyNotOpened(int number, const PortStatus& status);

// ---- Reading and writing --------------------------------------------------------------------------------------------

// Reads a port; sets its read timeouts.
class PortReader {
 public:
  explicit PortReader(HANDLE port);
  ~PortReader();
  PortReader(const PortReader&) = delete;
  PortReader& operator=(const PortReader&) = delete;

  enum class Outcome { kBytes, kNothing, kGone };
  // Waits until bytes arrive, `waitMs` have passed or `stop` (may be null) is signaled. Bytes that follow within a
  // millisecond or two are included. `seconds` is the time of the first, by Now(). kGone: the port failed, because its
  // device was unplugged. Bytes that had waited before the port was opened are dropped: not all drivers do that when a
  // port is opened, and nothing is known of their times.
  Outcome Read(DWORD waitMs, HANDLE stop, std::string* bytes, double* seconds);

 private:
  void AppendWaiting(std::string* bytes);
  void DropOlderBytes(double seconds, std::string* bytes);

  HANDLE port_;
  HANDLE event_;
  OVERLAPPED overlapped_{};
  char buffer_[4096] = {};
  bool isPending_ = false;
  double freshSince_;  // earlier bytes waited before the port was opened; 0 when there are none any more
};

// Writes all bytes. When the other end does not read and the buffers are full, the bytes are lost (kLost), as on a real
// line, instead of delaying later ones.
enum class Written { kAll, kLost, kGone };
Written WritePort(HANDLE port, const char* bytes, size_t size, DWORD timeoutMs);

}  // namespace camera
