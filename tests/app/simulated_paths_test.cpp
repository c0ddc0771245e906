#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "app/camera_point.h"
#include "camtool/point_paths.h"

namespace camtool {
namespace {

TEST(SimulatedPaths, StaySmoothInsideTheFieldAndComeBack) {
  bool hidden[kv::kPointCount] = {}, seen[kv::kPointCount] = {};
  kv::CameraPoint last[kv::kPointCount];
  PointsAt(0, last);
  for (double seconds = 0.01; seconds < 60; seconds += 0.01) {
    kv::CameraPoint points[kv::kPointCount];
    PointsAt(seconds, points);
    int shown = 0;
    for (int i = 0; i < kv::kPointCount; ++i) {
      const bool gone = points[i].x == kv::kNoPoint;
      ASSERT_EQ(gone, points[i].y == kv::kNoPoint);
      hidden[i] |= gone;
      seen[i] |= !gone && hidden[i];
      if (gone) continue;
      ++shown;
      ASSERT_TRUE(points[i].x >= 0 && points[i].x < kv::kNoPoint && points[i].y >= 0 && points[i].y < kv::kFieldHeight);
      if (last[i].x != kv::kNoPoint) {
        ASSERT_LE(std::labs(points[i].x - last[i].x) + std::labs(points[i].y - last[i].y), 8) << seconds;
      }
    }
    ASSERT_GE(shown, 2);
    std::ranges::copy(points, last);
  }
  for (int i = 0; i < kv::kPointCount; ++i) EXPECT_TRUE(hidden[i] && seen[i]) << i;
}

}  // namespace
}  // namespace camtool
