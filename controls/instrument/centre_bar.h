// The centre-zero bar: how far the value lies above or below the middle of its range. The geometry is pure; drawing
// takes a canvas and a rectangle.
#pragma once

#include "controls/instrument/view.h"

namespace kv {

// -100 at the minimum, 0 in the middle of the range, 100 at the maximum.
double CentreDeviation(const InstrumentReading& reading);

// The bar within the display: from the centre line upwards for a positive deviation, otherwise downwards.
RECT CentreBar(const RECT& display, double deviation);

// Top and height of the value's text: 4 pixels from the centre line, on the side away from the bar.
RECT CentreValueBox(const RECT& display, double deviation, int height);

void DrawCentreBarFace(Canvas& canvas, const RECT& area, const InstrumentView& view);
void DrawCentreBarValue(Canvas& canvas, const RECT& area, const InstrumentView& view);
void ListCentreBarParts(HDC dc, const RECT& area, const InstrumentView& view, InstrumentParts* parts);

}  // namespace kv
