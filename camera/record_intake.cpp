#include "camera/record_intake.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

#include "camera/line_model.h"
#include "camera/record_stream.h"

namespace camera {

namespace {

// Returns whether more time has passed since the record before than usual. Records that were collected before they
// arrived are closer together than the line can send them.
bool IsAfterPause(double seconds, RecordIntake* intake) {
  constexpr double kShortest = 1 / kMaxRecordRate, kShare = 0.25, kStep = 0.02, kLong = 1.6;
  const double before = std::exchange(intake->lastRecord, seconds), pause = seconds - before;
  if (before < 0 || intake->flags & kAfterSilence) return false;
  if (pause >= kGapSeconds) return true;
  // The first pause is as good a guess as any.
  if (intake->usualPause == 0) intake->usualPause = std::max(pause, kShortest);
  intake->usualPause *= pause < intake->usualPause ? 1 - kStep * (1 - kShare) : 1 + kStep * kShare;
  intake->usualPause = std::max(intake->usualPause, kShortest);
  return pause > kLong * intake->usualPause;
}

}  // namespace

void AddSilence(RecordIntake* intake, double seconds, IntakeBatch* batch) {
  if (!intake->isSilent && seconds - intake->lastArrival < kGapSeconds) return;
  batch->sections.push_back({SectionKind::kSilent, intake->lastArrival, seconds, 0, intake->isSilent ? 0 : 1});
  intake->flags |= kAfterSilence;
  intake->lastArrival = seconds;
  intake->isSilent = true;
}

void AddBytes(RecordIntake* intake, double seconds, std::string_view bytes, IntakeBatch* batch) {
  AddSilence(intake, seconds, batch);
  intake->lastArrival = seconds;
  intake->isSilent = false;
  const size_t before = batch->records.size();
  FeedStream(&intake->stream, seconds, bytes, &batch->records);
  for (const FoundRecord& record : std::span(batch->records).subspan(before)) {
    if (record.malformedBytes > 0) {
      batch->sections.push_back(
          {SectionKind::kMalformed, record.malformedSince, record.seconds, record.malformedBytes});
      intake->flags |= kAfterDamagedBytes;
    }
    if (IsAfterPause(record.seconds, intake) && intake->flags == 0) intake->flags = kAfterPause;
    batch->flags.push_back(static_cast<unsigned char>(intake->flags));
    intake->flags = 0;
  }
}

void AddDamage(RecordIntake* intake, double seconds, long long bytes, IntakeBatch* batch) {
  batch->sections.push_back({SectionKind::kDamaged, intake->lastArrival, seconds, bytes});
  intake->flags |= kAfterDamagedBytes | (seconds - intake->lastArrival >= kGapSeconds ? kAfterSilence : 0);
  // Silence during that time is unknown.
  intake->lastArrival = seconds;
  intake->isSilent = false;
}

void EndIntake(RecordIntake* intake, IntakeBatch* batch) {
  RecordStream& stream = intake->stream;
  const long long before = stream.malformedBytes;
  const double since = stream.open.bytes > 0 ? stream.open.seconds : stream.lastArrival;
  InterruptStream(&stream);
  if (stream.malformedBytes > before) {
    batch->sections.push_back({SectionKind::kMalformed, since, stream.lastArrival, stream.malformedBytes - before});
    intake->flags |= kAfterDamagedBytes;
  }
}

void ClearBatch(IntakeBatch* batch) {
  batch->records.clear();
  batch->flags.clear();
  batch->sections.clear();
}

}  // namespace camera
