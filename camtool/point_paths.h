// Positions of the simulated camera's points: on built-in curves, or on a path from a file. Pure, any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"

namespace camtool {

// Returns the four points `seconds` after the start: smooth closed curves inside the camera's field. Each point
// disappears at times (both coordinates kv::kNoPoint) and reappears further along its path; at least two points are
// always visible.
void PointsAt(double seconds, kv::CameraPoint (&points)[kv::kPointCount]);

struct PathRow {
  double seconds;
  kv::CameraPoint points[kv::kPointCount];
};

struct PointPath {
  std::vector<PathRow> rows;
  bool hasTimes = false;  // otherwise there is a row for each record
};

// Parses a path. Each row has up to four x,y pairs, and in rows with an odd number of columns first the time in
// seconds, which never decreases. Columns are separated by commas, semicolons or tabs. A first row without numbers is a
// heading; empty lines are skipped. Coordinates are 0 to 1023; an empty or missing pair is a point that is not seen.
// Returns false with an error message, which contains the line number, in `error`.
bool ParsePath(std::string_view text, PointPath* path, std::string* error);

// Returns the points `seconds` after the start, for record number `record` (from 0). The path repeats; its last row
// lasts as long as the one before it.
void PointsOnPath(const PointPath& path, double seconds, long record, kv::CameraPoint (&points)[kv::kPointCount]);

}  // namespace camtool
