// Reads a port on a separate thread: records for the user interface, gaps, and optionally a recording. Reopens the port
// when it reappears. Main thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "camera/ports.h"
#include "camview/record_store.h"

namespace camview {

enum class LiveState {
  kOpening,       // not tried yet, or just opened and nothing received
  kAbsent,        // no such port since the start
  kBusy,          // open in another program
  kAccessDenied,  // no access for this user
  kUnusable,      // not a serial port, or its adapter hangs
  kGone,          // disappeared; waiting for it
  kSilent,        // open, but nothing received
  kMalformed,     // bytes, but no records
  kDark,          // records without a visible point
  kRecords,
};

// The time without bytes, records or points after which the state changes.
inline constexpr double kJudgeSeconds = 1;

// The times at which a line was opened, and at which the last bytes, record and record with a point arrived; 0 or less:
// never.
struct LineTimes {
  double opened = 0, bytes = 0, record = 0, point = 0;
};

struct LineJudgment {
  LiveState state;
  double since;  // kSilent: the last bytes; kMalformed: the last record; kDark: the last point; else the opening
};

// Returns the state of an open line. Pure.
LineJudgment JudgeLine(const LineTimes& times, double now);

enum class LiveRecordingState { kNone, kOn, kComplete, kFailed };

// The current or last recording of a port.
struct LiveRecording {
  LiveRecordingState state = LiveRecordingState::kNone;
  std::string path;
  DWORD systemError = 0;          // with kFailed
  double began = 0, seconds = 0;  // start, on the clock of the port, and duration
  long long bytes = 0;            // that were received and written
  // Nothing was received, so the file that it should have replaced is as it was.
  bool hasKeptFile = false;
};

struct LiveStatus {
  int port = 0;
  LiveState state = LiveState::kOpening;
  double now = 0;      // seconds since the start, on the clock of the records' times
  double since = 0;    // see LineJudgment; for a port that is not open, when that was detected
  std::string holder;  // with kBusy, the program that uses the port, if known; otherwise ""
  DWORD error = 0;     // with kUnusable, the system error code
  long long bytes = 0, records = 0;
  double recordsPerSecond = 0;  // over the last two seconds
  LiveRecording recording;
};

class LiveSource {
 public:
  // Starts opening COM`port` (1 to 999). Its clock starts at 0.
  explicit LiveSource(int port);
  // Completes the recording and closes the port. Waits at most a second for a device that hangs, whose thread then ends
  // later.
  ~LiveSource();
  LiveSource(const LiveSource&) = delete;
  LiveSource& operator=(const LiveSource&) = delete;

  // Returns in `batch`, which was empty, everything received since the last call, in order.
  void Take(IntakeBatch* batch);
  LiveStatus Status() const;
  // Returns the start as UTC in units of 100 ns since 1601.
  std::uint64_t startTime() const;

  // Starts recording to a file, which is intact at any time; gaps in the line do not end the recording. Returns false,
  // with the system's error in `error`, when the file cannot be created; with 0 when a recording is running or the file
  // exists. A recording that fails later (a full disk) ends with kFailed, while reading continues.
  bool StartRecording(const std::string& path, bool overwrite, DWORD* error);
  // Completes the recording before it returns.
  void StopRecording();

 private:
  struct Reader;

  std::shared_ptr<Reader> reader_;  // shared with the thread
  HANDLE thread_;
};

}  // namespace camview
