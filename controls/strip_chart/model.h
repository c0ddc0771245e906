// What a strip chart shows: its channels, and which times and values of them. Pure; the thread that owns the control.
#pragma once

#include <array>
#include <limits>
#include <span>

#include "controls/strip_chart/axis.h"
#include "controls/strip_chart/sample_store.h"
#include "controls/strip_chart/strip_chart.h"

namespace kv {

inline constexpr double kNever = std::numeric_limits<double>::infinity();

struct StripChannelData {
  bool used = false;
  StripChannel info{};
  SampleStore store;
};

struct StripModel {
  std::array<StripChannelData, kStripChannels> channels;
  std::array<StripZone, kStripZones> zones{};
  std::array<bool, kStripZones> zoneShown{};
  DWORD style = 0, capacity = kStripDefaultCapacity;
  StripView view{kStripVersion, kStripFollow, 0, 0, 0, 0, 1, 0};
  StripView home = view;        // as the owner set it
  double heldAt = 0;            // the newest time when the user held
  double undrawnFrom = kNever;  // what lies behind this time is not in the picture yet
  double removedTo = -kNever;   // nor that what lay before this one is no longer kept
  bool cursorShown = false, marked = false;
  double cursor = 0;
  StripStretch mark{};
};

inline bool IsHeld(const StripModel& model) {
  return (model.view.state & kStripHold) != 0;
}
inline bool IsShown(const StripChannelData& channel) {
  return channel.used && (channel.info.state & kStripVisible);
}

// Each false with nothing changed: a channel that does not exist, what is no record, memory that is short.
bool SetChannel(StripModel& model, unsigned index, const StripChannel& info);
bool RemoveChannel(StripModel& model, unsigned index);
bool AppendSamples(StripModel& model, unsigned index, std::span<const StripSample> samples);
bool SetStripCapacity(StripModel& model, DWORD capacity);
bool SetZone(StripModel& model, unsigned index, const StripZone& zone, bool shown);
bool SetView(StripModel& model, const StripView& view);
void ClearSamples(StripModel& model);

// From the oldest to the newest sample that may be shown; 0 to 0 without any.
StripStretch StoredTimes(const StripModel& model);
// What the view shows; `to` is the right edge.
StripStretch ShownTimes(const StripModel& model);
// How many samples of a channel may be shown: while the picture is held, those from before.
unsigned ShownCount(const StripModel& model, const StripChannelData& channel);
// Whether the picture is a sweep: a look back is paper.
bool IsSweep(const StripModel& model);

// The range of a channel's axis, or of the one for all with -1, with about so many ticks if the values decide.
AxisRange RangeOf(const StripModel& model, int channel, int ticks);

// The user's steps. Parts are of what is shown; `about` is a place in it, 0 at the left.
void PanTime(StripModel& model, double parts);
void ZoomTime(StripModel& model, double factor, double about);
void PanValues(StripModel& model, double parts);
void ZoomValues(StripModel& model, double factor);
void ShowOldest(StripModel& model);
void ShowNewest(StripModel& model);
void SetHold(StripModel& model, bool hold);
void ReturnHome(StripModel& model);

StripReading ReadingAt(const StripModel& model, double time);
StripReading NewestReading(const StripModel& model);
// Over the mark, or without one over what is shown.
StripStatistics ChannelStatistics(const StripModel& model, unsigned index);

}  // namespace kv
