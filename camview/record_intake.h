// Finds records in timed bytes, and the gaps between them, for recordings and live ports alike. Pure; one thread at a
// time.
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

// The results since the batch was emptied.
struct IntakeBatch {
  std::vector<IntakeRecord> records;
  std::vector<Stretch> stretches;
};

struct RecordIntake {
  camera::RecordStream stream;
  std::vector<camera::FoundRecord> found;
  double lastArrival = 0;  // of bytes; initially when the line was opened
  unsigned flags = 0;      // of the next record
};

// Adds bytes received at that time, which never decreases, to the batch.
void AddBytes(RecordIntake* intake, double seconds, std::string_view bytes, IntakeBatch* batch);

// Adds damaged chunks of a recording, between the last bytes and this time.
void AddDamage(RecordIntake* intake, double seconds, long long bytes, IntakeBatch* batch);

// Adds silence until that time, the end of a recording.
void AddSilence(RecordIntake* intake, double seconds, IntakeBatch* batch);

// Call when the line was interrupted or has ended: incomplete bytes belong to no record. More may follow.
void EndIntake(RecordIntake* intake, IntakeBatch* batch);

// Moves a batch into the store and empties it. Returns false when allocation fails; the remaining records are lost.
bool StoreBatch(IntakeBatch* batch, RecordStore* store);

}  // namespace camview
