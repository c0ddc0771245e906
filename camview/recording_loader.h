// Opens a recording and reads it into a store, on a thread of its own. Nothing is written to the file, and others may
// write to it meanwhile. Main thread only.
#pragma once

#include <memory>
#include <string>

#include "camera/recording.h"
#include "camview/record_store.h"
#include "camview/worker.h"

namespace camview {

enum class LoadOutcome {
  kComplete,    // read to its end; damage and truncation are told apart by the numbers
  kCancelled,   // what was read until then is there
  kUnreadable,  // not opened; `error` says why
  kReadFailed,  // a read failed; what was read until then is there, `error` says why
  kEmpty,       // the file has no bytes
  kForeign,     // no recording
  kOtherVersion,
  kTooLong,      // more than RecordStore::kLargestCapacity records; the first of them are there
  kOutOfMemory,  // what could be stored is there
};

struct LoadedRecording {
  LoadOutcome outcome = LoadOutcome::kComplete;
  std::string path, error;             // UTF-8; the error is a sentence in English or ""
  std::unique_ptr<RecordStore> store;  // never null; empty when nothing could be read
  bool hasHeader = false;              // false: the header is damaged, and the next is 0
  camera::RecordingHeader header;      // when (UTC), which port, which rate
  std::uint32_t version = 0;           // of a file with kOtherVersion
  double seconds = 0;                  // its length: the time of its end, or of the last bytes
  bool isTruncated = false;            // has no end: the recording was interrupted, or is still being made
  long long truncatedBytes = 0;        // of an incomplete last chunk
  long long damageCount = 0, damagedBytes = 0;
  long long bytes = 0, records = 0, oddRecords = 0, outOfRange = 0;
  long long malformedStretches = 0, malformedBytes = 0;
};

class RecordingLoader {
 public:
  // Cancels what is being loaded and starts. False when the system gives no thread.
  bool Start(const std::string& path);
  void Cancel() { worker_.Cancel(); }
  bool IsDone() const { return worker_.IsDone(); }
  double Progress() const { return worker_.Progress(); }
  // What was loaded; once, when IsDone().
  LoadedRecording Take();

 private:
  void Load();

  LoadedRecording loaded_;  // the thread's until it is done
  Worker worker_;
};

}  // namespace camview
