#include "kv/controls/strip_chart/sample_store.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <span>
#include <utility>
#include "kv/controls/strip_chart/strip_chart.h"

namespace kv {

bool SampleStore::MakeResized(unsigned capacity, SampleStore* other) const {
  if (capacity == 0 || capacity > kStripMaxCapacity) return false;
  SampleStore made;
  made.capacity_ = capacity;
  made.times_.reset(new (std::nothrow) double[capacity]);
  made.values_.reset(new (std::nothrow) double[capacity]);
  bool complete = made.times_ && made.values_;
  for (int i = 0; complete && i < kLevels; ++i) {
    made.levels_[i].reset(new (std::nothrow) Extent[(capacity >> (i + 1) * kFanOutBits) + 1]);
    complete = made.levels_[i] != nullptr;
  }
  if (!complete) return false;
  for (unsigned i = count_ > capacity ? count_ - capacity : 0; i < count_; ++i) made.Put({TimeAt(i), ValueAt(i)});
  made.appended_ = appended_;
  *other = std::move(made);
  return true;
}

bool SampleStore::Append(std::span<const StripSample> samples) {
  double last = count_ ? newest() : -kStripMaxTime;
  for (const StripSample& sample : samples) {
    if (!(sample.time >= last) || !(sample.time <= kStripMaxTime)) return false;
    last = sample.time;
  }
  if (capacity_ == 0) return false;
  appended_ += samples.size();
  if (samples.size() > capacity_) samples = samples.last(capacity_);
  for (const StripSample& sample : samples) Put(sample);
  return true;
}

void SampleStore::Put(const StripSample& sample) {
  const unsigned slot = Slot(count_ == capacity_ ? 0 : count_);
  if (count_ == capacity_) {
    first_ = first_ + 1 == capacity_ ? 0 : first_ + 1;
  } else {
    ++count_;
  }
  const bool isGap = !(std::fabs(sample.value) <= kStripMaxValue);
  const double value = isGap ? std::numeric_limits<double>::quiet_NaN() : sample.value;
  times_[slot] = sample.time;
  values_[slot] = value;
  // The first slot resets a block. Until the ring has filled the block, no query uses it as a whole.
  for (int i = 0; i < kLevels; ++i) {
    const int bits = (i + 1) * kFanOutBits;
    Extent& block = levels_[i][slot >> bits];
    if ((slot & ((1u << bits) - 1)) == 0) block = {};
    block.Add(value);
  }
}

// The first sample for which `reached` is true; it must be false for all samples before and true for all after it.
template <class Reached>
unsigned SampleStore::Search(unsigned hint, Reached reached) const {
  unsigned low = 0, high = count_;  // the result is in this range, including both ends
  hint = std::min(hint, count_);
  if (hint < count_ && !reached(hint)) {
    low = hint + 1;
    for (unsigned step = 1; low + step < count_; step *= 2) {
      if (reached(low + step)) {
        high = low + step;
        break;
      }
      low += step + 1;
    }
  } else {
    high = hint;
    for (unsigned step = 1; step <= high; step *= 2) {
      if (!reached(high - step)) {
        low = high - step + 1;
        break;
      }
      high -= step;
    }
  }
  while (low < high) {
    const unsigned middle = low + (high - low) / 2;
    if (reached(middle)) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

unsigned SampleStore::FirstFrom(double time, unsigned hint) const {
  return Search(hint, [&](unsigned i) { return TimeAt(i) >= time; });
}

unsigned SampleStore::FirstAfter(double time, unsigned hint) const {
  return Search(hint, [&](unsigned i) { return TimeAt(i) > time; });
}

Extent SampleStore::ExtentOf(unsigned from, unsigned to) const {
  Extent extent;
  to = std::min(to, count_);
  if (from >= to) return extent;
  const unsigned slot = Slot(from), untilEnd = capacity_ - slot, length = to - from;
  AddSlots(slot, slot + std::min(length, untilEnd), &extent);
  if (length > untilEnd) AddSlots(0, length - untilEnd, &extent);
  return extent;
}

// Handles partial blocks at both ends, then continues with whole blocks on the next level.
void SampleStore::AddSlots(unsigned from, unsigned to, Extent* extent) const {
  constexpr unsigned kFanOut = 1u << kFanOutBits;
  for (; from < to && from % kFanOut; ++from) extent->Add(values_[from]);
  for (; from < to && to % kFanOut; --to) extent->Add(values_[to - 1]);
  for (int level = 0; from < to; ++level) {
    from /= kFanOut;
    to /= kFanOut;
    const Extent* blocks = levels_[level].get();
    const bool top = level == kLevels - 1;
    for (; from < to && (top || from % kFanOut); ++from) extent->Add(blocks[from]);
    for (; from < to && to % kFanOut; --to) extent->Add(blocks[to - 1]);
  }
}

}  // namespace kv
