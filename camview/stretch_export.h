// Exports a stretch as comma-separated values or as a recording, on a separate thread. Main thread only.
#pragma once

#include <string>

#include "camera/recording.h"
#include "camview/record_store.h"
#include "camview/worker.h"

namespace camview {

enum class ExportFormat { kCsv, kRecording };

struct ExportTask {
  std::string source;        // a recording; "" to export `store`
  double sourceSeconds = 0;  // its duration when it was opened; an export fails when it is shorter now
  // The records of a live session, which must not change meanwhile, and the header for a recording of them.
  const RecordStore* store = nullptr;
  camera::RecordingHeader header;
  std::string target;
  ExportFormat format = ExportFormat::kCsv;
  bool overwrite = false;
  double from = 0, to = 0;  // seconds, both included
};

struct ExportResult {
  bool isDone = false;
  std::string error;      // in English; "" when it is done or was cancelled
  long long records = 0;  // rows, or records in the chunks
  long long chunks = 0;   // of a recording
};

// CSV has the columns of camtool export, with times as shown; records without points are omitted. A recording contains
// the source's chunks in that stretch, with unchanged bytes and times relative to its new start, which is in its
// header; from a store, it has a chunk for each record as the camera would have sent it, without malformed bytes. The
// target is written under a temporary name and then renamed; a failed or cancelled export does not change an existing
// file. The source itself is rejected as target.
class StretchExporter {
 public:
  bool Start(const ExportTask& task);
  void Cancel() { worker_.Cancel(); }
  bool IsDone() const { return worker_.IsDone(); }
  double Progress() const { return worker_.Progress(); }
  // When IsDone().
  const ExportResult& Result() const { return result_; }

 private:
  void Run();

  ExportTask task_;
  ExportResult result_;  // used by the thread until it is done
  Worker worker_;
};

}  // namespace camview
