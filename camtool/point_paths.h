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

// Reads a path: a row for each moment with up to four x,y pairs, after the time in seconds (in rows
// with an odd number of columns), which never goes back. Columns are separated by commas, semicolons or tabs. A first
// row without numbers is a heading; empty lines are skipped. Coordinates are 0 to 1023; an empty pair, or one that is
// missing, is a point that is not seen. On false `error` says what is wrong in which line.
bool ParsePath(std::string_view text, PointPath* path, std::string* error);

// The points `seconds` after the start, for record number `record` (from 0). At its end the path starts again; its
// last row lasts as long as the one before it.
void PointsOnPath(const PointPath& path, double seconds, long record, kv::CameraPoint (&points)[kv::kPointCount]);

}  // namespace camtool
