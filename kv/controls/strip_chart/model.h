// The model of a strip chart: channels, and the displayed times and values. Pure; the thread that owns the control.
#pragma once

#include <array>
#include <limits>
#include <span>
#include <vector>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/controls/strip_chart/supplied_samples.h"

namespace kv {

inline constexpr double kNever = std::numeric_limits<double>::infinity();

struct StripChannelData {
  bool used = false;
  StripChannel info{};
  SampleStore store;                 // empty with a source
  StripSource source{};              // without functions: the samples are in `store`
  StripNumbers seen{};               // of the source, when its samples were last drawn
  unsigned long long frozenEnd = 0;  // samples appended to the store before the display was frozen
};

struct StripModel {
  std::array<StripChannelData, kStripChannels> channels;
  std::array<StripZone, kStripZones> zones{};
  std::array<bool, kStripZones> zoneShown{};
  DWORD style = 0, capacity = kStripDefaultCapacity, axisDigits = 0;
  StripView view{kStripVersion, kStripFollow, 0, 0, 0, 0, 1, 0};
  StripView home = view;        // the view that the program has set
  double frozenAt = 0;          // the newest time when the display was frozen
  double undrawnFrom = kNever;  // samples after this time have not been drawn
  double hiddenFrom = kNever;   // samples after this time will be drawn when the display is released
  double removedTo = -kNever;   // samples before this time were discarded, but are still drawn
  bool cursorShown = false, cursorBShown = false, hasSelection = false;
  double cursor = 0, cursorB = 0;
  StripTimeRange selection{};
  std::vector<StripEvent> events;   // in the order of their times
  std::vector<StripView> previous;  // views before zooming into a part; the last one is restored first
};

inline bool IsFrozen(const StripModel& model) {
  return (model.view.state & kStripFrozen) != 0;
}
inline bool IsLogarithmic(const StripModel& model) {
  return (model.style & kStripLogarithmic) != 0;
}
inline TimeFormat TimeFormatOf(DWORD style) {
  return style & kStripElapsed     ? TimeFormat::kElapsed
         : style & kStripTimeOfDay ? TimeFormat::kTimeOfDay
                                   : TimeFormat::kSeconds;
}
inline bool IsShown(const StripChannelData& channel) {
  return channel.used && (channel.info.state & kStripVisible);
}

// Calls function(samples) with the samples of a channel, wherever they are stored.
template <class Function>
auto WithSamples(const StripModel& model, unsigned index, Function function) {
  const StripChannelData& channel = model.channels[index];
  return channel.source.numbers ? function(SuppliedSamples(channel.source, index)) : function(channel.store);
}

// These return false and change nothing if the channel does not exist, the struct is invalid or allocation fails.
bool SetChannel(StripModel& model, unsigned index, const StripChannel& info);
bool RemoveChannel(StripModel& model, unsigned index);
bool SetSource(StripModel& model, unsigned index, const StripSource* source);  // null: own samples
bool AppendSamples(StripModel& model, unsigned index, std::span<const StripSample> samples);
bool SetStripCapacity(StripModel& model, DWORD capacity);
bool SetZone(StripModel& model, unsigned index, const StripZone& zone, bool shown);
bool SetView(StripModel& model, const StripView& view);
void ClearSamples(StripModel& model);
// Finds out which samples the sources have added and dropped since the last call.
void NoticeSources(StripModel& model);

// From the oldest to the newest sample that can be displayed; 0 to 0 without samples.
StripTimeRange StoredTimes(const StripModel& model);
// The displayed time range; `to` is the right edge.
StripTimeRange ShownTimes(const StripModel& model);
// The number of samples of a channel that can be displayed: while frozen, those appended before.
unsigned ShownCount(const StripModel& model, unsigned index);
// Whether the chart sweeps; earlier times are shown as in ground mode.
bool IsSweep(const StripModel& model);

// The range of a channel's axis, or of the common axis (-1), in values or logarithms. An automatic range has about
// `ticks` ticks.
AxisRange RangeOf(const StripModel& model, int channel, int ticks);

// The user's actions. `parts` is relative to the displayed range; `about` is a position in it, 0 at the left, 1 at the
// right.
void PanTime(StripModel& model, double parts);
void ZoomTime(StripModel& model, double factor, double about);
void PanValues(StripModel& model, double parts);
void ZoomValues(StripModel& model, double factor);
// Zooms into a part of the plot: a time range, and a part of the value range (0 at the bottom, 1 at the top).
void ZoomInto(StripModel& model, const StripTimeRange& times, const AxisRange& range, double low, double high);
bool ZoomBack(StripModel& model);  // false: there is no previous view
void AddEvent(StripModel& model, const StripEvent& event);
void ShowOldest(StripModel& model);
void ShowNewest(StripModel& model);
void SetFrozen(StripModel& model, bool frozen);
void ReturnHome(StripModel& model);

// The values at a time: of the sample at or before it, unless a gap lies between, or it is after the newest sample.
StripReading ReadingAt(const StripModel& model, double time);
// The value of each channel's newest sample.
StripReading NewestReading(const StripModel& model);
// The statistics over the selection or, without one, the displayed time range.
StripStatistics ChannelStatistics(const StripModel& model, unsigned index);

}  // namespace kv
