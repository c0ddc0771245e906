// The samples of a channel that the program stores (StripSource), read like those of a SampleStore. Index 0 is the
// oldest one. An object lives at most as long as the handling of a message. The thread that owns the control.
#pragma once

#include <array>

#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"

namespace kv {

class SuppliedSamples {
 public:
  SuppliedSamples(const StripSource& source, unsigned channel);

  unsigned count() const { return count_; }
  unsigned long long appended() const { return static_cast<unsigned long long>(first_) + count_; }
  double TimeAt(unsigned index) const { return At(index).time; }
  double ValueAt(unsigned index) const { return At(index).value; }
  bool HasGapBefore(unsigned index) const { return (At(index).state & kStripGapBefore) != 0; }
  // Null functions are replaced; an empty range is {0, -1}.
  StripTimeRange times() const;

  // As in SampleStore; the hint is not needed.
  unsigned FirstFrom(double time, unsigned hint = 0) const;
  unsigned FirstAfter(double time, unsigned hint = 0) const;
  Extent ExtentOf(unsigned from, unsigned to) const;

 private:
  // Samples are read in groups, because neighbors are needed next. One group would be replaced too often where two
  // distant samples are compared.
  struct Group {
    unsigned first = 0, count = 0;
    std::array<StripSuppliedSample, 16> samples;
  };
  const StripSuppliedSample& At(unsigned index) const;

  const StripSource& source_;
  int channel_;
  long long first_;
  unsigned count_;
  mutable std::array<Group, 2> groups_;
  mutable int recent_ = 0;
};

}  // namespace kv
