#include "kv/controls/instrument/centre_bar.h"

#include <algorithm>
#include <cmath>

#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"
#include "kv/framework/painting.h"

namespace kv {

// ---- Layout ---------------------------------------------------------------------------------------------------------

namespace {

constexpr int kValueWidth = 5, kValueGap = 4;
constexpr double kBarEdge = 0.85;  // brightness of the bar's sides

struct CentreParts {
  RECT caption, display;
  int captionFont;
};

CentreParts LayOutCentreBar(const RECT& area) {
  const int font = CaptionFontHeight(std::min(area.right - area.left, area.bottom - area.top));
  CentreParts parts{area, area, font};
  parts.caption.bottom = parts.display.top = std::min(area.top + font + 1, area.bottom);
  return parts;
}

}  // namespace

double CentreDeviation(const InstrumentReading& reading) {
  return (FractionOf(reading, reading.value) * 100 - 50) * 2;
}

RECT CentreBar(const RECT& display, double deviation) {
  const LONG half = std::max(0L, display.bottom - display.top) / 2, centre = display.top + half;
  const LONG length = std::lround(std::min(std::fabs(deviation), 100.0) * half / 100);
  const LONG left = display.left + 1, right = std::max(display.left + 1, display.right - 1);
  return deviation > 0 ? RECT{left, centre - length, right, centre} : RECT{left, centre, right, centre + length};
}

RECT CentreValueBox(const RECT& display, double deviation, int height) {
  const LONG centre = display.top + (display.bottom - display.top) / 2;
  const LONG top = deviation > 0 ? centre + kValueGap : centre - kValueGap - height;
  return {display.left, top, display.right, top + height};
}

// ---- Background -----------------------------------------------------------------------------------------------------

namespace {

void DrawBackground(Canvas& canvas, InstrumentAppearance& appearance) {
  FillArea(canvas, appearance.area, GetSysColor(COLOR_BTNFACE));
  const CentreParts parts = LayOutCentreBar(appearance.area);
  DrawCaption(canvas, parts.caption, appearance, parts.captionFont, DT_CENTER);
  DrawDisplayWell(canvas, parts.display);
}

// ---- Value ----------------------------------------------------------------------------------------------------------

struct Bar {
  RECT place;
  COLORREF color;
};

void DrawBar(Canvas& canvas, const InstrumentAppearance&, const Bar& bar) {
  FillRounded(canvas, bar.place, ShadeColor(bar.color, kBarEdge), bar.color);
}

void DrawCentreLine(Canvas& canvas, const InstrumentAppearance& appearance, const RECT& line) {
  FillArea(canvas, line, ShownColor(appearance, RGB(255, 255, 255)));
}

struct ValueText {
  FixedText text;
  int characterWidth, height;  // of the font
  RECT place;
};

void DrawValueText(Canvas& canvas, const InstrumentAppearance& appearance, const ValueText& value) {
  DrawTextLine(canvas, InstrumentFont(value.height, value.characterWidth, FW_BOLD), WithoutPadding(value.text),
               value.place, ShownColor(appearance, RGB(255, 255, 255)), DT_CENTER | DT_NOCLIP);
}

void AddParts(ValueLayer& layer, const InstrumentBlock& block, const char*) {
  const RECT& area = layer.appearance().area;
  // A control that is wider than high shows only an empty display.
  if (area.right - area.left > area.bottom - area.top) return;
  const RECT display = WithinFrame(LayOutCentreBar(area).display);
  if (IsRectEmpty(&display)) return;
  const InstrumentReading reading = ReadingOf(block);
  const double deviation = reading.valid ? CentreDeviation(reading) : 0;
  const RECT bar = CentreBar(display, deviation);
  layer.Add(bar, Bar{bar, ShownColor(layer.appearance(), SeverityColor(deviation, 100))}, DrawBar);
  const LONG half = (display.bottom - display.top) / 2, centre = display.top + half;
  const RECT line{display.left, centre - 1, display.right, centre + 1};
  layer.Add(line, line, DrawCentreLine);

  ValueText value{reading.valid ? FixedWidthNumber(reading.value, kValueWidth, block.format | kFormatSign) : L"---"};
  const int availableWidth = (display.right - display.left - 8) / (static_cast<int>(value.text.size()) + 1);
  const int availableHeight = static_cast<int>((half - kValueGap) / 2.5);
  value.characterWidth = std::min(availableWidth, availableHeight);
  if (value.characterWidth <= 0) return;
  value.height = static_cast<int>(2.5 * value.characterWidth);
  value.place = CentreValueBox(display, deviation, value.height);
  RECT reach = value.place;
  InflateRect(&reach, 0, 2);
  IntersectRect(&reach, &reach, &display);
  layer.Add(reach, value, DrawValueText);
}

}  // namespace

const ModeRenderer kCentreBarRenderer{DrawBackground, AddParts};

}  // namespace kv
