// Finds records in bytes with times, and what was missing between them: the same for a recording and for a live port.
// Pure; one thread at a time.
#pragma once

#include <string_view>
#include <vector>

#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

struct IntakeRecord {
  camera::FoundRecord record;
  unsigned flags;  // kAfterSilence, kAfterDamagedBytes
};

// What came out since it was emptied last.
struct IntakeBatch {
  std::vector<IntakeRecord> records;
  std::vector<Stretch> stretches;
};

struct RecordIntake {
  camera::RecordStream stream;
  std::vector<camera::FoundRecord> found;
  double lastArrival = 0;  // of bytes; before the first, when the line was opened
  unsigned flags = 0;      // of the next record
};

// Bytes that came at that time, which never goes back; adds to the batch.
void TakeBytes(RecordIntake* intake, double seconds, std::string_view bytes, IntakeBatch* batch);

// Chunks of a recording that cannot be read, between the bytes before and this time.
void TakeDamage(RecordIntake* intake, double seconds, long long bytes, IntakeBatch* batch);

// Nothing came until that time, the end of a recording.
void TakeSilence(RecordIntake* intake, double seconds, IntakeBatch* batch);

// The line was interrupted or has ended: what is incomplete belongs to no record. More may follow.
void EndIntake(RecordIntake* intake, IntakeBatch* batch);

// Moves a batch into the store and empties it. False when allocation failed: the records from there on are lost.
bool StoreBatch(IntakeBatch* batch, RecordStore* store);

}  // namespace camview
