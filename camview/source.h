// What is open: nothing, a recording or a live port, with its records; and the background work on it: loading the next
// recording, following one that is still being written, exporting, recording the port. Only OpenRecording, OpenPort and
// Close change the source:
//
//   Work            When another source is opened, or this one is closed
//   load            is given up when a port is opened; loading another recording cancels it
//   following       ends; nothing that it has read is lost, because it is in the file
//   export          refuses all three until it is done or canceled, because it reads the records
//   live recording  is completed; Recording() still describes it
//
// The old source stays open until the new recording has been read. Code that comes back from a modal dialog compares
// Number() with its value before.
//
// A recording that was opened without an end is followed until the end comes, reading fails or it is replaced; the
// follower owns the file and the reader's place in it, the source takes what it has read. During an export, what was
// received from a port or read from the file waits.
//
// Main thread only.
#pragma once

#include <memory>
#include <string>

#include "camview/exporter.h"
#include "camview/live_source.h"
#include "camview/record_store.h"
#include "camview/recording_follower.h"
#include "camview/recording_loader.h"
#include "camview/view_time.h"

namespace camview {

// What Tick has found.
enum class SourceNews {
  kNone,
  kOpened,           // a recording
  kLoadCanceled,     // what was open is still open
  kLoadRejected,     // the same; the reason is in Rejected()
  kExported,         // or not: see Export()
  kRecordingFailed,  // a live recording; the reason is in Recording()
};

class Source {
 public:
  bool IsLive() const { return live_ != nullptr; }
  bool IsOpen() const { return number_ % 2 != 0; }
  // Another number for each source.
  unsigned Number() const { return number_; }
  // The records; null when there are none.
  const RecordStore* Records() const;
  // The time from the start, or from the oldest record that is still stored, to the end of a recording or to now.
  TimeRange Whole() const;
  // "COM3", or the path of the recording; "" when nothing is open.
  std::wstring Name() const;
  // The records per second that the camera sends, by which losses are counted in this source and those after it; 0:
  // estimated. Must be 0 or camera::kLowestRate to kHighestRate.
  double Rate() const { return rate_; }
  void SetRate(double rate);
  // The start as UTC in units of 100 ns since 1601; 0: unknown.
  std::uint64_t StartTime() const;

  // Of a recording; its store is null for a live port and when nothing is open.
  const LoadedRecording& Loaded() const { return loaded_; }
  // Whether that is followed, and whether it grows at present.
  bool IsFollowed() const { return follower_ != nullptr; }
  bool IsGrowing() const { return follower_ && loaded_.following == FollowState::kGrowing; }
  // Of a live port, as of the last Tick.
  const LiveStatus& Status() const { return status_; }
  // The recording of this port or, before there is one, that which closing the last port has completed.
  const LiveRecording& Recording() const { return status_.recording; }

  // Begins to read a recording. Returns false during an export, or when no thread could be created.
  bool OpenRecording(const std::wstring& path);
  // Returns false during an export.
  bool OpenPort(int port);
  bool Close();

  // Receives records, and takes the result of loading or exporting. Call it regularly while IsBusy(), and twice a
  // second while IsFollowed().
  SourceNews Tick();
  bool IsBusy() const { return live_ || IsGrowing() || IsWorking(); }
  bool IsWorking() const { return isLoading_ || isExporting_; }
  bool IsExporting() const { return isExporting_; }
  std::wstring WorkPath() const;  // of the file that is read or written
  double Progress() const { return isLoading_ ? loader_.Progress() : exporter_.Progress(); }
  void CancelWork();
  const LoadedRecording& Rejected() const { return rejected_; }

  // Records the port to a file, and replaces one. Returns false with an error message in `error`.
  bool StartRecording(const std::wstring& path, DWORD* error);
  void StopRecording();

  // Exports a range. Returns false without records, while loading or exporting, or when no thread could be created.
  bool StartExport(TimeRange range, const std::wstring& path, bool isCsv);
  const Exporter& Export() const { return exporter_; }

 private:
  void CloseSource();
  SourceNews TakeLoaded();
  void TakeReceived();
  void TakeAppended();

  unsigned number_ = 0;  // odd while a source is open
  double rate_ = 0;
  LoadedRecording loaded_, rejected_;
  std::unique_ptr<RecordingFollower> follower_;
  std::unique_ptr<LiveSource> live_;
  std::unique_ptr<RecordStore> received_;
  IntakeBatch batch_;
  LiveStatus status_;
  bool isLoading_ = false, isExporting_ = false;
  std::wstring loadingPath_;
  RecordingLoader loader_;
  Exporter exporter_;  // destroyed first, because it reads the records
};

}  // namespace camview
