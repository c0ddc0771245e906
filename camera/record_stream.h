// Finds the camera's records in a stream of bytes that may begin anywhere and contain anything, and counts what is
// between them. A record is what Tarnwick accepts: 41 bytes with seven commas at their positions, unless it consists of
// the beginning of one record and the end of another. Pure, any thread.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"

namespace camera {

struct FoundRecord {
  double seconds;  // time of its last byte
  kv::CameraPoint points[kv::kPointCount];
  bool isInvalid;            // a number is not all digits; Tarnwick reads it nevertheless
  bool isInRange;            // all coordinates are 0 to 1023
  long long malformedBytes;  // directly before it
  double malformedSince;     // time of the first of them
};

// Consecutive bytes that do not belong to a record.
struct MalformedSection {
  double seconds;  // time of its first byte
  long long bytes;
  std::string sample;  // the first bytes
};

inline constexpr size_t kSectionSample = 24;
inline constexpr size_t kMaxSections = 10;
// Silence of at least this many seconds counts as a gap.
inline constexpr double kGapSeconds = 0.5;

struct RecordStream {
  long long bytes = 0;
  long long records = 0;
  long long invalidRecords = 0;
  long long outOfRange = 0;  // of the invalid ones
  long long leadBytes = 0;   // less than a record at the beginning: the stream began within a record
  long long malformedBytes = 0;
  long long malformedSections = 0;
  double firstSeconds = 0, lastSeconds = 0;  // of the first and the last record
  double longestGap = 0;                     // seconds between two arrivals of bytes
  FoundRecord last{};                        // valid when there are records
  std::vector<MalformedSection> sections;    // the first kMaxSections

  std::string pending;  // less than a record between calls; at the end, a truncated record
  struct Piece {
    size_t end;  // in `pending`
    double seconds;
  };
  std::vector<Piece> pieces;  // arrival times of its parts
  MalformedSection open{};    // the section that has not ended, if it has bytes
  double lastArrival = -1;
};

// Processes bytes received at `seconds`, which never decreases. Appends completed records to `found`, which may be
// null.
void FeedStream(RecordStream* stream, double seconds, std::string_view bytes, std::vector<FoundRecord>* found);

// Ends an open section. Call once, after the last bytes.
void EndStream(RecordStream* stream);

// Ends an open section and drops an incomplete record, as when the line was interrupted. More may follow.
void InterruptStream(RecordStream* stream);

// Returns the records per second between the first and the last one; 0 with fewer than two.
double RecordRate(const RecordStream& stream);

// Returns the fraction of well-formed records, 0 to 1. A malformed section counts as the number of records of its
// length.
double WellFormedShare(const RecordStream& stream);

// "1 malformed section, 20 bytes"; "no malformed sections".
std::string DescribeMalformed(const RecordStream& stream);

// The line of column names, and the line of a record, with line feeds. Seconds (not negative) have six decimals; a
// point that the camera does not see is 1023,1023, as the camera sends it.
std::string CsvHeader();
void AppendCsvRow(const FoundRecord& record, std::string* text);

// ---- Statistics of a point ------------------------------------------------------------------------------------------

// Integer sums, which are exact: coordinates are at most 1023, so the sums suffice for 8 trillion records.
struct Spread {
  LONG lowest = 0, highest = 0;
  long long sum = 0, squares = 0;
};

struct PointSummary {
  long long seen = 0;  // records with the point; x and y are valid if there are any
  Spread x, y;
};

// Returns whether the camera sees the point: neither coordinate is 1023.
inline bool IsSeen(const kv::CameraPoint& point) {
  return point.x != kv::kNoPoint && point.y != kv::kNoPoint;
}

// Adds the point of a record in range.
void AddPoint(const kv::CameraPoint& point, PointSummary* summary);

// Adds another summary.
void AddSummary(const PointSummary& other, PointSummary* summary);

// Mean (0 without values) and standard deviation (0 for fewer than two values) in camera units.
double Mean(const Spread& spread, long long count);
double Deviation(const Spread& spread, long long count);

}  // namespace camera
