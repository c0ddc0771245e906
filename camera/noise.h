// How much a point's coordinates scatter while it rests or moves smoothly. The standard deviation ("spread") contains
// the motion. The noise does not: it is taken from third differences of consecutive records, which cancel any motion
// with constant acceleration. Pure; one thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "camera/camera_record.h"

namespace camera {

// The noise of a coordinate below which the rounding to whole pixels dominates, so that no figure can be given; more
// where a point rests between two whole pixels, and with fewer records.
inline constexpr double kSmallestNoise = 0.28;
// Fewer differences give no figure; 100 give one with an error of about 10 %, 1,000 of 3 %.
inline constexpr long long kFewestDifferences = 20;

// Third differences by their size: 0 to 63 one by one, larger ones in four steps for each doubling.
inline constexpr size_t kNoiseBins = 96;

// Sums of one coordinate; those of adjacent times can be added. Up to 4 billion differences of a size.
struct CoordinateNoise {
  std::array<std::uint32_t, kNoiseBins> differences{};
  // Where between whole pixels the point rests decides how rounding affects the differences. Of each 32 records in
  // which it rests: the cosines of the mean's fraction as a full turn, and as two turns.
  double cosines = 0, doubleCosines = 0;
  std::uint32_t rests = 0, moves = 0;  // 32 records in which it rests, or moves by more than a pixel
};

struct PointNoise {
  CoordinateNoise x, y;
};

void AddNoise(const PointNoise& other, PointNoise* noise);

struct NoiseFigure {
  long long differences = 0;  // from which it was computed; 0 = no figure
  double noise = 0;           // standard deviation in pixels
  bool isBelow = false;       // less than `noise`, which then is kSmallestNoise or more
};

NoiseFigure NoiseOf(const CoordinateNoise& sums);

// Computes the sums of a point from its records in order.
class NoiseMeter {
 public:
  // `isNext`: the record follows the previous one after the usual pause, so the point moved for as long as before.
  // `point`: seen or not. Adds to `noise`.
  void Add(const kv::CameraPoint& point, bool isNext, PointNoise* noise);

 private:
  int run_ = 0;  // consecutive records in which it is seen, up to three
  kv::CameraPoint last_[3] = {};
  int rest_ = 0;
  kv::CameraPoint sum_{}, early_{};  // of the rest, and of its first half
};

}  // namespace camera
