#include "camera/statistics.h"

#include <algorithm>

#include "camera/camera_record.h"
#include "camera/noise.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"

namespace camera {

void AddSums(const RecordSums& other, RecordSums* sums) {
  sums->records += other.records;
  sums->invalidRecords += other.invalidRecords;
  sums->outOfRange += other.outOfRange;
  for (int i = 0; i < kv::kPointCount; ++i) {
    AddSummary(other.points[i], &sums->points[i]);
    AddNoise(other.noise[i], &sums->noise[i]);
  }
}

double SeenShare(const RecordSums& sums, int point) {
  const long long records = sums.records - sums.outOfRange;
  return records > 0 ? static_cast<double>(sums.points[point].seen) / static_cast<double>(records) : -1;
}

double PercentOf(double share) {
  return share <= 0 || share >= 1 ? 100 * share : std::clamp(100 * share, 0.1, 99.9);
}

void RecordMeter::Add(const FoundRecord& record, unsigned flags, RecordSums* sums) {
  ++sums->records;
  sums->invalidRecords += record.isInvalid;
  sums->outOfRange += !record.isInRange;
  const bool isNext = (flags & (kAfterSilence | kAfterDamagedBytes | kAfterPause)) == 0;
  for (int i = 0; i < kv::kPointCount; ++i) {
    const kv::CameraPoint point = record.isInRange ? record.points[i] : kv::CameraPoint{kv::kNoPoint, kv::kNoPoint};
    AddPoint(point, &sums->points[i]);
    meters_[i].Add(point, isNext, &sums->noise[i]);
  }
}

}  // namespace camera
