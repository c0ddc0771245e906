// Sums over records, from which the figures of points are computed. Pure; one thread at a time.
#pragma once

#include "camera/camera_record.h"
#include "camera/noise.h"
#include "camera/record_stream.h"

namespace camera {

// Those of adjacent times can be added.
struct RecordSums {
  long long records = 0, invalidRecords = 0,
            outOfRange = 0;  // out of range: among the invalid ones; they have no points
  PointSummary points[kv::kPointCount];
  PointNoise noise[kv::kPointCount];
};

void AddSums(const RecordSums& other, RecordSums* sums);

// Returns the fraction, 0 to 1, of the records with points in which this point is seen; negative if there are none.
double SeenShare(const RecordSums& sums, int point);

// Returns a share as a percentage to be shown with one decimal: it does not round to 0 or 100 unless it is that.
double PercentOf(double share);

// Adds records, in order, to sums.
class RecordMeter {
 public:
  // `flags`: kAfter... as from the intake.
  void Add(const FoundRecord& record, unsigned flags, RecordSums* sums);

 private:
  NoiseMeter meters_[kv::kPointCount];
};

}  // namespace camera
