#include "kv/controls/strip_chart/model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>
#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/controls/strip_chart/supplied_samples.h"

namespace kv {

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr COLORREF kChannelColors[kStripChannels] = {RGB(31, 104, 196), RGB(222, 97, 14),  RGB(34, 139, 60),
                                                     RGB(200, 40, 50),  RGB(126, 78, 178), RGB(0, 140, 150),
                                                     RGB(196, 66, 148), RGB(120, 96, 40)};
// Rounds the span of all stored samples up, so that not every sample changes the scale.
constexpr double kSpanFactors[] = {1, 1.2, 1.5, 2, 2.5, 3, 4, 5, 6, 8, 10};

bool IsRange(double low, double high) {
  const double magnitude = std::max(std::fabs(low), std::fabs(high));
  return magnitude <= kStripMaxValue && high - low > std::max(magnitude * 1e-9, 1e-200);
}

// Creates a channel's sample store and, if missing, its description.
bool UseChannel(StripModel& model, unsigned index) {
  if (index >= kStripChannels) return false;
  StripChannelData& channel = model.channels[index];
  if (channel.used) return true;
  if (!SampleStore().MakeResized(model.capacity, &channel.store)) return false;
  channel.info = {.version = kStripVersion, .state = kStripVisible, .color = kChannelColors[index]};
  channel.info.name[0] = static_cast<char>('1' + index);
  channel.used = true;
  return true;
}

double SpanFor(double length) {
  const double unit = std::pow(10, std::floor(std::log10(length)));
  for (const double factor : kSpanFactors) {
    if (factor * unit >= length) return factor * unit;
  }
  return 10 * unit;
}

constexpr double kEmptySpan = 10;  // seconds

// The smallest difference of which doubles of this size can represent a thousandth.
double MinSpan(double time) {
  return std::max(1e-6, std::fabs(time) * 1e-11);
}

void Follow(StripModel& model, bool follow) {
  model.view.state = follow ? model.view.state | kStripFollow : model.view.state & ~kStripFollow;
}

// From the oldest to the newest sample that can be displayed; without samples, `from` > `to`.
StripTimeRange AllTimes(const StripModel& model) {
  StripTimeRange all{kNever, -kNever};
  for (unsigned i = 0; i < kStripChannels; ++i) {
    if (ShownCount(model, i) == 0 && !model.channels[i].source.times) continue;
    const StripTimeRange times = WithSamples(model, i, [](const auto& samples) { return samples.times(); });
    if (times.from > times.to) continue;
    all = {std::min(all.from, times.from), std::max(all.to, times.to)};
  }
  return all;
}

// Whole decades for the values above 0.
AxisRange Decades(const Extent& extent) {
  constexpr double kSmallest = 1e-6;  // relative to the largest, where there are values of 0 and below
  if (extent.high <= 0) return {0, 1};
  const double high = std::ceil(std::log10(extent.high));
  const double low = std::floor(std::log10(extent.low > 0 ? extent.low : extent.high * kSmallest));
  return {std::min(low, high - 1), high};
}

// Shows a time range with this length and end, limited to the stored samples.
void Show(StripModel& model, double span, double end) {
  const StripTimeRange stored = StoredTimes(model);
  model.view.span = std::clamp(span, MinSpan(stored.to), 4 * kStripMaxTime);
  Follow(model, end >= stored.to);
  model.view.end = std::clamp(end, std::min(stored.from + model.view.span, stored.to), stored.to);
}

// The value of the sample at or before a time. A gap begins with its own sample and lasts until the next one.
double ValueAt(const StripModel& model, unsigned index, double time) {
  return WithSamples(model, index, [&](const auto& samples) {
    const unsigned count = ShownCount(model, index), next = std::min(samples.FirstAfter(time), count);
    if (next == 0) return kNoValue;
    const bool isBetween = time > samples.TimeAt(next - 1);
    if (isBetween && (next == count || samples.HasGapBefore(next))) return kNoValue;
    return samples.ValueAt(next - 1);
  });
}

}  // namespace

// ---- Owner's commands -----------------------------------------------------------------------------------------------

bool SetChannel(StripModel& model, unsigned index, const StripChannel& info) {
  if (info.version != kStripVersion || !UseChannel(model, index)) return false;
  StripChannel& own = model.channels[index].info;
  own = info;
  own.name[sizeof(own.name) - 1] = own.unit[sizeof(own.unit) - 1] = '\0';
  return true;
}

bool RemoveChannel(StripModel& model, unsigned index) {
  if (index >= kStripChannels || !model.channels[index].used) return false;
  model.channels[index] = {};
  return true;
}

bool SetSource(StripModel& model, unsigned index, const StripSource* source) {
  if (source && source->version != kStripVersion) return false;
  if (!UseChannel(model, index)) return false;
  StripChannelData& channel = model.channels[index];
  if (!source && !SampleStore().MakeResized(model.capacity, &channel.store)) return false;
  if (source) channel.store = {};
  channel.source = source ? *source : StripSource{};
  channel.frozenEnd = 0;
  model.removedTo = kNever;
  return true;
}

void NoticeSources(StripModel& model) {
  for (unsigned i = 0; i < kStripChannels; ++i) {
    StripChannelData& channel = model.channels[i];
    if (!channel.source.numbers) continue;
    const SuppliedSamples samples(channel.source, i);
    const auto end = static_cast<long long>(samples.appended()), first = end - samples.count();
    const StripNumbers seen = std::exchange(channel.seen, {first, end});
    if (end < seen.end || first < seen.first || first >= seen.end) {
      model.removedTo = kNever;
      continue;
    }
    if (first > seen.first) model.removedTo = std::max(model.removedTo, samples.TimeAt(0));
    if (end == seen.end) continue;
    double& from = IsFrozen(model) ? model.hiddenFrom : model.undrawnFrom;
    from = std::min(from, samples.TimeAt(static_cast<unsigned>(seen.end - first) - 1));
  }
}

bool AppendSamples(StripModel& model, unsigned index, std::span<const StripSample> samples) {
  const bool isNew = index < kStripChannels && !model.channels[index].used;
  if (!UseChannel(model, index)) return false;
  SampleStore& store = model.channels[index].store;
  const bool full = store.count() + samples.size() > store.capacity();
  const double last = store.count() ? store.newest() : -kNever;
  if (!store.Append(samples)) {
    if (isNew) model.channels[index] = {};
    return false;
  }
  if (samples.empty()) return true;
  double& from = IsFrozen(model) ? model.hiddenFrom : model.undrawnFrom;
  from = std::min(from, std::max(last, store.oldest()));
  if (full) model.removedTo = std::max(model.removedTo, store.oldest());
  return true;
}

bool SetStripCapacity(StripModel& model, DWORD capacity) {
  std::array<SampleStore, kStripChannels> stores;
  bool made = false;
  for (int i = 0; i < kStripChannels; ++i) {
    const StripChannelData& channel = model.channels[i];
    if (!channel.used || channel.source.numbers) continue;
    if (!channel.store.MakeResized(capacity, &stores[i])) return false;
    made = true;
  }
  // Without channels, test whether this capacity can be allocated.
  SampleStore test;
  if (!made && !test.MakeResized(capacity, &test)) return false;
  for (int i = 0; i < kStripChannels; ++i) {
    if (stores[i].capacity()) model.channels[i].store = std::move(stores[i]);
  }
  model.capacity = capacity;
  model.removedTo = kNever;
  return true;
}

bool SetZone(StripModel& model, unsigned index, const StripZone& zone, bool shown) {
  if (index >= kStripZones || !std::isfinite(zone.lower) || !std::isfinite(zone.upper)) return false;
  model.zones[index] = zone;
  model.zoneShown[index] = shown;
  return true;
}

bool SetView(StripModel& model, const StripView& view) {
  const bool allowed = view.version == kStripVersion && view.span >= 0 && view.span <= 4 * kStripMaxTime &&
                       std::fabs(view.end) <= kStripMaxTime && view.zoom > 1e-6 && view.zoom < 1e6 &&
                       std::fabs(view.shift) < 1e6;
  if (!allowed) return false;
  SetFrozen(model, (view.state & kStripFrozen) != 0);
  model.view = view;
  model.view.state &= kStripFollow | kStripFrozen;
  model.home = model.view;
  model.home.state &= ~kStripFrozen;
  return true;
}

void ClearSamples(StripModel& model) {
  for (StripChannelData& channel : model.channels) channel.store.Clear();
  model.cursorShown = model.cursorBShown = model.hasSelection = false;
  model.events.clear();
  model.previous.clear();
  SetFrozen(model, false);
  model.view = model.home;
  model.removedTo = kNever;
}

// ---- Displayed ranges -----------------------------------------------------------------------------------------------

StripTimeRange StoredTimes(const StripModel& model) {
  const StripTimeRange stored = AllTimes(model);
  if (IsFrozen(model)) return {std::min(stored.from, model.frozenAt), model.frozenAt};
  return stored.from <= stored.to ? stored : StripTimeRange{0, 0};
}

StripTimeRange ShownTimes(const StripModel& model) {
  const StripTimeRange stored = StoredTimes(model);
  const StripTimeRange all = AllTimes(model);
  const bool isEmpty = all.from > all.to;
  const bool follows = (model.view.state & kStripFollow) || model.view.span == 0;
  const double length = stored.to - stored.from;
  double span = model.view.span, end = follows ? stored.to : model.view.end;
  if (span == 0) span = isEmpty ? kEmptySpan : SpanFor(length > 0 ? std::max(length, MinSpan(end) * 1000) : 1);
  span = std::max(span, MinSpan(end));
  if (isEmpty && follows) end = span;  // an empty chart begins at 0
  return {end - span, end};
}

unsigned ShownCount(const StripModel& model, unsigned index) {
  return WithSamples(model, index, [&](const auto& samples) {
    const unsigned count = samples.count();
    if (!IsFrozen(model)) return count;
    const unsigned long long discarded = samples.appended() - count, end = model.channels[index].frozenEnd;
    return end > discarded ? std::min(static_cast<unsigned>(end - discarded), count) : 0;
  });
}

bool IsSweep(const StripModel& model) {
  return (model.style & kStripModeBits) == kStripSweep && (model.view.state & kStripFollow);
}

AxisRange RangeOf(const StripModel& model, int channel, int ticks) {
  const bool forAll = channel < 0;
  const double low = forAll ? model.view.minimum : model.channels[channel].info.minimum;
  const double high = forAll ? model.view.maximum : model.channels[channel].info.maximum;
  const bool isLogarithmic = IsLogarithmic(model);
  AxisRange range{AxisPosition(low, isLogarithmic), AxisPosition(high, isLogarithmic)};
  if (!IsRange(low, high) || (isLogarithmic && low <= 0)) {
    const StripTimeRange shown = ShownTimes(model);
    Extent extent;
    for (unsigned i = 0; i < kStripChannels; ++i) {
      if (!IsShown(model.channels[i]) || (!forAll && i != static_cast<unsigned>(channel))) continue;
      WithSamples(model, i, [&](const auto& samples) {
        const unsigned from = samples.FirstFrom(shown.from, samples.count());
        extent.Add(
            samples.ExtentOf(from, std::min(samples.FirstAfter(shown.to, samples.count()), ShownCount(model, i))));
      });
    }
    range = extent.empty()  ? AxisRange{0, 1}
            : isLogarithmic ? Decades(extent)
                            : NiceRange(extent.low, extent.high, ticks);
  }
  const double middle = range.low + (range.high - range.low) * (0.5 + model.view.shift);
  // Not below the differences that doubles of this size can represent.
  const double half = std::max((range.high - range.low) / 2 / model.view.zoom, std::fabs(middle) * 1e-11);
  return {middle - half, middle + half};
}

// ---- User's actions -------------------------------------------------------------------------------------------------

void PanTime(StripModel& model, double parts) {
  const StripTimeRange shown = ShownTimes(model);
  const double span = shown.to - shown.from;
  Show(model, span, shown.to + span * parts);
}

void ZoomTime(StripModel& model, double factor, double about) {
  const StripTimeRange shown = ShownTimes(model);
  const double span = shown.to - shown.from;
  const bool follows = shown.to >= StoredTimes(model).to;
  // If the newest sample is displayed, continue to follow it.
  const double end = follows && about > 0.5 ? shown.to : shown.from + span * about + span * (1 - about) / factor;
  Show(model, span / factor, end);
}

void PanValues(StripModel& model, double parts) {
  model.view.shift = std::clamp(model.view.shift + parts / model.view.zoom, -100.0, 100.0);
}

void ZoomValues(StripModel& model, double factor) {
  model.view.zoom = std::clamp(model.view.zoom * factor, 1e-3, 1e5);
}

void ZoomInto(StripModel& model, const StripTimeRange& times, const AxisRange& range, double low, double high) {
  constexpr size_t kMaxPrevious = 32;
  if (model.previous.size() == kMaxPrevious) model.previous.erase(model.previous.begin());
  model.previous.push_back(model.view);
  StripView& view = model.view;
  if (model.style & kStripSeparateAxes) {
    view.shift += ((low + high) / 2 - 0.5) / view.zoom;
    ZoomValues(model, 1 / (high - low));
  } else {
    const auto value = [&](double part) {
      const double position = range.low + (range.high - range.low) * part;
      return IsLogarithmic(model) ? std::pow(10, position) : position;
    };
    view.minimum = value(low);
    view.maximum = value(high);
    view.zoom = 1;
    view.shift = 0;
  }
  Show(model, times.to - times.from, times.to);
}

bool ZoomBack(StripModel& model) {
  if (model.previous.empty()) return false;
  const DWORD frozen = model.view.state & kStripFrozen;
  model.view = model.previous.back();
  model.view.state = (model.view.state & ~kStripFrozen) | frozen;
  model.previous.pop_back();
  return true;
}

void AddEvent(StripModel& model, const StripEvent& event) {
  if (model.events.size() == kStripMaxEvents) model.events.erase(model.events.begin());
  model.events.insert(std::ranges::upper_bound(model.events, event.time, {}, &StripEvent::time), event);
}

void ShowOldest(StripModel& model) {
  const StripTimeRange shown = ShownTimes(model);
  Show(model, shown.to - shown.from, -kNever);
}

void ShowNewest(StripModel& model) {
  Follow(model, true);
}

void SetFrozen(StripModel& model, bool frozen) {
  if (frozen == IsFrozen(model)) return;
  if (frozen) {
    model.frozenAt = StoredTimes(model).to;
    model.hiddenFrom = kNever;
    for (unsigned i = 0; i < kStripChannels; ++i) {
      model.channels[i].frozenEnd = WithSamples(model, i, [](const auto& samples) { return samples.appended(); });
    }
    model.view.state |= kStripFrozen;
  } else {
    model.view.state &= ~kStripFrozen;
    model.undrawnFrom = std::min(model.undrawnFrom, model.hiddenFrom);
  }
}

void ReturnHome(StripModel& model) {
  const DWORD frozen = model.view.state & kStripFrozen;
  model.view = model.home;
  model.view.state |= frozen;
  model.cursorShown = model.cursorBShown = model.hasSelection = false;
}

// ---- Readings and statistics ----------------------------------------------------------------------------------------

StripReading ReadingAt(const StripModel& model, double time) {
  StripReading reading{.time = time};
  for (unsigned i = 0; i < kStripChannels; ++i) reading.values[i] = ValueAt(model, i, time);
  return reading;
}

StripReading NewestReading(const StripModel& model) {
  StripReading reading{.time = StoredTimes(model).to};
  for (unsigned i = 0; i < kStripChannels; ++i) {
    const unsigned count = ShownCount(model, i);
    reading.values[i] =
        WithSamples(model, i, [&](const auto& samples) { return count ? samples.ValueAt(count - 1) : kNoValue; });
  }
  return reading;
}

StripStatistics ChannelStatistics(const StripModel& model, unsigned index) {
  const StripTimeRange range = model.hasSelection ? model.selection : ShownTimes(model);
  return WithSamples(model, index, [&](const auto& samples) {
    return StatisticsOf(samples, samples.FirstFrom(range.from),
                        std::min(samples.FirstAfter(range.to), ShownCount(model, index)));
  });
}

}  // namespace kv
