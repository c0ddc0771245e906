#include "camview/statistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "app/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

namespace {

// Records that come within so short a time were read together: a record takes ten times as long on the line.
constexpr double kTogether = 0.001;
// The median of so many pauses, evenly spread, is the median of all for every practical purpose.
constexpr long long kMostPauses = 1 << 16;
constexpr size_t kBatchRecords = 512;

double MedianPause(const RecordStore& store, long long first, long long end) {
  std::vector<double> pauses;
  const long long stride = std::max((end - first) / kMostPauses, 1LL);
  for (long long number = first + 1; number < end; number += stride) {
    std::array<StoredRecord, 2> pair;
    store.Read(number - 1, pair);
    const double pause = pair[1].seconds - pair[0].seconds;
    if (pause >= kTogether) pauses.push_back(pause);
  }
  if (pauses.empty()) return 0;
  const auto middle = pauses.begin() + static_cast<std::ptrdiff_t>(pauses.size() / 2);
  std::ranges::nth_element(pauses, middle);
  return *middle;
}

// What is missing between records, in arrivals.
struct Losses {
  double spacing;
  long long arrivals = 1;
  double lost = 0, lostInSilence = 0;
};

void AddPause(double pause, bool isDamaged, Losses* losses) {
  losses->arrivals += pause >= kTogether;
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
  std::array<StoredRecord, kBatchRecords> batch;
  double before = store.Seconds(first);
  for (long long number = first; number < end;) {
    const size_t count =
        store.Read(number, {batch.data(), static_cast<size_t>(std::min<long long>(kBatchRecords, end - number))});
    for (size_t i = 0; i < count; ++i) {
      const StoredRecord& record = batch[i];
      AddRecord(record, &statistics);
      if (number + static_cast<long long>(i) > first) {
        AddPause(record.seconds - before, (record.flags & kAfterDamagedBytes) != 0, &losses);
      }
      before = record.seconds;
    }
    number += static_cast<long long>(count);
  }
  const double seconds = before - store.Seconds(first);
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
