#include "kv/controls/strip_chart/supplied_samples.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"

namespace kv {

SuppliedSamples::SuppliedSamples(const StripSource& source, unsigned channel)
    : source_(source), channel_(static_cast<int>(channel)) {
  const StripNumbers numbers = source.numbers(source.context, channel_);
  first_ = std::max(numbers.first, 0LL);
  count_ = static_cast<unsigned>(std::clamp(numbers.end - first_, 0LL, static_cast<long long>(INT_MAX)));
}

const StripSuppliedSample& SuppliedSamples::At(unsigned index) const {
  for (const int each : {recent_, 1 - recent_}) {
    const Group& group = groups_[each];
    if (index - group.first >= group.count) continue;
    recent_ = each;
    return group.samples[index - group.first];
  }
  constexpr unsigned kBefore = 4;
  recent_ = 1 - recent_;
  Group& group = groups_[recent_];
  group.first = index - std::min(index, kBefore);
  group.count = std::min(count_ - group.first, static_cast<unsigned>(group.samples.size()));
  group.samples.fill({0, std::numeric_limits<double>::quiet_NaN(), 0});
  source_.read(source_.context, channel_, first_ + group.first, group.count, group.samples.data());
  for (StripSuppliedSample& sample : group.samples) {
    if (!(std::fabs(sample.value) <= kStripMaxValue)) sample.value = std::numeric_limits<double>::quiet_NaN();
  }
  return group.samples[index - group.first];
}

StripTimeRange SuppliedSamples::times() const {
  const StripTimeRange own = count_ ? StripTimeRange{TimeAt(0), TimeAt(count_ - 1)} : StripTimeRange{0, -1};
  if (!source_.times) return own;
  const StripTimeRange range = source_.times(source_.context, channel_);
  return range.from <= range.to && std::max(std::fabs(range.from), std::fabs(range.to)) <= kStripMaxTime ? range : own;
}

// In the samples at hand or by the program's search, which may round.
unsigned SuppliedSamples::FirstFrom(double time, unsigned) const {
  for (const Group& group : groups_) {
    const auto begin = group.samples.begin(), end = begin + group.count;
    if (begin == end || !(begin->time < time && time <= (end - 1)->time)) continue;
    return group.first +
           static_cast<unsigned>(std::ranges::lower_bound(begin, end, time, {}, &StripSuppliedSample::time) - begin);
  }
  const long long found = source_.find(source_.context, channel_, time) - first_;
  auto index = static_cast<unsigned>(std::clamp(found, 0LL, static_cast<long long>(count_)));
  while (index > 0 && TimeAt(index - 1) >= time) --index;
  while (index < count_ && TimeAt(index) < time) ++index;
  return index;
}

unsigned SuppliedSamples::FirstAfter(double time, unsigned) const {
  return FirstFrom(std::nextafter(time, std::numeric_limits<double>::infinity()));
}

Extent SuppliedSamples::ExtentOf(unsigned from, unsigned to) const {
  Extent extent;
  to = std::min(to, count_);
  if (from >= to) return extent;
  constexpr unsigned kFew = 8;
  if (source_.extent && to - from > kFew) {
    const StripExtent found = source_.extent(source_.context, channel_, first_ + from, first_ + to);
    return {found.minimum, found.maximum};
  }
  for (; from < to; ++from) extent.Add(ValueAt(from));
  return extent;
}

}  // namespace kv
