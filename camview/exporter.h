// Exports a range of time as comma-separated values or as a recording, on a separate thread. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "camera/recording.h"
#include "camview/record_store.h"
#include "camview/worker.h"

namespace camview {

struct ExportTask {
  const RecordStore* store = nullptr;  // must not change until the export is done
  // The recording from which the store was read; "": a live port, for whose records `header` begins a recording.
  std::string recording;
  double recordingSeconds = 0;  // its duration when it was read
  camera::RecordingHeader header;
  std::string target;
  bool isCsv = false;
  double from = 0, to = 0;  // seconds; of a record at `to`, see RecordStore::EndOf
};

enum class ExportFailure { kNone, kSystem, kTargetIsSource, kSourceIsShorter };

struct ExportResult {
  bool isDone = false;
  ExportFailure failure = ExportFailure::kNone;  // kNone also when it was canceled
  DWORD systemError = 0;                         // with kSystem
  long long records = 0;                         // rows, or records in the chunks
};

// CSV has the columns of camtool export, with times as shown; records without points are omitted. A recording contains
// the chunks of the one that was read, with unchanged bytes and times relative to its new start, which is in its
// header; that one is rejected as target, and also when it has become shorter meanwhile. Of a live port, a recording
// has a chunk for each record as the camera would have sent it, without malformed bytes. An existing target is
// replaced; a failed or canceled export does not change it.
class Exporter {
 public:
  // Returns false when no thread could be created.
  bool Start(const ExportTask& task);
  void Cancel() { worker_.Cancel(); }
  bool IsDone() const { return worker_.IsDone(); }
  double Progress() const { return worker_.Progress(); }
  // When IsDone().
  const ExportTask& Task() const { return task_; }
  const ExportResult& Result() const { return result_; }

 private:
  void Run();

  ExportTask task_;
  ExportResult result_;  // used by the thread until it is done
  Worker worker_;
};

}  // namespace camview
