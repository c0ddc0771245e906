// The circular gauge: a dial of 270 degrees with scale, coloured zones, needle, name, unit and value, from a few pixels
// to thousands. What stands where is settled in controls/instrument/gauge_layout.h.
#pragma once

#include "controls/instrument/view.h"

namespace kv {

void DrawGaugeFace(Canvas& canvas, const RECT& area, const InstrumentView& view);
void DrawGaugeValue(Canvas& canvas, const RECT& area, const InstrumentView& view);
void ListGaugeParts(HDC dc, const RECT& area, const InstrumentView& view, InstrumentParts* parts);

}  // namespace kv
