// COM ports: opened for one program alone, with a reason when that fails, and read with the time of each arrival.
// Any thread; a port and its reader belong to one.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace camera {

// ---- The clock ------------------------------------------------------------------------------------------------------

// Seconds on a clock that only goes forward.
double Now();

// Sleeps until that time of the clock; returns at once when it has passed. As exact as the system's timer period, which
// the caller sets.
void SleepUntil(double time);

// The same, but `stop` ends it early. False when it was signalled.
bool WaitUntil(double time, HANDLE stop);

// The same, to some microseconds on an idle machine: the last two milliseconds, by which a system may wake a thread too
// late, are spent looking at the clock. They take a processor core.
bool WaitExactlyUntil(double time, HANDLE stop);

// ---- Opening --------------------------------------------------------------------------------------------------------

enum class PortState { kOpened, kAbsent, kBusy, kAccessDenied, kUnusable };

// How opening a port went.
struct PortStatus {
  PortState state = PortState::kAbsent;
  DWORD error = 0;     // the system's
  std::string holder;  // the program that uses a busy port, where the system tells
};

// An open port, which no other program that uses this header can open meanwhile. The destructor closes it.
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

// Which program has which serial device open, by the device's own name. Empty on Windows, which lets only one program
// open a port; Wine lets several, and each would get a part of the bytes.
using PortHolders = std::map<std::wstring, std::string>;
PortHolders FindPortHolders();

// Opens COM`number` (1 to 999) with the camera's line settings, as Tarnwick does. `port` is closed first.
PortStatus OpenPort(int number, const PortHolders& holders, Port* port);

// Why a port was not opened and what to do, as a sentence.
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
  // Waits until bytes come, `waitMs` have passed or `stop` (may be null) is signalled. Bytes that follow within a
  // millisecond or two come along. `seconds` is when the first came, by Now(). kGone: the port failed; its
  // device was unplugged.
  Outcome Read(DWORD waitMs, HANDLE stop, std::string* bytes, double* seconds);

 private:
  HANDLE port_;
  HANDLE event_;
  OVERLAPPED overlapped_{};
  char first_ = 0;
  bool isPending_ = false;
};

// Writes all bytes. When nothing reads the other end, buffers fill up; the bytes are then lost (kLost), as on a real
// line, instead of delaying later ones.
enum class Written { kAll, kLost, kGone };
Written WritePort(HANDLE port, const char* bytes, size_t size, DWORD timeoutMs);

}  // namespace camera
