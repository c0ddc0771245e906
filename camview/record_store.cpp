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

constexpr Extremes Nothing() {
  Extremes nothing{};
  nothing.lowest.fill(INT16_MAX);
  nothing.highest.fill(-1);
  return nothing;
}

void Widen(const Extremes& other, Extremes* extremes) {
  for (int i = 0; i < kChannels; ++i) {
    extremes->lowest[i] = std::min(extremes->lowest[i], other.lowest[i]);
    extremes->highest[i] = std::max(extremes->highest[i], other.highest[i]);
  }
}

void WidenBy(const Entry& entry, Extremes* extremes) {
  for (int point = 0; point < kv::kPointCount; ++point) {
    const std::uint32_t x = entry[point] & kCoordinateMask, y = (entry[point] >> kCoordinateBits) & kCoordinateMask;
    if (x == kCoordinateMask || y == kCoordinateMask) continue;
    const std::int16_t values[] = {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
    for (int axis = 0; axis < 2; ++axis) {
      std::int16_t& lowest = extremes->lowest[2 * point + axis];
      std::int16_t& highest = extremes->highest[2 * point + axis];
      lowest = std::min(lowest, values[axis]);
      highest = std::max(highest, values[axis]);
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

struct RecordStore::Block {
  long long first = 0;    // number of the first record
  std::int64_t base = 0;  // its first record's time, in microseconds
  int count = 0;
  std::array<Entry, kBlockRecords> entries;
  std::array<Extremes, kBlockRecords / kGroupRecords> groups;
  Extremes all;
  camera::RecordSums sums;
};

RecordStore::RecordStore(long long capacity)
    : maxBlocks_(static_cast<size_t>(std::clamp(capacity, 1LL, kMaxCapacity) + kBlockRecords - 1) / kBlockRecords) {
  blocks_.reserve(maxBlocks_);
}

RecordStore::~RecordStore() = default;

// ---- Adding ---------------------------------------------------------------------------------------------------------

// Returns the block for a record of that time; null when allocation fails.
RecordStore::Block* RecordStore::BlockFor(std::int64_t microseconds) {
  Block* last = blocks_.empty() ? nullptr : blocks_.back().get();
  if (last && last->count < kBlockRecords && microseconds - last->base < kMaxBlockTime) return last;
  std::unique_ptr<Block> next;
  if (blocks_.size() == maxBlocks_) {
    next = std::move(blocks_.front());
    blocks_.erase(blocks_.begin());
  } else {
    next.reset(new (std::nothrow) Block);
    if (!next) return nullptr;
  }
  next->base = microseconds;
  next->count = 0;
  next->groups.fill(Nothing());
  next->all = Nothing();
  next->first = end_;
  next->sums = {};
  blocks_.push_back(std::move(next));
  return blocks_.back().get();
}

bool RecordStore::Append(const camera::FoundRecord& record, unsigned flags) {
  std::int64_t microseconds = std::llround(std::clamp(record.seconds * 1e6, 0.0, kMaxTime));
  if (!blocks_.empty()) {
    const Block& last = *blocks_.back();
    microseconds = std::max(microseconds, last.base + TimeOf(last.entries[static_cast<size_t>(last.count) - 1]));
  }
  Block* block = BlockFor(microseconds);
  if (!block) return false;
  flags = (flags & (kAfterSilence | kAfterDamagedBytes | kAfterPause)) | (record.isInvalid ? kInvalidRecord : 0) |
          (record.isInRange ? 0 : kOutOfRange);
  const auto place = static_cast<size_t>(block->count++);
  block->entries[place] = Pack(record, static_cast<std::uint64_t>(microseconds - block->base), flags);
  WidenBy(block->entries[place], &block->groups[place / kGroupRecords]);
  WidenBy(block->entries[place], &block->all);
  meter_.Add(record, flags, &block->sums);
  log_.AddRecord(record);
  line_.AddRecord(static_cast<double>(microseconds) / 1e6, (flags & kAfterSilence) != 0);
  ++end_;
  return true;
}

void RecordStore::AddSection(const Section& section) {
  log_.AddSection(section);
  if (section.kind == SectionKind::kSilent) line_.AddSilence({section.from, section.to});
  const auto kind = static_cast<size_t>(section.kind);
  std::vector<Section>& list = sections_[kind];
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
  return blocks_.empty() ? end_ : blocks_.front()->first;
}

const RecordStore::Block& RecordStore::BlockOf(long long number) const {
  const auto next = std::ranges::upper_bound(blocks_, number, {}, [](const auto& block) { return block->first; });
  return **std::prev(next);
}

StoredRecord RecordStore::Get(long long number) const {
  StoredRecord record{};
  Read(number, {&record, 1});
  return record;
}

double RecordStore::Seconds(long long number) const {
  const Block& block = BlockOf(number);
  return static_cast<double>(block.base + TimeOf(block.entries[static_cast<size_t>(number - block.first)])) / 1e6;
}

size_t RecordStore::Read(long long number, std::span<StoredRecord> records) const {
  size_t read = 0;
  while (read < records.size() && number >= First() && number < end_) {
    const Block& block = BlockOf(number);
    for (auto place = static_cast<int>(number - block.first); place < block.count && read < records.size(); ++place) {
      const Entry& entry = block.entries[static_cast<size_t>(place)];
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
  const auto next = std::ranges::lower_bound(blocks_, microseconds, {}, [](const auto& block) { return block->base; });
  if (next == blocks_.begin()) return First();
  const Block& block = **std::prev(next);
  const auto begin = block.entries.begin();
  const auto place = std::ranges::lower_bound(begin, begin + block.count, microseconds - block.base, {}, TimeOf);
  return block.first + (place - begin);
}

long long RecordStore::Find(double seconds) const {
  return FindMicroseconds(std::llround(std::ceil(std::clamp(seconds * 1e6 - kRounding, -1.0, kMaxTime))));
}

long long RecordStore::At(double seconds) const {
  const long long next =
      FindMicroseconds(std::llround(std::floor(std::clamp(seconds * 1e6 + kRounding, -1.0, kMaxTime))) + 1);
  return next > First() ? next - 1 : -1;
}

RecordStore::BlockSums RecordStore::SumsOf(long long number) const {
  const Block& block = BlockOf(number);
  return {block.first, block.first + block.count, block.sums};
}

void RecordStore::SetRate(double rate) {
  camera::LineModel line(rate);
  for (const camera::Silence& silence : line_.Silences()) line.AddSilence(silence);
  for (const auto& block : blocks_) {
    for (const Entry& entry : std::span(block->entries).first(static_cast<size_t>(block->count))) {
      const std::uint64_t rest = TimeAndFlags(entry);
      line.AddRecord(static_cast<double>(block->base + TimeIn(rest)) / 1e6, ((rest >> kTimeBits) & kAfterSilence) != 0);
    }
  }
  line.Finish();
  line_ = std::move(line);
}

Extremes RecordStore::ExtremesOf(long long from, long long to) const {
  Extremes extremes = Nothing();
  from = std::max(from, First());
  to = std::min(to, end_);
  while (from < to) {
    const Block& block = BlockOf(from);
    auto place = static_cast<int>(from - block.first);
    const auto last = static_cast<int>(std::min<long long>(to - block.first, block.count));
    from = block.first + last;
    if (place == 0 && last == block.count) {
      Widen(block.all, &extremes);
      continue;
    }
    while (place < last) {
      const bool isGroup = place % kGroupRecords == 0 && place + kGroupRecords <= last;
      if (isGroup) {
        Widen(block.groups[static_cast<size_t>(place / kGroupRecords)], &extremes);
      } else {
        WidenBy(block.entries[static_cast<size_t>(place)], &extremes);
      }
      place += isGroup ? kGroupRecords : 1;
    }
  }
  return extremes;
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
