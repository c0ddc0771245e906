// The paths on which the simulated camera's points move. Pure, any thread.
#pragma once

#include "app/camera_point.h"

namespace camtool {

// Where the four points are `seconds` after the start: smooth closed curves inside the camera's field. Each point
// vanishes now and then (both coordinates kv::kNoPoint) and comes back where its path has led meanwhile; at least two
// points are always there.
void PointsAt(double seconds, kv::CameraPoint (&points)[kv::kPointCount]);

}  // namespace camtool
