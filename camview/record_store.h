// All records of a recording or a live port in 16 bytes each, accessible by number or time, and the sections in which
// data are missing. Pure; one thread at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "camera/camera_record.h"
#include "camera/events.h"
#include "camera/line_model.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/statistics.h"

namespace camview {

// Flags of a record.
inline constexpr unsigned kInvalidRecord = 1;  // a number is not all digits
inline constexpr unsigned kOutOfRange = 2;     // has no points, because a coordinate is not within 0 to 1023
using camera::kAfterDamagedBytes, camera::kAfterPause, camera::kAfterSilence;

struct StoredRecord {
  double seconds;
  kv::CameraPoint points[kv::kPointCount];  // a point with a coordinate of kv::kNoPoint is not seen
  unsigned flags;
};

using camera::IntakeBatch, camera::kSectionKinds, camera::RecordIntake, camera::Section, camera::SectionKind;

// A channel is a coordinate: x of point 1, y of point 1, x of point 2 ...
inline constexpr int kChannels = 2 * kv::kPointCount;

inline constexpr int kBlockRecords = 4096;
inline constexpr int kGroupRecords = 64;
inline constexpr int kMaxMergedSections = 1000;  // of each kind

// The minimum and maximum of a channel while its point is seen; lowest > highest if it never is.
struct ChannelExtremes {
  int lowest = INT16_MAX, highest = -1;
};

// The shortest and the longest time between a record and the previous one, in microseconds; shortest > longest if there
// is none.
struct Intervals {
  std::int64_t shortest = INT64_MAX, longest = -1;
};

class RecordStore {
 public:
  static constexpr long long kMaxCapacity = 1 << 25;  // 0.5 GB; four days at 93 records a second

  // When there are `capacity` records (rounded up to blocks), the oldest block is dropped for a new one.
  explicit RecordStore(long long capacity = kMaxCapacity);
  ~RecordStore();
  RecordStore(const RecordStore&) = delete;
  RecordStore& operator=(const RecordStore&) = delete;

  // Appends a record; a time (not negative) before that of the last record is replaced by that. `flags` are kAfter...
  // bits; the others are derived from the record. Returns false, without any change, when allocation fails.
  bool Append(const camera::FoundRecord& record, unsigned flags);

  // Adds a section; those of a kind in ascending order. Sections remain when the records around them are dropped.
  void AddSection(const Section& section);
  const std::vector<Section>& Sections(SectionKind kind) const;

  // Records are numbered from 0, and dropping does not change numbers. Records First() to End() - 1 exist.
  long long First() const;
  long long End() const { return end_; }
  bool IsEmpty() const { return end_ == 0; }
  StoredRecord Get(long long number) const;  // within First() .. End() - 1
  double Seconds(long long number) const;    // of the same record
  // Copies records starting with that number; returns how many exist.
  size_t Read(long long number, std::span<StoredRecord> records) const;
  // Returns the first record at that time or later; End() if there is none.
  long long Find(double seconds) const;
  // Returns the last record at that time or earlier, which is the one to show; -1 if there is none.
  long long At(double seconds) const;

  // Returns the first record that does not belong to a selection that ends at that time: records at its end belong to
  // the next selection, except for the last of all.
  long long EndOf(double seconds) const { return At(seconds) + 1 == end_ ? end_ : Find(seconds); }

  // A block of records with their sums; valid until the store changes.
  struct BlockSums {
    long long first, end;  // numbers
    const camera::RecordSums& sums;
  };
  BlockSums SumsOf(long long number) const;  // of the record's block
  // Silences and losses, of all records that were ever added.
  const camera::LineModel& Line() const { return line_; }
  // Returns what happened until `end`; `omitted` as in EventLog.
  std::vector<camera::Event> Events(double end, long long* omitted) const { return log_.Events(line_, end, omitted); }
  // Evaluates the last records as well; call at the end of a recording.
  void FinishLine() {
    line_.Finish();
    ++lineRevision_;
  }
  // Counts losses by another rate (see LineModel), which takes about 0.1 s for a million records.
  void SetRate(double rate);
  // Changes when losses and silences of a time change, although it contains no more records.
  unsigned LineRevision() const { return lineRevision_; }
  // Returns the extremes of the records `from` to `to` - 1, using the pyramid where possible.
  ChannelExtremes ExtremesOf(long long from, long long to, int channel) const;
  // The same of the times before these records.
  Intervals IntervalsOf(long long from, long long to) const;

 private:
  struct Block;
  struct Records;
  const Block& BlockOf(long long number) const;
  Block* BlockFor(std::int64_t microseconds);
  long long FindMicroseconds(std::int64_t microseconds) const;
  template <class OfBlock, class OfGroup, class OfRecord>
  void ForParts(long long from, long long to, const OfBlock& ofBlock, const OfGroup& ofGroup,
                const OfRecord& ofRecord) const;

  size_t maxBlocks_;
  camera::RecordMeter meter_;
  camera::LineModel line_;
  unsigned lineRevision_ = 0;
  camera::EventLog log_;
  std::vector<Block> blocks_;
  long long end_ = 0;
  std::vector<Section> sections_[kSectionKinds];
  double longestMerged_[kSectionKinds] = {-1, -1, -1};  // seconds; merging never creates longer sections
};

// Calls use(record) with the records `from` to `to` - 1, those that exist.
template <class Use>
void ForRecords(const RecordStore& store, long long from, long long to, const Use& use) {
  std::array<StoredRecord, 256> batch;
  while (from < to) {
    const auto most = static_cast<size_t>(std::min<long long>(batch.size(), to - from));
    const auto read = std::span(batch).first(store.Read(from, {batch.data(), most}));
    if (read.empty()) return;
    for (const StoredRecord& record : read) use(record);
    from += static_cast<long long>(read.size());
  }
}

// Stores a batch and empties it. Returns false when allocation fails; the remaining records are lost.
bool StoreBatch(IntakeBatch* batch, RecordStore* store);

}  // namespace camview
