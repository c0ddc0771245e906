#include "controls/instrument/digital.h"

#include "controls/instrument_block.h"
#include "controls/instrument/digits.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/view.h"
#include "framework/canvas.h"
#include "framework/painting.h"

namespace kv {

namespace {

constexpr int kLeastHeightWithCaption = 24;
constexpr int kCaptionRightMargin = 4;

RECT DigitsWithin(RECT display) {
  InflateRect(&display, -kSunkenEdge, -kSunkenEdge);
  InflateRect(&display, -2, -1);
  return display;
}

}  // namespace

DigitalParts LayOutDigital(const RECT& area, DWORD style) {
  const int height = area.bottom - area.top;
  DigitalParts parts{0, {}, area};
  if (height < kLeastHeightWithCaption || (style & kInstrumentNoCaption)) return parts;
  parts.captionHeight = CaptionFontHeight(height);
  parts.caption = {area.left, area.top, area.right - kCaptionRightMargin, area.top + parts.captionHeight};
  parts.display.top += parts.captionHeight;
  return parts;
}

void DrawDigitalFace(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  FillArea(canvas, area, GetSysColor(COLOR_BTNFACE));
  const DigitalParts parts = LayOutDigital(area, view.style);
  if (parts.captionHeight) DrawCaption(canvas, parts.caption, view, parts.captionHeight, DT_CENTER);
  DrawDisplayWell(canvas, parts.display);
}

void DrawDigitalValue(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  const COLORREF color = DisplayColor(view);
  DrawDigits(canvas, DigitsWithin(LayOutDigital(area, view.style).display), view.text, view.style, color,
             ShadeColor(color, kUnlit));
}

void ListDigitalParts(HDC, const RECT& area, const InstrumentView& view, InstrumentParts* parts) {
  ListDigits(DigitsWithin(LayOutDigital(area, view.style).display), view.text, view.style, parts);
}

}  // namespace kv
