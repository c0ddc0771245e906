// Statistics of a stretch of stored records: rate, losses, and each point's range and jitter. Pure.
#pragma once

#include "camera/camera_record.h"
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
  // Records that the line should have carried at its usual pace but did not. A pause of 1.5 spacings or more, or with
  // malformed or damaged bytes in it, and the four arrivals after it are a part of the time, which is longer if there
  // is another such pause in it. What fits into this part at the pace of the rest, beyond the records that arrived, is
  // lost; at least one for each pause with malformed or damaged bytes. Records that are late or arrive together are
  // not. Records before the first and after the last are not counted.
  long long lostRecords = 0;
  long long lostInSilence = 0;  // of these, in pauses of camera::kGapSeconds or more
  camera::PointSummary points[kv::kPointCount];
};

// Takes about 20 ms for eight million records.
StretchStatistics ComputeStatistics(const RecordStore& store, double from, double to);

// Returns the fraction, 0 to 1, of the records with points in which this point is seen.
double SeenShare(const StretchStatistics& statistics, int point);

}  // namespace camview
