#include "camview/record_store.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/line_model.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/statistics.h"

namespace camview {

namespace {

// A record: each word contains ten bits of x and ten of y of a point. The upper twelve bits of the four words together
// are 43 bits of time (microseconds since the block's first record, at most 101 days) and five flags.
using Entry = std::array<std::uint32_t, kv::kPointCount>;
static_assert(sizeof(Entry) == 16);

constexpr int kCoordinateBits = 10, kPointBits = 2 * kCoordinateBits, kPartBits = 12, kTimeBits = 43;
constexpr std::uint32_t kCoordinateMask = (1u << kCoordinateBits) - 1;
constexpr std::int64_t kMaxBlockTime = std::int64_t{1} << kTimeBits;
static_assert(kv::kNoPoint == kCoordinateMask);

// Rounding error when finding by time: a double represents seconds of a year to some nanoseconds.
constexpr double kRounding = 0.01;  // microseconds
constexpr double kMaxTime = 1e18;   // microseconds

// The minimum and maximum of each channel while its point is seen; lowest > highest if it never is.
struct Extremes {
  std::array<std::int16_t, kChannels> lowest, highest;
};

constexpr Extremes Nothing() {
  Extremes nothing{};
  nothing.lowest.fill(INT16_MAX);
  nothing.highest.fill(-1);
  return nothing;
}

void Widen(const Intervals& other, Intervals* intervals) {
  intervals->shortest = std::min(intervals->shortest, other.shortest);
  intervals->longest = std::max(intervals->longest, other.longest);
}

bool IsSeen(std::uint32_t word) {
  return (word & kCoordinateMask) != kCoordinateMask &&
         ((word >> kCoordinateBits) & kCoordinateMask) != kCoordinateMask;
}

void WidenBy(const Entry& entry, Extremes* extremes) {
  for (int point = 0; point < kv::kPointCount; ++point) {
    if (!IsSeen(entry[point])) continue;
    for (int axis = 0; axis < 2; ++axis) {
      const auto value = static_cast<std::int16_t>((entry[point] >> (axis * kCoordinateBits)) & kCoordinateMask);
      std::int16_t& lowest = extremes->lowest[2 * point + axis];
      std::int16_t& highest = extremes->highest[2 * point + axis];
      lowest = std::min(lowest, value);
      highest = std::max(highest, value);
    }
  }
}

Entry Pack(const camera::FoundRecord& record, std::uint64_t microseconds, unsigned flags) {
  std::uint64_t rest = microseconds | (std::uint64_t{flags} << kTimeBits);
  Entry entry;
  for (int i = 0; i < kv::kPointCount; ++i) {
    const kv::CameraPoint point = record.isInRange ? record.points[i] : kv::CameraPoint{kv::kNoPoint, kv::kNoPoint};
    entry[i] = static_cast<std::uint32_t>(point.x) | (static_cast<std::uint32_t>(point.y) << kCoordinateBits) |
               (static_cast<std::uint32_t>(rest) << kPointBits);
    rest >>= kPartBits;
  }
  return entry;
}

std::uint64_t TimeAndFlags(const Entry& entry) {
  std::uint64_t rest = 0;
  for (int i = kv::kPointCount - 1; i >= 0; --i) rest = (rest << kPartBits) | (entry[i] >> kPointBits);
  return rest;
}

std::int64_t TimeIn(std::uint64_t timeAndFlags) {
  return static_cast<std::int64_t>(timeAndFlags & (kMaxBlockTime - 1));
}

std::int64_t TimeOf(const Entry& entry) {
  return TimeIn(TimeAndFlags(entry));
}

}  // namespace

struct RecordStore::Records {
  std::array<Entry, kBlockRecords> entries;
  std::array<Extremes, kBlockRecords / kGroupRecords> groups;
  Extremes all;
  Intervals before;  // of the first record
  std::array<Intervals, kBlockRecords / kGroupRecords> intervals;
  Intervals allIntervals;
  camera::RecordSums sums;
};

// Searches read no more of a block than this, so that those of a day stay in the processor's cache.
struct RecordStore::Block {
  long long first;    // number of the first record
  std::int64_t base;  // its time, in microseconds
  int count;
  std::unique_ptr<Records> records;
};

RecordStore::RecordStore(long long capacity)
    : maxBlocks_(static_cast<size_t>(std::clamp(capacity, 1LL, kMaxCapacity) + kBlockRecords - 1) / kBlockRecords) {
  blocks_.reserve(maxBlocks_);
}

RecordStore::~RecordStore() = default;

// ---- Adding ---------------------------------------------------------------------------------------------------------

// Returns the block for a record of that time; null when allocation fails.
RecordStore::Block* RecordStore::BlockFor(std::int64_t microseconds) {
  Block* last = blocks_.empty() ? nullptr : &blocks_.back();
  if (last && last->count < kBlockRecords && microseconds - last->base < kMaxBlockTime) return last;
  std::unique_ptr<Records> next;
  if (blocks_.size() == maxBlocks_) {
    next = std::move(blocks_.front().records);
    blocks_.erase(blocks_.begin());
  } else {
    next.reset(new (std::nothrow) Records);
    if (!next) return nullptr;
  }
  next->groups.fill(Nothing());
  next->all = Nothing();
  next->before = next->allIntervals = {};
  next->intervals.fill({});
  next->sums = {};
  blocks_.push_back({end_, microseconds, 0, std::move(next)});
  return &blocks_.back();
}

bool RecordStore::Append(const camera::FoundRecord& record, unsigned flags) {
  // llround takes a sixth of the time in which a recording is opened.
  auto microseconds = static_cast<std::int64_t>(std::clamp(record.seconds * 1e6, 0.0, kMaxTime) + 0.5);
  Intervals before;
  if (!blocks_.empty()) {
    const Block& last = blocks_.back();
    const std::int64_t previous = last.base + TimeOf(last.records->entries[static_cast<size_t>(last.count) - 1]);
    microseconds = std::max(microseconds, previous);
    before = {microseconds - previous, microseconds - previous};
  }
  Block* block = BlockFor(microseconds);
  if (!block) return false;
  flags = (flags & (kAfterSilence | kAfterDamagedBytes | kAfterPause)) | (record.isInvalid ? kInvalidRecord : 0) |
          (record.isInRange ? 0 : kOutOfRange);
  const auto place = static_cast<size_t>(block->count++);
  Records& records = *block->records;
  records.entries[place] = Pack(record, static_cast<std::uint64_t>(microseconds - block->base), flags);
  WidenBy(records.entries[place], &records.groups[place / kGroupRecords]);
  WidenBy(records.entries[place], &records.all);
  if (place == 0) records.before = before;
  Widen(before, &records.intervals[place / kGroupRecords]);
  Widen(before, &records.allIntervals);
  meter_.Add(record, flags, &records.sums);
  log_.AddRecord(record);
  line_.AddRecord(static_cast<double>(microseconds) / 1e6, (flags & kAfterSilence) != 0);
  ++end_;
  return true;
}

void RecordStore::AddSection(const Section& section) {
  log_.AddSection(section);
  const auto kind = static_cast<size_t>(section.kind);
  std::vector<Section>& list = sections_[kind];
  if (section.count == 0) {
    line_.ContinueSilence(section.to);
    list.back().to = section.to;
    return;
  }
  if (section.kind == SectionKind::kSilent) {
    line_.AddSilence({section.from, section.to});
    ++lineRevision_;
  }
  double& longest = longestMerged_[kind];
  const auto add = [&](const Section& next) {
    if (list.empty() || next.to - list.back().from > longest) {
      list.push_back(next);
      return;
    }
    list.back().to = next.to;
    list.back().bytes += next.bytes;
    list.back().count += next.count;
  };
  add(section);
  if (list.size() <= kMaxMergedSections) return;
  // Leaves so many that this is rare.
  do {
    longest = std::max(longest * 2, 0.01);
    const std::vector<Section> all = std::exchange(list, {});
    for (const Section& one : all) add(one);
  } while (list.size() > kMaxMergedSections / 2);
}

const std::vector<Section>& RecordStore::Sections(SectionKind kind) const {
  return sections_[static_cast<size_t>(kind)];
}

// ---- Finding --------------------------------------------------------------------------------------------------------

long long RecordStore::First() const {
  return blocks_.empty() ? end_ : blocks_.front().first;
}

const RecordStore::Block& RecordStore::BlockOf(long long number) const {
  return *std::prev(std::ranges::upper_bound(blocks_, number, {}, &Block::first));
}

StoredRecord RecordStore::Get(long long number) const {
  StoredRecord record{};
  Read(number, {&record, 1});
  return record;
}

double RecordStore::Seconds(long long number) const {
  const Block& block = BlockOf(number);
  return static_cast<double>(block.base + TimeOf(block.records->entries[static_cast<size_t>(number - block.first)])) /
         1e6;
}

size_t RecordStore::Read(long long number, std::span<StoredRecord> records) const {
  size_t read = 0;
  while (read < records.size() && number >= First() && number < end_) {
    const Block& block = BlockOf(number);
    for (auto place = static_cast<int>(number - block.first); place < block.count && read < records.size(); ++place) {
      const Entry& entry = block.records->entries[static_cast<size_t>(place)];
      StoredRecord& record = records[read++];
      const std::uint64_t rest = TimeAndFlags(entry);
      record.seconds = static_cast<double>(block.base + TimeIn(rest)) / 1e6;
      record.flags = static_cast<unsigned>(rest >> kTimeBits);
      for (int i = 0; i < kv::kPointCount; ++i) {
        record.points[i] = {static_cast<LONG>(entry[i] & kCoordinateMask),
                            static_cast<LONG>((entry[i] >> kCoordinateBits) & kCoordinateMask)};
      }
      ++number;
    }
  }
  return read;
}

// Returns the first record at that time or later.
long long RecordStore::FindMicroseconds(std::int64_t microseconds) const {
  // The first of several records with the same time may be in the previous block.
  const auto next = std::ranges::lower_bound(blocks_, microseconds, {}, &Block::base);
  if (next == blocks_.begin()) return First();
  const Block& block = *std::prev(next);
  const auto begin = block.records->entries.begin();
  const auto place = std::ranges::lower_bound(begin, begin + block.count, microseconds - block.base, {}, TimeOf);
  return block.first + (place - begin);
}

long long RecordStore::Find(double seconds) const {
  return FindMicroseconds(static_cast<std::int64_t>(std::ceil(std::clamp(seconds * 1e6 - kRounding, -1.0, kMaxTime))));
}

long long RecordStore::At(double seconds) const {
  const long long next = FindMicroseconds(
      static_cast<std::int64_t>(std::floor(std::clamp(seconds * 1e6 + kRounding, -1.0, kMaxTime))) + 1);
  return next > First() ? next - 1 : -1;
}

RecordStore::BlockSums RecordStore::SumsOf(long long number) const {
  const Block& block = BlockOf(number);
  return {block.first, block.first + block.count, block.records->sums};
}

void RecordStore::SetRate(double rate) {
  camera::LineModel line(rate);
  for (const camera::Silence& silence : line_.Silences()) line.AddSilence(silence);
  for (const Block& block : blocks_) {
    for (const Entry& entry : std::span(block.records->entries).first(static_cast<size_t>(block.count))) {
      const std::uint64_t rest = TimeAndFlags(entry);
      line.AddRecord(static_cast<double>(block.base + TimeIn(rest)) / 1e6, ((rest >> kTimeBits) & kAfterSilence) != 0);
    }
  }
  line_ = std::move(line);
  FinishLine();
}

// Calls `ofBlock` with the records of whole blocks, `ofGroup` with those of others and the number of a whole group, and
// `ofRecord` with the remaining entries.
template <class OfBlock, class OfGroup, class OfRecord>
void RecordStore::ForParts(long long from, long long to, const OfBlock& ofBlock, const OfGroup& ofGroup,
                           const OfRecord& ofRecord) const {
  from = std::max(from, First());
  to = std::min(to, end_);
  while (from < to) {
    const auto& block = BlockOf(from);
    const Records& records = *block.records;
    auto next = static_cast<size_t>(from - block.first);
    const auto end = static_cast<size_t>(std::min<long long>(to - block.first, block.count));
    from = block.first + static_cast<long long>(end);
    if (next == 0 && from == block.first + block.count) {
      ofBlock(records);
      continue;
    }
    while (next < end) {
      if (next % kGroupRecords == 0 && next + kGroupRecords <= end) {
        ofGroup(records, next / kGroupRecords);
        next += kGroupRecords;
      } else {
        ofRecord(records, next++);
      }
    }
  }
}

ChannelExtremes RecordStore::ExtremesOf(long long from, long long to, int channel) const {
  const auto place = static_cast<size_t>(channel), point = place / 2;
  const int shift = channel % 2 ? kCoordinateBits : 0;
  ChannelExtremes found;
  const auto widen = [&](int lowest, int highest) {
    found = {std::min(found.lowest, lowest), std::max(found.highest, highest)};
  };
  const auto widenByAll = [&](const Extremes& all) { widen(all.lowest[place], all.highest[place]); };
  ForParts(
      from, to, [&](const Records& records) { widenByAll(records.all); },
      [&](const Records& records, size_t group) { widenByAll(records.groups[group]); },
      [&](const Records& records, size_t number) {
        const std::uint32_t word = records.entries[number][point];
        if (!IsSeen(word)) return;
        const auto value = static_cast<int>((word >> shift) & kCoordinateMask);
        widen(value, value);
      });
  return found;
}

Intervals RecordStore::IntervalsOf(long long from, long long to) const {
  Intervals found;
  ForParts(
      from, to, [&](const Records& records) { Widen(records.allIntervals, &found); },
      [&](const Records& records, size_t group) { Widen(records.intervals[group], &found); },
      [&](const Records& records, size_t number) {
        if (number == 0) return Widen(records.before, &found);
        const std::int64_t interval = TimeOf(records.entries[number]) - TimeOf(records.entries[number - 1]);
        Widen({interval, interval}, &found);
      });
  return found;
}

bool StoreBatch(IntakeBatch* batch, RecordStore* store) {
  for (const Section& section : batch->sections) store->AddSection(section);
  bool isStored = true;
  for (size_t i = 0; isStored && i < batch->records.size(); ++i) {
    isStored = store->Append(batch->records[i], batch->flags[i]);
  }
  ClearBatch(batch);
  return isStored;
}

}  // namespace camview
