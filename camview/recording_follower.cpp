#include "camview/recording_follower.h"

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/shared_thread.h"

namespace camview {

namespace {

constexpr DWORD kPollMs = 500, kTakeMs = 20, kEndMs = 1000;
constexpr size_t kMaxWaiting = 1 << 16;  // records, until they are taken

}  // namespace

RecordingFigures FiguresOf(const RecordingReader& reader) {
  const camera::RecordingDecoder& decoder = reader.file.decoder;
  const camera::RecordStream& stream = reader.intake.stream;
  return {.systemError = reader.file.systemError,
          .hasHeader = decoder.header.startTime != 0 || decoder.header.baudRate != 0,
          .header = decoder.header,
          .seconds = static_cast<double>(decoder.endTime) / 1e6,
          .isTruncated = !decoder.hasEnd,
          .truncatedBytes = static_cast<long long>(reader.file.truncatedBytes),
          .damageCount = static_cast<long long>(decoder.damageCount),
          .malformedSections = stream.malformedSections,
          .bytes = stream.bytes,
          .records = stream.records,
          .invalidRecords = stream.invalidRecords};
}

struct RecordingFollower::Shared {
  HANDLE stop = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  std::atomic<bool> isStopped{false};  // set before the event

  // Used by the thread only.
  std::unique_ptr<RecordingReader> reader;
  camera::IntakeBatch found;
  double grown = -kQuietSeconds;  // by camera::Now()

  std::mutex lock;  // guards the following members
  camera::IntakeBatch batch;
  RecordingFigures figures;
  FollowState state = FollowState::kWaiting;

  ~Shared() { CloseHandle(stop); }
  void Run();
  FollowState ReadOn();
  FollowState ReadAppended();
  FollowState Fail();
  bool Publish(FollowState now);
};

// ---- The thread -----------------------------------------------------------------------------------------------------

void RecordingFollower::Shared::Run() {
  while (WaitForSingleObject(stop, kPollMs) == WAIT_TIMEOUT) {
    const FollowState now = ReadOn();
    if (!Publish(now) || IsFinal(now)) return;
  }
}

FollowState RecordingFollower::Shared::ReadOn() {
  switch (camera::LookForMore(&reader->file)) {
    case camera::FileGrowth::kLonger: return ReadAppended();
    case camera::FileGrowth::kReplaced: return FollowState::kReplaced;
    case camera::FileGrowth::kFailed: return Fail();
    case camera::FileGrowth::kGone: return FollowState::kGone;
    case camera::FileGrowth::kSame: break;
  }
  if (camera::Now() - grown < kQuietSeconds) return FollowState::kGrowing;
  // Windows cannot replace a file that is open, and this recording was probably interrupted.
  camera::PauseReading(&reader->file);
  return FollowState::kWaiting;
}

FollowState RecordingFollower::Shared::ReadAppended() {
  grown = camera::Now();
  while (camera::NextBatch(&reader->file, &reader->intake, &found)) {
    if (found.records.size() >= kMaxWaiting && !Publish(FollowState::kGrowing)) break;
  }
  if (!reader->file.error.empty()) return Fail();
  return reader->file.decoder.hasEnd ? FollowState::kEnded : FollowState::kGrowing;
}

// A drive may come back, but not for the open file.
FollowState RecordingFollower::Shared::Fail() {
  camera::PauseReading(&reader->file);
  return FollowState::kFailed;
}

// Hands over what was found, when that before has been taken. Returns false when the thread should end.
bool RecordingFollower::Shared::Publish(FollowState now) {
  while (!isStopped) {
    {
      const std::lock_guard guard(lock);
      if (batch.records.empty() && batch.sections.empty()) {
        std::swap(batch, found);
        figures = FiguresOf(*reader);
        state = now;
        return true;
      }
    }
    WaitForSingleObject(stop, kTakeMs);
  }
  return false;
}

// ---- The main thread ------------------------------------------------------------------------------------------------

RecordingFollower::RecordingFollower(std::unique_ptr<RecordingReader> reader) : shared_(std::make_shared<Shared>()) {
  Shared& shared = *shared_;
  shared.reader = std::move(reader);
  shared.reader->file.onPart = [&shared] { return !shared.isStopped; };
  shared.figures = FiguresOf(*shared.reader);
  thread_ = camera::StartShared<&Shared::Run>(shared_);
}

RecordingFollower::~RecordingFollower() {
  shared_->isStopped = true;
  SetEvent(shared_->stop);
  if (!thread_) return;
  WaitForSingleObject(thread_, kEndMs);
  CloseHandle(thread_);
}

FollowState RecordingFollower::Take(camera::IntakeBatch* batch, RecordingFigures* figures) {
  const std::lock_guard guard(shared_->lock);
  std::swap(*batch, shared_->batch);
  *figures = shared_->figures;
  return shared_->state;
}

}  // namespace camview
