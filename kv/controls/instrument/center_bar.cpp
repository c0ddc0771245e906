#include "kv/controls/instrument/center_bar.h"

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

// ---- Layout

namespace {

constexpr int kValueWidth = 5, kValueGap = 4;
constexpr double kBarEdge = 0.85;  // brightness of the bar's sides

struct CenterParts {
  RECT caption, display;
  int captionFont;
};

bool IsWide(const RECT& area) {
  return area.right - area.left > area.bottom - area.top;
}

CenterParts LayOutCenterBar(const RECT& area, DWORD style) {
  const LONG width = area.right - area.left, height = area.bottom - area.top;
  if ((style & kInstrumentFitted) && IsWide(area) && height < kMinHeightWithCaption) return {{}, area, 0};
  const int font = std::min<int>(CaptionFontHeight(std::min(width, height), style), std::max(14L, height / 5));
  CenterParts parts{area, area, font};
  parts.caption.bottom = parts.display.top = std::min(area.top + font + 1, area.bottom);
  return parts;
}

// The space for the value's text, on one side of the center line.
SIZE ValueSpace(const RECT& display, bool wide) {
  constexpr int kMargin = 4;
  const LONG width = display.right - display.left, height = display.bottom - display.top;
  return wide ? SIZE{width / 2 - kValueGap - kMargin, height - 2} : SIZE{width - 2 * kMargin, height / 2 - kValueGap};
}

}  // namespace

FixedText CenterNumber(const RECT& display, const InstrumentBlock& block, DWORD style, bool wide) {
  constexpr int kMinCharacterWidth = 3;
  const InstrumentReading reading = ReadingOf(block);
  const BYTE format = block.format | kFormatSign;
  if (!reading.valid) return L"---";
  return style & kInstrumentFitted
             ? FittedNumber(reading, format, ValueSpace(display, wide).cx / kMinCharacterWidth - 1)
             : FixedWidthNumber(reading.value, kValueWidth, format);
}

double CenterDeviation(const InstrumentReading& reading) {
  return (FractionOf(reading, reading.value) * 100 - 50) * 2;
}

RECT CenterBar(const RECT& display, double deviation, bool wide) {
  const auto lengthIn = [&](LONG half) { return std::lround(std::min(std::fabs(deviation), 100.0) * half / 100); };
  if (wide) {
    const LONG half = std::max(0L, display.right - display.left) / 2, center = display.left + half;
    const LONG top = display.top + 1, bottom = std::max(top, display.bottom - 1);
    return deviation > 0 ? RECT{center, top, center + lengthIn(half), bottom}
                         : RECT{center - lengthIn(half), top, center, bottom};
  }
  const LONG half = std::max(0L, display.bottom - display.top) / 2, center = display.top + half;
  const LONG left = display.left + 1, right = std::max(left, display.right - 1);
  return deviation > 0 ? RECT{left, center - lengthIn(half), right, center}
                       : RECT{left, center, right, center + lengthIn(half)};
}

RECT CenterValueBox(const RECT& display, double deviation, bool wide, int height) {
  if (wide) {
    const LONG center = display.left + (display.right - display.left) / 2;
    const LONG top = display.top + (display.bottom - display.top - height) / 2;
    return deviation > 0 ? RECT{display.left, top, center - kValueGap, top + height}
                         : RECT{center + kValueGap, top, display.right, top + height};
  }
  const LONG center = display.top + (display.bottom - display.top) / 2;
  const LONG top = deviation > 0 ? center + kValueGap : center - kValueGap - height;
  return {display.left, top, display.right, top + height};
}

// ---- Background

namespace {

void DrawBackground(Canvas& canvas, InstrumentAppearance& appearance) {
  FillArea(canvas, appearance.area, GetSysColor(COLOR_BTNFACE));
  const CenterParts parts = LayOutCenterBar(appearance.area, appearance.style);
  if (parts.captionFont) DrawCaption(canvas, parts.caption, appearance, parts.captionFont, DT_CENTER);
  DrawDisplayWell(canvas, parts.display);
}

// ---- Value

struct Bar {
  RECT place;
  COLORREF color;
};

void DrawBar(Canvas& canvas, const InstrumentAppearance& appearance, const Bar& bar) {
  FillRounded(canvas, bar.place, !IsWide(appearance.area), ShadeColor(bar.color, kBarEdge), bar.color);
}

void DrawCenterLine(Canvas& canvas, const InstrumentAppearance& appearance, const RECT& line) {
  FillArea(canvas, line, ShownColor(appearance, RGB(255, 255, 255)));
}

struct ValueText {
  FixedText text;
  int characterWidth, height;  // of the font
  UINT align;
  RECT place;
};

void DrawValueText(Canvas& canvas, const InstrumentAppearance& appearance, const ValueText& value) {
  DrawTextLine(canvas, InstrumentFont(value.height, value.characterWidth, FW_BOLD), WithoutPadding(value.text),
               value.place, ShownColor(appearance, RGB(255, 255, 255)), value.align | DT_NOCLIP);
}

// The number in the largest font that fits between the center line and the end of the display; height 0 if none does.
ValueText LayOutValue(const RECT& display, const InstrumentBlock& block, DWORD style, double deviation, bool wide) {
  const SIZE space = ValueSpace(display, wide);
  ValueText value{CenterNumber(display, block, style, wide)};
  value.characterWidth =
      std::min<int>(space.cx / (static_cast<int>(value.text.size()) + 1), static_cast<int>(space.cy / 2.5));
  value.height = static_cast<int>(2.5 * value.characterWidth);
  value.align = !wide ? DT_CENTER : deviation > 0 ? DT_RIGHT : DT_LEFT;
  value.place = CenterValueBox(display, deviation, wide, value.height);
  return value;
}

void AddParts(ValueLayer& layer, const InstrumentBlock& block, const char*) {
  const InstrumentAppearance& appearance = layer.appearance();
  const bool wide = IsWide(appearance.area);
  // Without kInstrumentFitted, a control that is wider than high shows only an empty display.
  if (wide && !(appearance.style & kInstrumentFitted)) return;
  const RECT display = WithinFrame(LayOutCenterBar(appearance.area, appearance.style).display);
  if (IsRectEmpty(&display)) return;
  const InstrumentReading reading = ReadingOf(block);
  const double deviation = reading.valid ? CenterDeviation(reading) : 0;
  const RECT bar = CenterBar(display, deviation, wide);
  layer.Add(bar, Bar{bar, ShownColor(appearance, SeverityColor(deviation, 100))}, DrawBar);
  const LONG x = display.left + (display.right - display.left) / 2,
             y = display.top + (display.bottom - display.top) / 2;
  const RECT line =
      wide ? RECT{x - 1, display.top, x + 1, display.bottom} : RECT{display.left, y - 1, display.right, y + 1};
  layer.Add(line, line, DrawCenterLine);
  const ValueText value = LayOutValue(display, block, appearance.style, deviation, wide);
  if (value.height <= 0 || value.text.empty()) return;
  RECT reach = value.place;
  InflateRect(&reach, 0, 2);
  IntersectRect(&reach, &reach, &display);
  layer.Add(reach, value, DrawValueText);
}

}  // namespace

const ModeRenderer kCenterBarRenderer{DrawBackground, AddParts};

}  // namespace kv
