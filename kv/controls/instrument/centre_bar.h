// The geometry of the centre-zero bar, which shows the deviation of the value from the middle of its range. Pure
// functions; any thread.
#pragma once

#include <windows.h>

#include "kv/controls/instrument_block.h"

namespace kv {

// The deviation: -100 at the minimum, 0 in the middle of the range, 100 at the maximum.
double CentreDeviation(const InstrumentReading& reading);

// The bar within the display: from the centre line upwards for a positive deviation, otherwise downwards.
RECT CentreBar(const RECT& display, double deviation);

// Top and height of the value's text: 4 pixels from the centre line, on the side opposite to the bar.
RECT CentreValueBox(const RECT& display, double deviation, int height);

}  // namespace kv
