#include "camtool/paths.h"

#include <cmath>

#include "app/camera_point.h"
#include "framework/angles.h"

namespace camtool {

namespace {

struct Path {
  double centreX, centreY, radiusX, radiusY;  // camera units
  double turnsX, turnsY;                      // turns a minute
  double phase;                               // turns
  double hiddenFrom;                          // seconds into the cycle at which the point vanishes
};

constexpr double kCycleSeconds = 24;
constexpr double kHiddenSeconds = 3;

constexpr Path kPaths[kv::kPointCount] = {
    {512, 384, 440, 300, 6, 4, 0.00, 5},
    {320, 300, 250, 220, 9, 6, 0.25, 11},
    {720, 460, 240, 240, 7, 7, 0.50, 17},
    {512, 384, 180, 320, 5, 10, 0.75, 23},
};

double Wave(double turns) {
  return std::sin(2 * kv::kPi * turns);
}

bool IsHidden(const Path& path, double seconds) {
  return std::fmod(seconds + kCycleSeconds - path.hiddenFrom, kCycleSeconds) < kHiddenSeconds;
}

}  // namespace

void PointsAt(double seconds, kv::CameraPoint (&points)[kv::kPointCount]) {
  for (int i = 0; i < kv::kPointCount; ++i) {
    const Path& path = kPaths[i];
    if (IsHidden(path, seconds)) {
      points[i] = {kv::kNoPoint, kv::kNoPoint};
      continue;
    }
    const double minutes = seconds / 60;
    points[i] = {std::lround(path.centreX + path.radiusX * Wave(path.turnsX * minutes + path.phase)),
                 std::lround(path.centreY + path.radiusY * Wave(path.turnsY * minutes))};
  }
}

}  // namespace camtool
