// All records of a recording or of a live session in 16 bytes each, found by number or by time, and the stretches in
// which something was missing. Pure; one thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "app/camera_record.h"
#include "camera/record_stream.h"

namespace camview {

// What is special about a record; bits.
inline constexpr unsigned kOddRecord = 1;          // a number is not all digits
inline constexpr unsigned kOutOfRange = 2;         // has no points: a coordinate is not within 0 to 1023
inline constexpr unsigned kAfterSilence = 4;       // for camera::kGapSeconds or longer before it nothing is known
inline constexpr unsigned kAfterDamagedBytes = 8;  // bytes that belong to no record, or lost chunks, before it

struct StoredRecord {
  double seconds;
  kv::CameraPoint points[kv::kPointCount];  // a point with a coordinate of kv::kNoPoint is not seen
  unsigned flags;
};

enum class StretchKind {
  kSilent,     // no bytes for camera::kGapSeconds or longer
  kMalformed,  // bytes that belong to no record
  kDamaged,    // chunks of the recording that cannot be read
};
inline constexpr int kStretchKinds = 3;

struct Stretch {
  StretchKind kind;
  double from, to;      // seconds
  long long bytes = 0;  // that are malformed or damaged
  int count = 1;        // stretches close to each other are merged when there are thousands
};

// A channel is a coordinate: x of point 1, y of point 1, x of point 2 ...
inline constexpr int kChannels = 2 * kv::kPointCount;

inline constexpr int kBlockRecords = 4096;
inline constexpr int kGroupRecords = 64;
inline constexpr int kMostStretches = 1000;  // of each kind

// The smallest and the largest value of each channel where its point is seen; lowest > highest: it never is.
struct Extremes {
  std::array<std::int16_t, kChannels> lowest, highest;
};

// Records that come within so short a time were read together: a record takes ten times as long on the line.
inline constexpr double kTogetherSeconds = 0.001;

// The records of a block, added up.
struct BlockSummary {
  long long first = 0;  // its first record's number
  long long records = 0, oddRecords = 0, outOfRange = 0;
  long long damaged = 0;    // with kAfterDamagedBytes
  long long arrivals = 0;   // kTogetherSeconds and more after the record before
  double longestPause = 0;  // seconds between one of them and the record before
  camera::PointSummary points[kv::kPointCount];
};

class RecordStore {
 public:
  static constexpr long long kLargestCapacity = 1 << 25;  // 0.5 GB; four days at 93 records a second

  // Beyond `capacity` records (rounded up to blocks) the oldest block is dropped for a new one.
  explicit RecordStore(long long capacity = kLargestCapacity);
  ~RecordStore();
  RecordStore(const RecordStore&) = delete;
  RecordStore& operator=(const RecordStore&) = delete;

  // Adds a record; a time (not negative) before the last one's counts as that. `flags` are kAfter... bits; those of the
  // record itself come from it. False, with nothing changed, when allocation fails.
  bool Append(const camera::FoundRecord& record, unsigned flags);

  // Stretches of a kind come in rising order. They stay when the records around them are dropped.
  void AddStretch(const Stretch& stretch);
  const std::vector<Stretch>& Stretches(StretchKind kind) const;

  // Records are numbered from 0; dropping changes no number. Those from First() to before End() are there.
  long long First() const;
  long long End() const { return end_; }
  bool IsEmpty() const { return blocks_.empty(); }
  StoredRecord Get(long long number) const;  // within First() .. End() - 1
  double Seconds(long long number) const;    // of the same
  // Copies records from that one on; returns how many there were.
  size_t Read(long long number, std::span<StoredRecord> records) const;
  // The first record at that time or later; End() if there is none.
  long long Find(double seconds) const;
  // The last record at that time or earlier, which is what a chart shows then; -1 if there is none.
  long long At(double seconds) const;

  // Of the block that the record is in; valid until the store changes.
  const BlockSummary& SummaryOf(long long number) const;
  // The extremes of records `from` to before `to`, by the pyramid where it reaches.
  Extremes ExtremesOf(long long from, long long to) const;

 private:
  struct Block;
  const Block& BlockOf(long long number) const;
  Block* BlockFor(std::int64_t microseconds);
  long long FindMicroseconds(std::int64_t microseconds) const;

  size_t mostBlocks_;
  std::vector<std::unique_ptr<Block>> blocks_;
  long long end_ = 0;
  std::vector<Stretch> stretches_[kStretchKinds];
  double longestMerged_[kStretchKinds] = {-1, -1, -1};  // seconds; longer stretches are never made by merging
};

}  // namespace camview
