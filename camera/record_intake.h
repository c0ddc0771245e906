// Finds records in timed bytes, and what is between them, for recordings and live ports alike. Pure; one thread at a
// time.
#pragma once

#include <string_view>
#include <vector>

#include "camera/record_stream.h"

namespace camera {

enum class SectionKind {
  kSilent,     // no bytes for kGapSeconds or longer
  kMalformed,  // bytes that belong to no record
  kDamaged,    // chunks of the recording that cannot be read
};
inline constexpr int kSectionKinds = 3;

struct Section {
  SectionKind kind;
  double from, to;      // seconds
  long long bytes = 0;  // malformed or damaged ones
  int count = 1;        // of which it was merged; 0: silence that continues the previous one
};

// What is known of the time between a record and the one before it: nothing for kGapSeconds or more, because of silence
// or damage; malformed bytes or lost chunks; a pause of more than 1.6 times the usual one, in which a record is
// probably missing.
inline constexpr unsigned kAfterSilence = 4, kAfterDamagedBytes = 8, kAfterPause = 16;

// What was found since the batch was emptied.
struct IntakeBatch {
  std::vector<FoundRecord> records;
  std::vector<unsigned char> flags;  // of each record: kAfter...
  std::vector<Section> sections;
};

struct RecordIntake {
  RecordStream stream;
  double lastArrival = 0;  // of bytes; initially when the line was opened
  double lastRecord = -1;  // negative: none
  double usualPause = 0;   // between records, seconds; a quarter of them are shorter
  unsigned flags = 0;      // of the next record
  bool isSilent = false;   // silence until `lastArrival` was added, which continues until bytes arrive
};

// Adds bytes received at that time, which never decreases, to the batch.
void AddBytes(RecordIntake* intake, double seconds, std::string_view bytes, IntakeBatch* batch);

// Adds damaged chunks of a recording, between the last bytes and this time.
void AddDamage(RecordIntake* intake, double seconds, long long bytes, IntakeBatch* batch);

// Adds silence until that time: the end of a recording, or the present of a live port.
void AddSilence(RecordIntake* intake, double seconds, IntakeBatch* batch);

// Call when the line was interrupted or has ended: incomplete bytes belong to no record. More may follow.
void EndIntake(RecordIntake* intake, IntakeBatch* batch);

void ClearBatch(IntakeBatch* batch);

}  // namespace camera
