#include "controls/instrument/centre_bar.h"

#include <algorithm>
#include <cmath>

#include "controls/instrument/fixed_text.h"
#include "controls/instrument_block.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/text.h"
#include "controls/instrument/view.h"
#include "framework/canvas.h"
#include "framework/painting.h"

namespace kv {

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

void DrawBar(Canvas& canvas, const RECT& bar, COLORREF color) {
  const COLORREF edge = ShadeColor(color, kBarEdge);
  RECT left = bar, right = bar;
  left.right = right.left = (bar.left + bar.right) / 2;
  FillAreaAcross(canvas, left, edge, color);
  FillAreaAcross(canvas, right, color, edge);
}

// Everything that depends on the value.
struct CentreReading {
  RECT display;  // within the frame; empty when nothing but the empty display is shown
  double deviation;
  RECT bar;
  FixedText text;
  int characterWidth, height;  // of the text's font; 0 without room for it
  RECT textPlace, textReach;   // where it stands, and the furthest that its font may stick out
};

CentreReading ReadCentreBar(const RECT& area, const InstrumentView& view) {
  CentreReading result{};
  // A control wider than tall shows its empty display only.
  if (area.right - area.left > area.bottom - area.top) return result;
  RECT& display = result.display = LayOutCentreBar(area).display;
  InflateRect(&display, -kSunkenEdge, -kSunkenEdge);
  if (IsRectEmpty(&display)) return result;
  const InstrumentReading reading = ReadingOf(view.block);
  result.deviation = reading.valid ? CentreDeviation(reading) : 0;
  result.bar = CentreBar(display, result.deviation);
  result.text =
      reading.valid ? FixedWidthNumber(reading.value, kValueWidth, view.block.format | kFormatSign) : FixedText(L"---");
  const int roomWidth = (display.right - display.left - 8) / (static_cast<int>(result.text.size()) + 1);
  const LONG half = (display.bottom - display.top) / 2;
  const int roomHeight = static_cast<int>((half - kValueGap) / 2.5);
  result.characterWidth = std::max(0, std::min(roomWidth, roomHeight));
  result.height = static_cast<int>(2.5 * result.characterWidth);
  result.textPlace = CentreValueBox(display, result.deviation, result.height);
  result.textReach = result.textPlace;
  InflateRect(&result.textReach, 0, 2);
  return result;
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

void DrawCentreBarFace(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  FillArea(canvas, area, GetSysColor(COLOR_BTNFACE));
  const CentreParts parts = LayOutCentreBar(area);
  DrawCaption(canvas, parts.caption, view, parts.captionFont, DT_CENTER);
  DrawDisplayWell(canvas, parts.display);
}

void DrawCentreBarValue(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  const CentreReading shown = ReadCentreBar(area, view);
  const RECT& display = shown.display;
  RECT seen;
  if (!IntersectRect(&seen, &display, &canvas.clip())) return;
  DrawBar(canvas, shown.bar, ShownColor(view, SeverityColor(shown.deviation, 100)));
  const LONG centre = display.top + (display.bottom - display.top) / 2;
  const COLORREF white = ShownColor(view, RGB(255, 255, 255));
  FillArea(canvas, {display.left, centre - 1, display.right, centre + 1}, white);
  if (shown.characterWidth == 0 || canvas.Hides(shown.textReach)) return;
  const RECT clip = canvas.clip();
  canvas.ClipTo(seen);
  DrawTextLine(canvas, view.keep.fonts.Get(shown.height, shown.characterWidth, FW_BOLD), WithoutPadding(shown.text),
               shown.textPlace, white, DT_CENTER | DT_NOCLIP);
  canvas.ClipTo(clip);
}

void ListCentreBarParts(HDC, const RECT& area, const InstrumentView& view, InstrumentParts* parts) {
  const CentreReading shown = ReadCentreBar(area, view);
  parts->Add(shown.bar, LookOf(shown.deviation));
  parts->Add(shown.textReach, LookOf(shown.text));
}

}  // namespace kv
