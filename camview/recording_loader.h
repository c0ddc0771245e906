// Opens a recording and reads it into a store, on a thread of its own. Nothing is written to the file, and others may
// write to it meanwhile. Main thread only.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "camera/recording.h"
#include "camview/record_store.h"
#include "camview/worker.h"

namespace camview {

enum class LoadOutcome {
  kComplete,    // read to its end; for damage and truncation see the counts
  kCanceled,    // contains what was read
  kUnreadable,  // cannot be opened; the reason is `systemError`
  kReadFailed,  // reading failed; contains what was read; the reason is `systemError`
  kEmpty,       // the file has no bytes
  kForeign,     // not a recording
  kOtherVersion,
  kTooLong,      // more than RecordStore::kMaxCapacity records; contains the first ones
  kOutOfMemory,  // contains what could be stored
};

struct LoadedRecording {
  LoadOutcome outcome = LoadOutcome::kComplete;
  std::string path;                    // UTF-8
  DWORD systemError = 0;               // with kUnreadable and kReadFailed
  std::unique_ptr<RecordStore> store;  // never null; empty when nothing could be read
  bool hasHeader = false;              // false: the header is damaged, and `header` is 0
  camera::RecordingHeader header;      // start (UTC), port, rate
  std::uint32_t version = 0;           // of a file with kOtherVersion
  double seconds = 0;                  // duration: the time of its end, or of the last bytes
  bool isTruncated = false;            // has no end: the recording was interrupted or is running
  long long truncatedBytes = 0;        // of an incomplete last chunk
  long long damageCount = 0, damagedBytes = 0;
  long long bytes = 0, records = 0, invalidRecords = 0, outOfRange = 0;
  long long malformedSections = 0, malformedBytes = 0;
};

class RecordingLoader {
 public:
  // Cancels loading and starts again. Returns false when no thread could be created.
  bool Start(const std::string& path);
  void Cancel() { worker_.Cancel(); }
  bool IsDone() const { return worker_.IsDone(); }
  double Progress() const { return worker_.Progress(); }
  // Returns the result; once, when IsDone().
  LoadedRecording Take();

 private:
  void Load();

  LoadedRecording loaded_;  // used by the thread until it is done
  Worker worker_;
};

}  // namespace camview
