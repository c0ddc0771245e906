// Statistics of a stretch of stored records: rate, losses, and each point's range and jitter. Pure.
#pragma once

#include "app/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

struct StretchStatistics {
  double from, to;        // as requested
  long long records = 0;  // both ends included
  long long oddRecords = 0;
  long long outOfRange = 0;     // among the odd ones; they have no points
  double recordsPerSecond = 0;  // between its first and last record; 0 with fewer than two
  double spacing = 0;           // the median time between two arrivals of records, seconds; 0 with fewer than two
  // Records that were expected with that spacing and are missing: a pause of at least 1.5 spacings between two records
  // counts the records that fit into it, and one with malformed or damaged bytes counts at least one. Records that
  // arrive together are one arrival, and a missing arrival counts as the average number of records per arrival. Nothing
  // is counted before the first record and after the last.
  long long lostRecords = 0;
  long long lostInSilence = 0;  // of these, in pauses of camera::kGapSeconds or more
  camera::PointSummary points[kv::kPointCount];
};

// Takes about 20 ms for eight million records.
StretchStatistics ComputeStatistics(const RecordStore& store, double from, double to);

// Returns the fraction, 0 to 1, of the records with points in which this point is seen.
double SeenShare(const StretchStatistics& statistics, int point);

}  // namespace camview
