#include "camview/statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

namespace {

// The median of this number of pauses, evenly distributed, is practically the median of all.
constexpr long long kMaxPauses = 1 << 14;
constexpr size_t kBatchRecords = 512;
constexpr double kLate = 1.5;      // spacings
constexpr int kArrivalsAfter = 4;  // in which records that are late, not lost, arrive

double MedianPause(const RecordStore& store, long long first, long long end) {
  std::vector<double> pauses;
  const long long stride = std::max((end - first) / kMaxPauses, 1LL);
  for (long long number = first + 1; number < end; number += stride) {
    std::array<StoredRecord, 2> pair;
    store.Read(number - 1, pair);
    const double pause = pair[1].seconds - pair[0].seconds;
    if (pause >= kTogetherSeconds) pauses.push_back(pause);
  }
  if (pauses.empty()) return 0;
  const auto middle = pauses.begin() + static_cast<std::ptrdiff_t>(pauses.size() / 2);
  std::ranges::nth_element(pauses, middle);
  return *middle;
}

// A part of the line's time, with the records in it.
struct Part {
  double seconds = 0;
  long long records = 0, damaged = 0;
};

// The line's time: at its usual pace, and the parts in which records may be missing.
struct Course {
  double spacing;
  Part usual;
  std::vector<Part> late, silent;
  int untilUsual = 0;  // arrivals until the late part ends
};

void AddPause(double pause, bool isDamaged, Course* course) {
  if (pause >= camera::kGapSeconds) {
    course->silent.push_back({pause, 1, isDamaged});
    course->untilUsual = 0;
    return;
  }
  const bool isLate = isDamaged || pause >= kLate * course->spacing;
  if (isLate && course->untilUsual == 0) course->late.emplace_back();
  if (isLate) course->untilUsual = kArrivalsAfter + 1;
  Part& part = course->untilUsual > 0 ? course->late.back() : course->usual;
  part.seconds += pause;
  ++part.records;
  part.damaged += isDamaged;
  if (course->untilUsual > 0 && pause >= kTogetherSeconds) --course->untilUsual;
}

long long LostIn(const std::vector<Part>& parts, double pace) {
  long long lost = 0;
  for (const Part& part : parts) {
    const long long fitting = pace > 0 ? std::llround(part.seconds / pace) : 0;
    lost += std::max({fitting - part.records, part.damaged, 0LL});
  }
  return lost;
}

void AddRecord(const StoredRecord& record, StretchStatistics* statistics) {
  statistics->oddRecords += (record.flags & kOddRecord) != 0;
  statistics->outOfRange += (record.flags & kOutOfRange) != 0;
  for (int i = 0; i < kv::kPointCount; ++i) camera::AddPoint(record.points[i], &statistics->points[i]);
}

// Adds records one by one; `before` is the time of the previous record, for pauses. `onlyPauses`: the rest has been
// added.
void AddRecords(const RecordStore& store, long long first, long long end, double before, bool onlyPauses,
                StretchStatistics* statistics, Course* course) {
  std::array<StoredRecord, kBatchRecords> batch;
  while (first < end) {
    const auto requested = static_cast<size_t>(std::min<long long>(kBatchRecords, end - first));
    const size_t count = store.Read(first, {batch.data(), requested});
    for (const StoredRecord& record : std::span(batch).first(count)) {
      if (!onlyPauses) AddRecord(record, statistics);
      AddPause(record.seconds - before, (record.flags & kAfterDamagedBytes) != 0, course);
      before = record.seconds;
    }
    first += static_cast<long long>(count);
  }
}

void AddBlock(const BlockSummary& block, StretchStatistics* statistics) {
  statistics->oddRecords += block.oddRecords;
  statistics->outOfRange += block.outOfRange;
  for (int i = 0; i < kv::kPointCount; ++i) camera::AddSummary(block.points[i], &statistics->points[i]);
}

}  // namespace

StretchStatistics ComputeStatistics(const RecordStore& store, double from, double to) {
  StretchStatistics statistics{};
  statistics.from = from;
  statistics.to = to;
  const long long first = store.Find(from), end = store.At(to) + 1;
  if (first >= end) return statistics;
  statistics.records = end - first;
  statistics.spacing = MedianPause(store, first, end);
  Course course{statistics.spacing};
  AddRecord(store.Get(first), &statistics);
  for (long long number = first + 1; number < end;) {
    const BlockSummary& block = store.SummaryOf(number);
    const long long next = std::min(block.first + block.records, end);
    const bool isWhole = number == block.first && next < end;
    const double before = store.Seconds(number - 1);
    if (isWhole) AddBlock(block, &statistics);
    if (isWhole && block.damaged == 0 && block.longestPause < kLate * course.spacing) {
      course.usual.seconds += store.Seconds(next - 1) - before;
      course.usual.records += block.records;
      course.untilUsual = 0;
    } else {
      AddRecords(store, number, next, before, isWhole, &statistics, &course);
    }
    number = next;
  }
  const double seconds = store.Seconds(end - 1) - store.Seconds(first);
  if (seconds > 0) statistics.recordsPerSecond = static_cast<double>(statistics.records - 1) / seconds;
  const double pace =
      course.usual.records > 0 ? course.usual.seconds / static_cast<double>(course.usual.records) : course.spacing;
  statistics.lostInSilence = LostIn(course.silent, pace);
  statistics.lostRecords = statistics.lostInSilence + LostIn(course.late, pace);
  return statistics;
}

double SeenShare(const StretchStatistics& statistics, int point) {
  const long long records = statistics.records - statistics.outOfRange;
  return records > 0 ? static_cast<double>(statistics.points[point].seen) / static_cast<double>(records) : 0;
}

}  // namespace camview
