// The geometry of the segment bar: a row of lit and unlit segments, with a marker at the first zone's lower bound. Pure
// functions; any thread.
#pragma once

#include <windows.h>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument_block.h"

namespace kv {

// The number of segments for the block's range and step, 3 to 100; negative when the range is reversed.
int SegmentCount(const InstrumentBlock& block, DWORD style);

inline constexpr double kNoMarker = -1;
// The position of the marker in percent of the range; kNoMarker when zone 0 is not enabled.
double MarkerPercent(const InstrumentBlock& block);

// The number of lit segments, of `count`, at this percentage.
int LitSegments(double percent, int count);

// A range along the bar, in pixels from its start.
struct BarSpan {
  double from, to;
};
// The range of segment `index` of `count` in a bar of `length` pixels, without the gap to the next segment.
BarSpan SegmentSpan(double length, int count, int index);

// The number that a vertical bar shows within its frame; empty if none is shown.
FixedText SegmentBarNumber(const RECT& bar, const InstrumentBlock& block, DWORD style);

bool IsVerticalBar(const RECT& area);

}  // namespace kv
