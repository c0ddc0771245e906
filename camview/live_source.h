// A port that is read on a thread of its own: records for the user interface, what is missing, and a recording of it.
// It comes back by itself when the port does. Main thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "camera/ports.h"
#include "camview/record_intake.h"

namespace camview {

enum class LiveState {
  kOpening,       // not tried yet, or just opened and nothing received
  kAbsent,        // no such port, and none since the start
  kBusy,          // another program has it
  kAccessDenied,  // for this user
  kUnusable,      // no serial port, or its adapter hangs
  kGone,          // was there and is gone; waiting for it
  kSilent,        // open, and nothing received
  kMalformed,     // bytes, but no records
  kDark,          // records with no point seen
  kRecords,
};

// There has to be nothing, no record or no point for so long before the state says so.
inline constexpr double kJudgeSeconds = 1;

// When an open line was opened, and when the last bytes, record and record with a point came; 0 and less: never.
struct LineTimes {
  double opened = 0, bytes = 0, record = 0, point = 0;
};

struct LineJudgement {
  LiveState state;
  double since;  // kSilent: the last bytes; kMalformed: the last record; kDark: the last point; else the opening
};

// The state of an open line. Pure.
LineJudgement JudgeLine(const LineTimes& times, double now);

enum class LiveRecordingState { kOff, kOn, kFailed };

struct LiveStatus {
  int port = 0;
  LiveState state = LiveState::kOpening;
  double now = 0;      // seconds since the start, on the clock of the records' times
  double since = 0;    // see LineJudgement; of a port that is not open, when that was found
  std::string holder;  // with kBusy, the program that has the port, where the system tells; else ""
  DWORD error = 0;     // the system's, with kUnusable
  long long bytes = 0, records = 0, oddRecords = 0, malformedStretches = 0, malformedBytes = 0;
  double recordsPerSecond = 0;  // over the last two seconds
  int interruptions = 0;        // how often the port went away

  LiveRecordingState recording = LiveRecordingState::kOff;
  std::string path, recordingError;                // of the recording that runs or ran last; the sentence is English
  double recordingBegan = 0, recordedSeconds = 0;  // on the same clock, and how long it is or was
  long long recordedBytes = 0;                     // received ones
};

class LiveSource {
 public:
  // Starts to open COM`port` (1 to 999). Its clock starts at 0.
  explicit LiveSource(int port);
  // Ends the recording in good order and closes the port. Waits a second at most for a device that hangs, whose thread
  // then ends by itself.
  ~LiveSource();
  LiveSource(const LiveSource&) = delete;
  LiveSource& operator=(const LiveSource&) = delete;

  // What has come since the last call: appended to `batch`, in order, nothing left out.
  void Take(IntakeBatch* batch);
  LiveStatus Status() const;
  // The start: UTC in units of 100 ns since 1601.
  std::uint64_t startTime() const;

  // Records from now on into a file, which is intact at any time; gaps in the line do not end it. False, with a
  // sentence in `error`, when the file cannot be made or a recording runs. A recording that fails later (a full disk)
  // ends with kFailed; showing goes on.
  bool StartRecording(const std::string& path, bool overwrite, std::string* error);
  // Ends the recording in good order; it is complete on return.
  void StopRecording();

 private:
  struct Reader;
  static DWORD WINAPI RunReader(void* share);

  std::shared_ptr<Reader> reader_;  // the thread has a share of its own
  HANDLE thread_;
};

}  // namespace camview
