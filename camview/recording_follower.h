// Reads on in a recording that has no end yet, on a thread of its own, so that a recording that is still being written
// is shown as it grows. Nothing is written to the file, and others may write to it, rename or delete it. Main thread
// only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "camera/files.h"
#include "camera/record_intake.h"
#include "camera/recording.h"

namespace camview {

// What is known of a recording so far.
struct RecordingFigures {
  DWORD systemError = 0;           // of opening or reading the file
  bool hasHeader = false;          // false: the header is damaged, and `header` is 0
  camera::RecordingHeader header;  // start (UTC), port, rate
  double seconds = 0;              // duration: the time of its end, or of the last bytes
  bool isTruncated = false;        // has no end: the recording was interrupted or is running
  long long truncatedBytes = 0;    // of an incomplete last chunk
  long long damageCount = 0, malformedSections = 0;
  long long bytes = 0, records = 0, invalidRecords = 0;
};

// An open recording and the reader's place in it.
struct RecordingReader {
  camera::RecordingFile file;
  camera::RecordIntake intake;

  RecordingReader() = default;
  ~RecordingReader() { camera::CloseRecording(&file); }
  RecordingReader(const RecordingReader&) = delete;
  RecordingReader& operator=(const RecordingReader&) = delete;
};

RecordingFigures FiguresOf(const RecordingReader& reader);

enum class FollowState {
  kNone,      // not followed
  kWaiting,   // nothing was appended for kQuietSeconds
  kGrowing,   // is being written
  kGone,      // no file has its name any more; what is still appended is read
  kFailed,    // cannot be read at present; the reason is `systemError`
  kEnded,     // complete
  kReplaced,  // is shorter than what was read, or another file has its name
};
inline bool IsFinal(FollowState state) {
  return state >= FollowState::kEnded;
}

inline constexpr double kQuietSeconds = 10;

class RecordingFollower {
 public:
  // Continues where the reader, whose file is followed (RecordingFile::isFollowed), has come to the end of the file.
  explicit RecordingFollower(std::unique_ptr<RecordingReader> reader);
  // Waits at most a second for a drive that hangs, whose thread then ends later.
  ~RecordingFollower();
  RecordingFollower(const RecordingFollower&) = delete;
  RecordingFollower& operator=(const RecordingFollower&) = delete;

  // Returns in `batch`, which was empty, everything read since the last call, and the figures with it. While it is not
  // called, reading pauses. After a final state, nothing follows.
  FollowState Take(camera::IntakeBatch* batch, RecordingFigures* figures);

 private:
  struct Shared;

  std::shared_ptr<Shared> shared_;  // with the thread
  HANDLE thread_;
};

}  // namespace camview
