// The digital read-out: a caption over a black display with seven-segment characters. Drawing takes a canvas and a
// rectangle.
#pragma once

#include "controls/instrument/view.h"

namespace kv {

struct DigitalParts {
  int captionHeight;  // also the caption's font; 0 without a caption
  RECT caption;
  RECT display;  // with its frame
};
DigitalParts LayOutDigital(const RECT& area, DWORD style);

void DrawDigitalFace(Canvas& canvas, const RECT& area, const InstrumentView& view);
void DrawDigitalValue(Canvas& canvas, const RECT& area, const InstrumentView& view);
void ListDigitalParts(HDC dc, const RECT& area, const InstrumentView& view, InstrumentParts* parts);

}  // namespace kv
