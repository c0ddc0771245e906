// Where the simulated camera's points are: on built-in curves, or on a path from a file. Pure, any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/camera_record.h"

namespace camtool {

// Where the four points are `seconds` after the start: smooth closed curves inside the camera's field. Each point
// vanishes now and then (both coordinates kv::kNoPoint) and comes back where its path has led meanwhile; at least two
// points are always there.
void PointsAt(double seconds, kv::CameraPoint (&points)[kv::kPointCount]);

struct PathRow {
  double seconds;
  kv::CameraPoint points[kv::kPointCount];
};

struct PointPath {
  std::vector<PathRow> rows;
  bool hasTimes = false;  // else each row is for one record
};

// Reads a path: a row for each moment with up to four x,y pairs, in front of which may stand the time in seconds (rows
// of an odd number of columns), never going back. Columns are parted by commas, semicolons or tabs. A first row that is
// no numbers is a heading; empty lines are passed over. Coordinates are 0 to 1023; an empty pair, or one that is not
// there, is a point that is not seen. On false `error` says what is wrong in which line.
bool ParsePath(std::string_view text, PointPath* path, std::string* error);

// The points `seconds` after the start, for record number `record` (from 0). The path begins anew when it is through;
// its last row lasts as long as the one before it.
void PointsOnPath(const PointPath& path, double seconds, long record, kv::CameraPoint (&points)[kv::kPointCount]);

}  // namespace camtool
