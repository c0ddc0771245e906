// The samples of one channel: a ring buffer of the newest samples, and a pyramid of minima and maxima, with which the
// extent of any range is found in a few dozen steps. Index 0 is the oldest stored sample. Pure; one thread at a time.
// No function throws.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <span>

#include "kv/controls/strip_chart/strip_chart.h"

namespace kv {

struct Extent {
  double low = std::numeric_limits<double>::infinity(), high = -low;

  bool empty() const { return !(low <= high); }
  // NaN is ignored.
  void Add(double value) {
    if (value < low) low = value;
    if (value > high) high = value;
  }
  void Add(const Extent& other) {
    low = std::min(low, other.low);
    high = std::max(high, other.high);
  }
};

class SampleStore {
 public:
  // Changes the capacity, keeping the newest samples. Returns false for 0 and when allocation fails.
  bool MakeResized(unsigned capacity, SampleStore* other) const;
  void Clear() { first_ = count_ = 0; }
  // Returns false and appends nothing when a time is out of range or earlier than the previous one, or the capacity is
  // 0.
  bool Append(std::span<const StripSample> samples);

  unsigned capacity() const { return capacity_; }
  unsigned count() const { return count_; }
  unsigned long long appended() const { return appended_; }  // including samples that have been discarded
  double TimeAt(unsigned index) const { return times_[Slot(index)]; }
  double ValueAt(unsigned index) const { return values_[Slot(index)]; }
  bool HasGapBefore(unsigned) const { return false; }  // a gap is a sample of its own
  StripTimeRange times() const { return count_ ? StripTimeRange{oldest(), newest()} : StripTimeRange{0, -1}; }
  double oldest() const { return TimeAt(0); }
  double newest() const { return TimeAt(count_ - 1); }

  // The first sample at or after a time, or count(). The search starts at `hint`; a good hint makes it fast.
  unsigned FirstFrom(double time, unsigned hint = 0) const;
  // The first sample after a time.
  unsigned FirstAfter(double time, unsigned hint = 0) const;

  Extent ExtentOf(unsigned from, unsigned to) const;

 private:
  static constexpr int kLevels = 5, kFanOutBits = 5;  // a block contains 32 blocks of the level below

  unsigned Slot(unsigned index) const {
    const unsigned slot = first_ + index;
    return slot >= capacity_ ? slot - capacity_ : slot;
  }
  void Put(const StripSample& sample);
  void AddSlots(unsigned from, unsigned to, Extent* extent) const;
  template <class Reached>
  unsigned Search(unsigned hint, Reached reached) const;

  unsigned capacity_ = 0, first_ = 0, count_ = 0;
  unsigned long long appended_ = 0;
  std::unique_ptr<double[]> times_, values_;
  std::array<std::unique_ptr<Extent[]>, kLevels> levels_;
};

// The statistics of samples from..to-1.
template <class Samples>
StripStatistics StatisticsOf(const Samples& samples, unsigned from, unsigned to) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  to = std::min(to, samples.count());
  double number = 0, sum = 0;
  for (unsigned i = from; i < to; ++i) {
    const double value = samples.ValueAt(i);
    if (std::isnan(value)) continue;
    ++number;
    sum += value;
  }
  if (number == 0) return {0, kNone, kNone, kNone, kNone};
  const double mean = sum / number;
  double squares = 0, rest = 0;
  for (unsigned i = from; i < to; ++i) {
    const double distance = samples.ValueAt(i) - mean;
    if (std::isnan(distance)) continue;
    squares += distance * distance;
    rest += distance;  // rounding error of the mean
  }
  const Extent extent = samples.ExtentOf(from, to);
  const double variance = number > 1 ? (squares - rest * rest / number) / (number - 1) : 0;
  return {number, extent.low, extent.high, mean + rest / number, std::sqrt(std::max(variance, 0.0))};
}

}  // namespace kv
