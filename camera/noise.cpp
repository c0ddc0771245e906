#include "camera/noise.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <numbers>

#include "camera/camera_record.h"
#include "camera/record_stream.h"

namespace camera {

namespace {

constexpr LONG kSingleBins = 64;
constexpr int kStepsOfDoubling = 4, kSingleBits = 6;
constexpr int kRestRecords = 32;
// The variance of a third difference (1, -3, 3, -1) of independent values of variance 1.
constexpr double kDifferenceVariance = 20;
// Two standard errors of the variance from one difference; neighbors are not independent.
constexpr double kVarianceError = 4.3;
constexpr double kPlaceError = 0.1;  // of the cosine
constexpr double kOutlier = 5;       // standard deviations: a step of the point, not noise
constexpr double kPi = std::numbers::pi;

size_t BinOf(LONG size) {
  if (size < kSingleBins) return static_cast<size_t>(size);
  const int bits = std::bit_width(static_cast<std::uint32_t>(size)) - 1;  // 6 or more
  const auto quarter = static_cast<int>(size >> (bits - 2)) & (kStepsOfDoubling - 1);
  return std::min(static_cast<size_t>(kSingleBins + (bits - kSingleBits) * kStepsOfDoubling + quarter), kNoiseBins - 1);
}

// The size in the middle of a bin.
double SizeOf(size_t bin) {
  if (bin < static_cast<size_t>(kSingleBins)) return static_cast<double>(bin);
  const auto step = static_cast<double>(bin - kSingleBins);
  const double doublings = std::floor(step / kStepsOfDoubling), quarter = step - doublings * kStepsOfDoubling;
  return kSingleBins * std::exp2(doublings) * (1 + (quarter + 0.5) / kStepsOfDoubling);
}

// How much of a wave with the period of a pixel remains in values of that variance.
double Remaining(double variance) {
  return std::exp(-2 * kPi * kPi * variance);
}

// Where the point rests, on average: 1 at whole pixels, -1 between two, 0 evenly distributed.
struct Place {
  double cosine, sineSquared;  // of the rests' means
};

Place PlaceOf(const CoordinateNoise& sums, double rounded) {
  const double all = std::max<double>(static_cast<double>(sums.rests) + sums.moves, 1);
  // The means scatter as well.
  const double seen = Remaining(rounded / kRestRecords);
  const double sineSquared = (sums.rests - sums.doubleCosines / std::pow(seen, 4)) / 2 / all;
  return {std::clamp(sums.cosines / all / seen, -1.0, 1.0), std::clamp(sineSquared, 0.0, 1.0)};
}

// The variance of rounded values, given that of exact ones. Evenly distributed fractions add 1/12; a point that rests
// at a whole pixel has less, one that rests between two has more.
double RoundedVariance(double variance, const Place& place) {
  // Rounding pulls the mean to the next whole pixel.
  const double straight = std::clamp(place.cosine - 2 * Remaining(variance) * place.sineSquared, -1.0, 1.0);
  return variance + 1.0 / 12 - straight * (4 * variance + 1 / (kPi * kPi)) * Remaining(variance);
}

// The inverse of RoundedVariance; 0 if it is less than kSmallestNoise squared. Of several variances, the largest.
double ExactVariance(double rounded, const Place& place) {
  constexpr double kStep = 0.98, kLeast = kSmallestNoise * kSmallestNoise;
  double high = std::max(rounded, 1.0), low = high;
  while (low > kLeast && RoundedVariance(low, place) > rounded) {
    high = low;
    low *= kStep;
  }
  if (low <= kLeast) return 0;
  for (int i = 0; i < 20; ++i) {
    const double middle = (low + high) / 2;
    (RoundedVariance(middle, place) < rounded ? low : high) = middle;
  }
  return low;
}

void AddDifference(LONG a, LONG b, LONG c, LONG d, CoordinateNoise* noise) {
  ++noise->differences[BinOf(std::labs(d - a + 3 * (b - c)))];
}

void AddRest(LONG sum, LONG early, CoordinateNoise* noise) {
  const bool isMoving = std::labs(sum - 2 * early) > kRestRecords / 2;
  ++(isMoving ? noise->moves : noise->rests);
  if (isMoving) return;
  const double turn = 2 * kPi * static_cast<double>(sum % kRestRecords) / kRestRecords;
  noise->cosines += std::cos(turn);
  noise->doubleCosines += std::cos(2 * turn);
}

void AddSums(const CoordinateNoise& other, CoordinateNoise* noise) {
  for (size_t bin = 0; bin < kNoiseBins; ++bin) noise->differences[bin] += other.differences[bin];
  noise->cosines += other.cosines;
  noise->doubleCosines += other.doubleCosines;
  noise->rests += other.rests;
  noise->moves += other.moves;
}

}  // namespace

void AddNoise(const PointNoise& other, PointNoise* noise) {
  AddSums(other.x, &noise->x);
  AddSums(other.y, &noise->y);
}

NoiseFigure NoiseOf(const CoordinateNoise& sums) {
  NoiseFigure figure;
  double limit = 1e9, variance = 0;
  // Without the outliers the limit for them decreases, until there are no more.
  for (int round = 0; round < 30; ++round) {
    double count = 0, squares = 0;
    for (size_t bin = 0; bin < kNoiseBins; ++bin) {
      const double size = SizeOf(bin);
      if (size > limit) break;
      count += sums.differences[bin];
      squares += sums.differences[bin] * size * size;
    }
    if (count < kFewestDifferences) return {};
    figure.differences = static_cast<long long>(count);
    variance = squares / count;
    const double next = std::max(kOutlier * std::sqrt(variance), 2.0);
    if (next >= limit) break;
    limit = next;
  }
  const double rounded = variance / kDifferenceVariance;
  const Place place = PlaceOf(sums, rounded);
  const double error = kVarianceError / std::sqrt(static_cast<double>(figure.differences));
  const auto noiseAt = [&](double factor, double cosine) {
    return std::sqrt(ExactVariance(rounded * factor, {place.cosine + cosine, place.sineSquared}));
  };
  figure.isBelow = noiseAt(1 - error, 0) == 0;
  figure.noise = figure.isBelow ? std::max(noiseAt(1 + error, kPlaceError), kSmallestNoise) : noiseAt(1, 0);
  return figure;
}

void NoiseMeter::Add(const kv::CameraPoint& point, bool isNext, PointNoise* noise) {
  if (!isNext || !IsSeen(point)) run_ = rest_ = 0;
  if (!IsSeen(point)) return;
  if (run_ == 3) {
    AddDifference(last_[0].x, last_[1].x, last_[2].x, point.x, &noise->x);
    AddDifference(last_[0].y, last_[1].y, last_[2].y, point.y, &noise->y);
  }
  run_ = std::min(run_ + 1, 3);
  last_[0] = last_[1];
  last_[1] = last_[2];
  last_[2] = point;
  if (rest_ == 0) sum_ = {};
  sum_ = {sum_.x + point.x, sum_.y + point.y};
  if (++rest_ == kRestRecords / 2) early_ = sum_;
  if (rest_ < kRestRecords) return;
  rest_ = 0;
  AddRest(sum_.x, early_.x, &noise->x);
  AddRest(sum_.y, early_.y, &noise->y);
}

}  // namespace camera
