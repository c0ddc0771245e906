// What a stretch of the stored records shows: pace, losses, and each point's range and jitter. Pure.
#pragma once

#include "app/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"

namespace camview {

struct StretchStatistics {
  double from, to;        // as asked for
  long long records = 0;  // in it, both ends included
  long long oddRecords = 0;
  long long outOfRange = 0;     // of the odd ones; they have no points
  double recordsPerSecond = 0;  // between its first and last record; 0 with fewer than two
  double spacing = 0;           // the median time between two arrivals of records, seconds; 0 with fewer than two
  // Records that the line should have carried at that spacing but did not: a pause of 1.5 spacings and more between two
  // records has lost as many as fit into it, and one with malformed or damaged bytes in it at least one. Several
  // records that arrive together count as one arrival, and an arrival that is missing as that many records on average.
  // What is missing before the first record and after the last is not counted.
  long long lostRecords = 0;
  long long lostInSilence = 0;  // of these, in pauses of camera::kGapSeconds and more
  camera::PointSummary points[kv::kPointCount];
};

// Some 20 ms for eight million records.
StretchStatistics ComputeStatistics(const RecordStore& store, double from, double to);

// The share, 0 to 1, of the records with points in which this point is seen.
double SeenShare(const StretchStatistics& statistics, int point);

}  // namespace camview
