#include "controls/instrument_centre_bar.h"

#include <algorithm>
#include <cmath>

#include "controls/instrument_text.h"
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

void DrawBar(HDC dc, const RECT& bar, COLORREF color) {
  const COLORREF edge = ShadeColor(color, kBarEdge);
  RECT left = bar, right = bar;
  left.right = right.left = (bar.left + bar.right) / 2;
  FillHorizontalGradient(dc, left, edge, color);
  FillHorizontalGradient(dc, right, color, edge);
}

void DrawValue(HDC dc, const RECT& display, const InstrumentView& view, double deviation) {
  const InstrumentReading reading = ReadingOf(view.block);
  const std::wstring text = reading.valid
                                ? FixedWidthNumber(reading.value, kValueWidth, view.block.format | kFormatSign)
                                : std::wstring(L"---");
  const int roomWidth = (display.right - display.left - 8) / (static_cast<int>(text.size()) + 1);
  const int roomHeight = static_cast<int>(((display.bottom - display.top) / 2 - kValueGap) / 2.5);
  const int characterWidth = std::min(roomWidth, roomHeight);
  if (characterWidth < 1) return;
  const int height = static_cast<int>(2.5 * characterWidth);
  const OwnedFont font = CreateInstrumentFont(height, characterWidth, FW_BOLD);
  DrawTextLine(dc, font, WithoutPadding(text), CentreValueBox(display, deviation, height),
               ShownColor(view, RGB(255, 255, 255)), DT_CENTER | DT_NOCLIP);
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

void DrawCentreBarFace(HDC dc, const RECT& area, const InstrumentView& view) {
  FillSolid(dc, area, GetSysColor(COLOR_BTNFACE));
  const CentreParts parts = LayOutCentreBar(area);
  DrawCaption(dc, parts.caption, view, parts.captionFont, DT_CENTER);
  DrawDisplayWell(dc, parts.display);
}

void DrawCentreBarValue(HDC dc, const RECT& area, const InstrumentView& view) {
  // A control wider than tall shows its empty display only.
  if (area.right - area.left > area.bottom - area.top) return;
  RECT display = LayOutCentreBar(area).display;
  InflateRect(&display, -kSunkenEdge, -kSunkenEdge);
  if (IsRectEmpty(&display)) return;
  const InstrumentReading reading = ReadingOf(view.block);
  const double deviation = reading.valid ? CentreDeviation(reading) : 0;
  DrawBar(dc, CentreBar(display, deviation), ShownColor(view, SeverityColor(deviation, 100)));
  const LONG centre = display.top + (display.bottom - display.top) / 2;
  FillSolid(dc, {display.left, centre - 1, display.right, centre + 1}, ShownColor(view, RGB(255, 255, 255)));
  const int saved = SaveDC(dc);
  IntersectClipRect(dc, display.left, display.top, display.right, display.bottom);
  DrawValue(dc, display, view, deviation);
  RestoreDC(dc, saved);
}

}  // namespace kv
