#include "camview/recording_loader.h"

#include <memory>
#include <string>
#include <utility>

#include "camera/files.h"
#include "camview/record_store.h"
#include "camview/recording_follower.h"
#include "camview/worker.h"

namespace camview {

namespace {

LoadOutcome OutcomeOf(camera::OpenFailure failure) {
  switch (failure) {
    case camera::OpenFailure::kEmpty: return LoadOutcome::kEmpty;
    case camera::OpenFailure::kForeign: return LoadOutcome::kForeign;
    case camera::OpenFailure::kOtherVersion: return LoadOutcome::kOtherVersion;
    default: return LoadOutcome::kUnreadable;
  }
}

// Reads to the end, an error or cancellation.
LoadOutcome ReadRecords(camera::RecordingFile* file, RecordIntake* intake, RecordStore* store) {
  IntakeBatch batch;
  while (camera::NextBatch(file, intake, &batch)) {
    if (!StoreBatch(&batch, store)) return LoadOutcome::kOutOfMemory;
    if (store->End() >= RecordStore::kMaxCapacity) return LoadOutcome::kTooLong;
  }
  StoreBatch(&batch, store);
  store->FinishLine();
  if (file->isStopped) return LoadOutcome::kCanceled;
  return file->error.empty() ? LoadOutcome::kComplete : LoadOutcome::kReadFailed;
}

}  // namespace

bool RecordingLoader::Start(const std::string& path) {
  worker_.Cancel();
  worker_.Wait();
  loaded_ = {};
  loaded_.path = path;
  return worker_.Start([this] { Load(); });
}

LoadedRecording RecordingLoader::Take() {
  worker_.Wait();
  return std::exchange(loaded_, {});
}

void RecordingLoader::Load() {
  auto reader = std::make_unique<RecordingReader>();
  camera::RecordingFile& file = reader->file;
  loaded_.store = std::make_unique<RecordStore>();
  if (!camera::OpenRecording(loaded_.path, &file)) {
    loaded_.outcome = OutcomeOf(file.failure);
    loaded_.systemError = file.systemError;
    return;
  }
  file.isFollowed = true;
  file.onPart = [&] {
    worker_.SetProgress(camera::ShareRead(file));
    return !worker_.IsCanceled();
  };
  loaded_.outcome = ReadRecords(&file, &reader->intake, loaded_.store.get());
  file.onPart = nullptr;
  static_cast<RecordingFigures&>(loaded_) = FiguresOf(*reader);
  // Only a recording that was read completely can be known to be truncated.
  loaded_.isTruncated = loaded_.outcome == LoadOutcome::kComplete && loaded_.isTruncated;
  if (loaded_.isTruncated && file.decoder.hasHeader) loaded_.reader = std::move(reader);
}

}  // namespace camview
