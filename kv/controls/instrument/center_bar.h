// The geometry of the center-zero bar, which shows the deviation of the value from the middle of its range. Pure
// functions; any thread.
#pragma once

#include <windows.h>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument_block.h"

namespace kv {

// The deviation: -100 at the minimum, 0 in the middle of the range, 100 at the maximum.
double CenterDeviation(const InstrumentReading& reading);

// The bar within the display: from the center line upwards for a positive deviation, otherwise downwards. If `wide`,
// from the center line to the right, otherwise to the left.
RECT CenterBar(const RECT& display, double deviation, bool wide);

// The place of the value's text: 4 pixels from the center line, on the side opposite to the bar.
RECT CenterValueBox(const RECT& display, double deviation, bool wide, int height);

// The number that fits beside the center line; empty if none does.
FixedText CenterNumber(const RECT& display, const InstrumentBlock& block, DWORD style, bool wide);

}  // namespace kv
