// A stretch of what is shown, as comma-separated values or as a recording, on a thread of its own. Main thread only.
#pragma once

#include <string>

#include "camera/recording.h"
#include "camview/record_store.h"
#include "camview/worker.h"

namespace camview {

enum class ExportFormat { kCsv, kRecording };

struct ExportTask {
  std::string source;  // a recording; "" to export `store`
  // The records of a live session, which must not change meanwhile, and what to say of them in a recording's header.
  const RecordStore* store = nullptr;
  camera::RecordingHeader header;
  std::string target;
  ExportFormat format = ExportFormat::kCsv;
  bool overwrite = false;
  double from = 0, to = 0;  // seconds, both included
};

struct ExportResult {
  bool isDone = false;
  std::string error;      // a sentence in English; "" when it is done or was cancelled
  long long records = 0;  // rows, or records in the chunks
  long long chunks = 0;   // of a recording
};

// CSV has the columns of camtool export, times as shown; records without points are left out. A recording has the
// source's chunks in that stretch, their bytes unchanged and their times counted from its new start, which its header
// tells; from a store, a chunk for each record as the camera would have sent it, without what was malformed. The
// target is written under another name and then put in place; a failed or cancelled export leaves what was there. The
// source itself is rejected as target.
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
  ExportResult result_;  // the thread's until it is done
  Worker worker_;
};

}  // namespace camview
