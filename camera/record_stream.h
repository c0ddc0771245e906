// Finds the camera's records in a stream of bytes that may begin anywhere and contain anything, and counts what is
// between them. A record is what Tarnwick accepts, 41 bytes with seven commas in their places, unless it is the
// beginning of one record and the end of another. Pure, any thread.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "app/camera_record.h"

namespace camera {

struct FoundRecord {
  double seconds;  // when its last byte came
  kv::CameraPoint points[kv::kPointCount];
  bool isOdd;                // a number is not all digits; Tarnwick reads it all the same
  bool isInRange;            // all coordinates are 0 to 1023
  long long malformedBytes;  // right before it
  double malformedSince;     // when the first of them came
};

// Bytes between records that belong to none.
struct MalformedStretch {
  double seconds;  // when its first byte came
  long long bytes;
  std::string sample;  // the first of them
};

inline constexpr size_t kStretchSample = 24;
inline constexpr size_t kMaxStretches = 10;
// Silence of at least this many seconds counts as a gap.
inline constexpr double kGapSeconds = 0.5;

struct RecordStream {
  long long bytes = 0;
  long long records = 0;
  long long oddRecords = 0;
  long long outOfRange = 0;  // of the odd ones
  long long leadBytes = 0;   // less than a record at the very beginning: the stream began within a record
  long long malformedBytes = 0;
  long long malformedStretches = 0;
  double firstSeconds = 0, lastSeconds = 0;  // of the first and the last record
  double longestGap = 0;                     // seconds between two arrivals of bytes
  double longestGapStart = 0;
  long long gaps = 0;                       // of kGapSeconds or more
  FoundRecord last{};                       // valid when there are records
  std::vector<MalformedStretch> stretches;  // the first kMaxStretches

  std::string pending;  // fewer bytes than a record between calls; at the end, a truncated record
  struct Piece {
    size_t end;  // in `pending`
    double seconds;
  };
  std::vector<Piece> pieces;  // when which part of it came
  MalformedStretch open{};    // the stretch that has not ended yet, if it has bytes
  double lastArrival = -1;
};

// Bytes that were received at that time, which never goes back. Records that are complete now are added to `found`,
// which may be null.
void FeedStream(RecordStream* stream, double seconds, std::string_view bytes, std::vector<FoundRecord>* found);

// Ends the stretch that may be open. Called once, after the last bytes.
void EndStream(RecordStream* stream);

// Records a second between the first and the last one; 0 with fewer than two.
double RecordRate(const RecordStream& stream);

// Which part of the records was well-formed, 0 to 1: a malformed stretch counts as the records that it has room for.
double WellFormedShare(const RecordStream& stream);

// "1 malformed stretch, 20 bytes"; "no malformed stretches".
std::string DescribeMalformed(const RecordStream& stream);

// The names of the columns, and a record's row; each ends with a line feed. Seconds (not negative) have six decimals; a
// point that the camera does not see is 1023,1023, as it sends it.
std::string CsvHeader();
void AppendCsvRow(const FoundRecord& record, std::string* text);

// ---- Statistics of a point ------------------------------------------------------------------------------------------

// Sums of whole numbers, which are exact: coordinates are at most 1023, so that they have room for 8 trillion records.
struct Spread {
  LONG lowest = 0, highest = 0;
  long long sum = 0, squares = 0;
};

struct PointSummary {
  long long seen = 0;  // records with the point; the rest is valid when there are any
  Spread x, y;
};

// Adds the point of a record in range; one with a coordinate of 1023 is not seen.
void AddPoint(const kv::CameraPoint& point, PointSummary* summary);

// Adds what another summary has seen.
void AddSummary(const PointSummary& other, PointSummary* summary);

// Mean and standard deviation in camera units; 0 without values, and for fewer than two.
double Mean(const Spread& spread, long long count);
double Deviation(const Spread& spread, long long count);

}  // namespace camera
