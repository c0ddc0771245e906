// The geometry of the segment bar: a row of lit and unlit segments, with a marker at the first zone's lower bound. Pure
// functions; any thread.
#pragma once

#include <windows.h>

#include "controls/instrument_block.h"

namespace kv {

// How many segments the block's range and step ask for, 3 to 100; negative when the bar runs the other way.
int SegmentCount(const InstrumentBlock& block, DWORD style);

inline constexpr double kNoMarker = -1;
// Where the marker stands, in percent of the range; kNoMarker when zone 0 is not enabled.
double MarkerPercent(const InstrumentBlock& block);

// How many of `count` segments are lit at this percentage.
int LitSegments(double percent, int count);

// A stretch along the bar in pixels from its start.
struct BarSpan {
  double from, to;
};
// The place of segment `index` of `count` in a bar of `length` pixels, with the gap to the next left out.
BarSpan SegmentSpan(double length, int count, int index);

bool IsVerticalBar(const RECT& area);

}  // namespace kv
