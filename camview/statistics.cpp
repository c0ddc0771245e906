#include "camview/statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "app/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

namespace {

// The median of this number of pauses, evenly distributed, is practically the median of all.
constexpr long long kMaxPauses = 1 << 14;
constexpr size_t kBatchRecords = 512;

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

// Missing arrivals between records.
struct Losses {
  double spacing;
  long long arrivals = 1;
  double lost = 0, lostInSilence = 0;
};

void AddPause(double pause, bool isDamaged, Losses* losses) {
  losses->arrivals += pause >= kTogetherSeconds;
  const double missing = losses->spacing > 0 ? std::max(std::round(pause / losses->spacing) - 1, 0.0) : 0;
  const double lost = std::max(missing, isDamaged ? 1.0 : 0.0);
  losses->lost += lost;
  if (pause >= camera::kGapSeconds) losses->lostInSilence += lost;
}

void AddRecord(const StoredRecord& record, StretchStatistics* statistics) {
  statistics->oddRecords += (record.flags & kOddRecord) != 0;
  statistics->outOfRange += (record.flags & kOutOfRange) != 0;
  for (int i = 0; i < kv::kPointCount; ++i) camera::AddPoint(record.points[i], &statistics->points[i]);
}

// Adds records one by one; `before` is the time of the previous record, for pauses. `onlyPauses`: the rest has been
// added.
void AddRecords(const RecordStore& store, long long first, long long end, double before, bool onlyPauses,
                StretchStatistics* statistics, Losses* losses) {
  std::array<StoredRecord, kBatchRecords> batch;
  while (first < end) {
    const auto requested = static_cast<size_t>(std::min<long long>(kBatchRecords, end - first));
    const size_t count = store.Read(first, {batch.data(), requested});
    for (const StoredRecord& record : std::span(batch).first(count)) {
      if (!onlyPauses) AddRecord(record, statistics);
      AddPause(record.seconds - before, (record.flags & kAfterDamagedBytes) != 0, losses);
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
  Losses losses{statistics.spacing};
  AddRecord(store.Get(first), &statistics);
  for (long long number = first + 1; number < end;) {
    const BlockSummary& block = store.SummaryOf(number);
    const long long next = std::min(block.first + block.records, end);
    const bool isWhole = number == block.first && next < end;
    if (isWhole) AddBlock(block, &statistics);
    if (isWhole && block.damaged == 0 && block.longestPause < 1.5 * losses.spacing) {
      losses.arrivals += block.arrivals;
    } else {
      AddRecords(store, number, next, store.Seconds(number - 1), isWhole, &statistics, &losses);
    }
    number = next;
  }
  const double seconds = store.Seconds(end - 1) - store.Seconds(first);
  if (seconds > 0) statistics.recordsPerSecond = static_cast<double>(statistics.records - 1) / seconds;
  const double perArrival = static_cast<double>(statistics.records) / static_cast<double>(losses.arrivals);
  statistics.lostRecords = std::llround(losses.lost * perArrival);
  statistics.lostInSilence = std::llround(losses.lostInSilence * perArrival);
  return statistics;
}

double SeenShare(const StretchStatistics& statistics, int point) {
  const long long records = statistics.records - statistics.outOfRange;
  return records > 0 ? static_cast<double>(statistics.points[point].seen) / static_cast<double>(records) : 0;
}

}  // namespace camview
