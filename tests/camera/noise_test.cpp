// The noise of points whose truth is known. `./test -R test_figures -V` prints the table of truth and figures.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/noise.h"
#include "camera/record_stream.h"

namespace camera {
namespace {

constexpr double kRate = 93;
constexpr int kRecords = 37200;

using Motion = std::function<double(double)>;

// A motion, and the noise from which on the figure is exact. Between two whole pixels rounding gives nearly the same
// for all smaller ones.
struct Case {
  const char* name;
  double from;
  Motion motion;
};

const Case kCases[] = {
    {"rests at 500", 0.3, [](double) { return 500.0; }},
    {"rests at 500.25", 0.3, [](double) { return 500.25; }},
    {"rests at 500.36", 0.4, [](double) { return 500.36; }},
    {"rests at 500.5", 0.4, [](double) { return 500.5; }},
    {"drifts 0.25 px/s", 0.3, [](double seconds) { return 400 + 0.25 * seconds; }},
    {"swings 1 Hz, 100 px", 0.3, [](double seconds) { return 500 + 100 * std::sin(2 * std::numbers::pi * seconds); }},
    {"one step of 100 px", 0.3, [](double seconds) { return seconds < 200 ? 400.1 : 500.0; }},
    {"steps of 10.7 px", 0.3, [](double seconds) { return 400 + 10.7 * std::floor(seconds / 40); }}};

std::vector<LONG> Measured(const Motion& motion, double sigma) {
  std::mt19937 random(3);
  std::normal_distribution<> normal;
  std::vector<LONG> values;
  values.reserve(kRecords);
  for (int i = 0; i < kRecords; ++i) values.push_back(std::lround(motion(i / kRate) + sigma * normal(random)));
  return values;
}

TEST(Noise, IsThatOfThePointWithoutItsMotion) {
  std::printf("%-20s %7s %8s %8s\n", "point", "sigma", "spread", "noise");
  for (const auto& [name, from, motion] : kCases) {
    for (const double sigma : {0.1, 0.2, 0.3, 0.4, 0.5, 1.0, 2.0, 5.0}) {
      PointNoise noise;
      PointSummary summary;
      NoiseMeter meter;
      for (const LONG value : Measured(motion, sigma)) {
        const kv::CameraPoint point{value, 700 - value / 2};
        meter.Add(point, true, &noise);
        AddPoint(point, &summary);
      }
      const NoiseFigure figure = NoiseOf(noise.x);
      std::printf("%-20s %7.2f %8.2f %s%7.3f\n", name, sigma, Deviation(summary.x, summary.seen),
                  figure.isBelow ? "<" : " ", figure.noise);
      EXPECT_EQ(sigma < from, figure.isBelow) << name;
      EXPECT_LT(figure.isBelow ? sigma : std::abs(figure.noise / sigma - 1), figure.isBelow ? figure.noise : 0.05)
          << name;
    }
  }
}

TEST(Noise, UsesOnlyConsecutiveRecordsAndCanBeAdded) {
  PointNoise whole, parts[2], sum;
  NoiseMeter meter;
  const auto add = [&](LONG x, bool isNext, int part) {
    NoiseMeter copy = meter;
    copy.Add({x, 300}, isNext, &whole);
    meter.Add({x, 300}, isNext, &parts[part]);
  };
  // A point that moves evenly has no noise; where a record is missing, its step is twice as long.
  LONG x = 0;
  for (int i = 0; i < 400; ++i) {
    const bool isMissing = i % 5 == 0;
    add(x += isMissing ? 4 : 2, !isMissing, i / 200);
  }
  EXPECT_EQ(2 * 40 * (5 - 3), NoiseOf(whole.x).differences);
  EXPECT_TRUE(NoiseOf(whole.x).isBelow);
  for (const PointNoise& part : parts) AddNoise(part, &sum);
  EXPECT_EQ(whole.x.differences, sum.x.differences);
  EXPECT_EQ(whole.x.rests, sum.x.rests);
  add(kv::kNoPoint, true, 0);
  for (int i = 0; i < 3; ++i) add(500, true, 0);
  EXPECT_EQ(2 * 40 * (5 - 3), NoiseOf(whole.x).differences) << "a point that is not seen interrupts";
  EXPECT_EQ(0, NoiseOf(CoordinateNoise{}).differences);
}

}  // namespace
}  // namespace camera
