// The samples of one channel: a ring that keeps the newest, and beside it a pyramid of minima and maxima, so that the
// extent of any stretch costs a few dozen steps however many samples it has. Samples are counted from the oldest that
// is kept, 0. Pure; one thread at a time. Nothing throws.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <span>

#include "controls/strip_chart/strip_chart.h"

namespace kv {

struct Extent {
  double low = std::numeric_limits<double>::infinity(), high = -low;

  bool empty() const { return !(low <= high); }
  // NaN adds nothing.
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
  // Makes a store of another capacity with the newest of these samples. False for 0 and beyond what can be had.
  bool MakeResized(unsigned capacity, SampleStore* other) const;
  void Clear() { first_ = count_ = 0; }
  // False, with nothing taken, when a time is too far or earlier than the one before, or there is no capacity.
  bool Append(std::span<const StripSample> samples);

  unsigned capacity() const { return capacity_; }
  unsigned count() const { return count_; }
  double TimeAt(unsigned index) const { return times_[Slot(index)]; }
  double ValueAt(unsigned index) const { return values_[Slot(index)]; }
  double oldest() const { return TimeAt(0); }
  double newest() const { return TimeAt(count_ - 1); }

  // The first sample not before a time, or count(); searched for outwards from `hint`, a good guess being cheap.
  unsigned FirstFrom(double time, unsigned hint = 0) const;
  // The first one behind it.
  unsigned FirstAfter(double time, unsigned hint = 0) const;

  Extent ExtentOf(unsigned from, unsigned to) const;
  StripStatistics StatisticsOf(unsigned from, unsigned to) const;

 private:
  static constexpr int kLevels = 5, kFanOutBits = 5;  // a block stands for 32 of the level below it

  unsigned Slot(unsigned index) const {
    const unsigned slot = first_ + index;
    return slot >= capacity_ ? slot - capacity_ : slot;
  }
  void Put(const StripSample& sample);
  void AddSlots(unsigned from, unsigned to, Extent* extent) const;
  template <class Reached>
  unsigned Search(unsigned hint, Reached reached) const;

  unsigned capacity_ = 0, first_ = 0, count_ = 0;
  std::unique_ptr<double[]> times_, values_;
  std::array<std::unique_ptr<Extent[]>, kLevels> levels_;
};

}  // namespace kv
