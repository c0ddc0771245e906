#include "camview/record_intake.h"

#include <algorithm>
#include <string_view>

#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

void AddSilence(RecordIntake* intake, double seconds, IntakeBatch* batch) {
  if (seconds - intake->lastArrival >= camera::kGapSeconds) {
    batch->stretches.push_back({StretchKind::kSilent, intake->lastArrival, seconds});
    intake->flags |= kAfterSilence;
  }
  intake->lastArrival = seconds;
}

void AddBytes(RecordIntake* intake, double seconds, std::string_view bytes, IntakeBatch* batch) {
  AddSilence(intake, seconds, batch);
  intake->found.clear();
  camera::FeedStream(&intake->stream, seconds, bytes, &intake->found);
  for (const camera::FoundRecord& record : intake->found) {
    if (record.malformedBytes > 0) {
      batch->stretches.push_back(
          {StretchKind::kMalformed, record.malformedSince, record.seconds, record.malformedBytes});
      intake->flags |= kAfterDamagedBytes;
    }
    batch->records.push_back({record, intake->flags});
    intake->flags = 0;
  }
}

void AddDamage(RecordIntake* intake, double seconds, long long bytes, IntakeBatch* batch) {
  batch->stretches.push_back({StretchKind::kDamaged, intake->lastArrival, seconds, bytes});
  intake->flags |= kAfterDamagedBytes | (seconds - intake->lastArrival >= camera::kGapSeconds ? kAfterSilence : 0);
  // Silence during that time is unknown.
  intake->lastArrival = seconds;
}

void EndIntake(RecordIntake* intake, IntakeBatch* batch) {
  camera::RecordStream& stream = intake->stream;
  const long long before = stream.malformedBytes;
  const double since = stream.open.bytes > 0 ? stream.open.seconds : stream.lastArrival;
  camera::EndStream(&stream);
  stream.pending.clear();
  stream.pieces.clear();
  if (stream.malformedBytes > before) {
    batch->stretches.push_back({StretchKind::kMalformed, since, stream.lastArrival, stream.malformedBytes - before});
    intake->flags |= kAfterDamagedBytes;
  }
}

bool StoreBatch(IntakeBatch* batch, RecordStore* store) {
  for (const Stretch& stretch : batch->stretches) store->AddStretch(stretch);
  const bool isStored =
      std::ranges::all_of(batch->records, [&](const IntakeRecord& r) { return store->Append(r.record, r.flags); });
  batch->records.clear();
  batch->stretches.clear();
  return isStored;
}

}  // namespace camview
