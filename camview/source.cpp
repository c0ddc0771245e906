#include "camview/source.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "camera/camera_port.h"
#include "camera/text.h"
#include "camview/exporter.h"
#include "camview/live_source.h"
#include "camview/record_store.h"
#include "camview/recording_follower.h"
#include "camview/recording_loader.h"
#include "camview/view_time.h"

namespace camview {

// ---- What is open ---------------------------------------------------------------------------------------------------

const RecordStore* Source::Records() const {
  const RecordStore* store = live_ ? received_.get() : loaded_.store.get();
  return store && !store->IsEmpty() ? store : nullptr;
}

TimeRange Source::Whole() const {
  const RecordStore* store = Records();
  const double now = live_ ? status_.now : loaded_.seconds;
  if (!store) return {0, now};
  // The oldest records may have been dropped.
  return {store->First() > 0 ? store->Seconds(store->First()) : 0, std::max(now, store->Seconds(store->End() - 1))};
}

std::wstring Source::Name() const {
  return live_ ? L"COM" + std::to_wstring(status_.port) : camera::Wide(loaded_.path);
}

std::uint64_t Source::StartTime() const {
  return live_ ? live_->startTime() : loaded_.header.startTime;
}

void Source::SetRate(double rate) {
  rate_ = rate;
  if (RecordStore* store = live_ ? received_.get() : loaded_.store.get()) store->SetRate(rate);
}

// ---- Opening and closing --------------------------------------------------------------------------------------------

// The only place where a source ends. No export runs.
void Source::CloseSource() {
  if (!IsOpen()) return;
  ++number_;
  LiveRecording completed;
  if (live_ && status_.recording.state == LiveRecordingState::kOn) {
    live_->StopRecording();
    completed = live_->Status().recording;
  }
  live_.reset();
  follower_.reset();
  received_.reset();
  batch_ = {};
  loaded_ = {};
  status_ = {};
  status_.recording = completed;
}

bool Source::OpenRecording(const std::wstring& path) {
  if (isExporting_) return false;
  loadingPath_ = path;
  isLoading_ = loader_.Start(camera::Narrow(path));
  return isLoading_;
}

bool Source::OpenPort(int port) {
  if (!Close()) return false;
  const LiveRecording completed = status_.recording;
  received_ = std::make_unique<RecordStore>();
  received_->SetRate(rate_);
  live_ = std::make_unique<LiveSource>(port);
  status_ = live_->Status();
  status_.recording = completed;
  ++number_;
  return true;
}

bool Source::Close() {
  if (isExporting_) return false;
  if (isLoading_) {
    loader_.Cancel();
    loader_.Take();
    isLoading_ = false;
  }
  CloseSource();
  return true;
}

// ---- Work -----------------------------------------------------------------------------------------------------------

SourceNews Source::TakeLoaded() {
  isLoading_ = false;
  LoadedRecording next = loader_.Take();
  // A recording that has just begun may be waiting for the camera.
  const bool isEmpty = (!next.store || next.store->IsEmpty()) && !next.reader;
  if (next.outcome == LoadOutcome::kCanceled && (isEmpty || IsOpen())) return SourceNews::kLoadCanceled;
  if (isEmpty) {
    rejected_ = std::move(next);
    return SourceNews::kLoadRejected;
  }
  CloseSource();
  loaded_ = std::move(next);
  if (rate_ > 0) loaded_.store->SetRate(rate_);
  if (loaded_.reader) follower_ = std::make_unique<RecordingFollower>(std::move(loaded_.reader));
  ++number_;
  return SourceNews::kOpened;
}

void Source::TakeReceived() {
  LiveStatus status = live_->Status();
  if (status.recording.state == LiveRecordingState::kNone) status.recording = status_.recording;
  status_ = std::move(status);
  // An export reads the store, so new records wait in the port's.
  if (isExporting_) return;
  live_->Take(&batch_);
  StoreBatch(&batch_, received_.get());
}

void Source::TakeAppended() {
  loaded_.following = follower_->Take(&batch_, &loaded_);
  if (!StoreBatch(&batch_, loaded_.store.get())) loaded_.outcome = LoadOutcome::kOutOfMemory;
  if (!IsFinal(loaded_.following) && loaded_.outcome == LoadOutcome::kComplete) return;
  loaded_.store->FinishLine();
  follower_.reset();
}

SourceNews Source::Tick() {
  const bool wasRecording = Recording().state == LiveRecordingState::kOn;
  if (live_) TakeReceived();
  if (follower_ && !isExporting_) TakeAppended();
  if (wasRecording && Recording().state == LiveRecordingState::kFailed) return SourceNews::kRecordingFailed;
  if (isLoading_ && loader_.IsDone()) return TakeLoaded();
  if (!isExporting_ || !exporter_.IsDone()) return SourceNews::kNone;
  isExporting_ = false;
  return SourceNews::kExported;
}

std::wstring Source::WorkPath() const {
  return isExporting_ ? camera::Wide(exporter_.Task().target) : isLoading_ ? loadingPath_ : std::wstring();
}

void Source::CancelWork() {
  if (isLoading_) loader_.Cancel();
  if (isExporting_) exporter_.Cancel();
}

bool Source::StartRecording(const std::wstring& path, DWORD* error) {
  if (!live_) return false;
  const bool isStarted = live_->StartRecording(camera::Narrow(path), true, error);
  status_ = live_->Status();
  return isStarted;
}

void Source::StopRecording() {
  if (!live_) return;
  live_->StopRecording();
  status_ = live_->Status();
}

bool Source::StartExport(TimeRange range, const std::wstring& path, bool isCsv) {
  if (!Records() || IsWorking()) return false;
  ExportTask task{.store = Records(),
                  .recording = loaded_.path,
                  .recordingSeconds = loaded_.seconds,
                  .target = camera::Narrow(path),
                  .isCsv = isCsv,
                  .from = range.from,
                  .to = range.to};
  if (live_) task.header = {StartTime(), kv::kCameraBaudRate, static_cast<std::uint32_t>(status_.port)};
  isExporting_ = exporter_.Start(task);
  return isExporting_;
}

}  // namespace camview
