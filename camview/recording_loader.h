// Opens a recording and reads it into a store, on a thread of its own. Nothing is written to the file, and others may
// write to it meanwhile. Main thread only.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "camview/record_store.h"
#include "camview/recording_follower.h"
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

struct LoadedRecording : RecordingFigures {
  LoadOutcome outcome = LoadOutcome::kComplete;
  std::string path;                    // UTF-8
  std::unique_ptr<RecordStore> store;  // never null; empty when nothing could be read
  // Of a recording without an end that was read to the end of the file: reads on. Otherwise null.
  std::unique_ptr<RecordingReader> reader;
  FollowState following = FollowState::kNone;
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
