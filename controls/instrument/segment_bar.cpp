#include "controls/instrument/segment_bar.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "controls/instrument/fixed_text.h"
#include "controls/instrument_block.h"
#include "controls/instrument/digital.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/text.h"
#include "controls/instrument/view.h"
#include "framework/canvas.h"
#include "framework/coverage.h"
#include "framework/glyph_outline.h"
#include "framework/painting.h"

namespace kv {

namespace {

constexpr COLORREF kValueShadow = RGB(63, 63, 63);
constexpr LONG kSideMargin = 2, kNarrowMargin = 1, kNarrow = 12;

struct BarParts {
  RECT caption;  // empty without one
  int captionFont;
  RECT display;  // with its frame
};

BarParts LayOutBar(const RECT& area, DWORD style) {
  if (!IsVerticalBar(area)) {
    const DigitalParts parts = LayOutDigital(area, style & ~kInstrumentNoCaption);
    return {parts.caption, parts.captionHeight, parts.display};
  }
  const int font = CaptionFontHeight(area.right - area.left);
  BarParts parts{area, font, area};
  parts.caption.bottom = parts.display.top = std::min(area.top + font + 1, area.bottom);
  return parts;
}

RECT BarWithin(RECT display) {
  InflateRect(&display, -kSunkenEdge, -kSunkenEdge);
  return display;
}

// To whole pixels, a half up. Lengths are not negative; the run-time's rounding, which asks for that, is slow.
int RoundLength(double pixels) {
  return static_cast<int>(pixels + 0.5);
}

// Maps stretches along the bar to rectangles of the target.
struct BarFrame {
  RECT area;
  bool vertical, reversed;

  LONG Length() const { return vertical ? area.bottom - area.top : area.right - area.left; }
  LONG Breadth() const { return vertical ? area.right - area.left : area.bottom - area.top; }
  RECT Place(BarSpan span, LONG margin) const {
    // A vertical bar rises and a horizontal one runs to the right, unless reversed.
    const double length = Length();
    if (vertical != reversed) span = {length - span.to, length - span.from};
    const auto edge = [](LONG start, double offset) { return start + RoundLength(offset); };
    if (vertical) return {area.left + margin, edge(area.top, span.from), area.right - margin, edge(area.top, span.to)};
    return {edge(area.left, span.from), area.top + margin, edge(area.left, span.to), area.bottom - margin};
  }
};

COLORREF SegmentColor(const InstrumentView& view, double value) {
  for (int i = kInstrumentZones - 1; i >= 0; --i) {
    const InstrumentZone& zone = view.block.zones[i];
    const bool enabled = (view.block.state & ZoneEnabledBit(i)) != 0;
    if (enabled && zone.lower <= value && value <= zone.upper && zone.lower < zone.upper) {
      return ShownColor(view, zone.color);
    }
  }
  return DisplayColor(view);
}

// A lit segment is a little rounded to the light: brighter in its middle, darker towards both sides.
void DrawLitSegment(Canvas& canvas, const RECT& place, COLORREF color, bool vertical) {
  const COLORREF edge = ShadeColor(color, 0.72);
  RECT first = place, second = place;
  if (vertical) {
    first.right = second.left = (place.left + place.right) / 2;
    FillAreaAcross(canvas, first, edge, color);
    FillAreaAcross(canvas, second, color, edge);
  } else {
    first.bottom = second.top = (place.top + place.bottom) / 2;
    FillAreaDown(canvas, first, edge, color);
    FillAreaDown(canvas, second, color, edge);
  }
}

void DrawMarker(Canvas& canvas, const BarFrame& frame, double percent, COLORREF color) {
  const double length = frame.Length();
  const double middle = std::clamp(length * percent / 100, 1.0, std::max(1.0, length - 1));
  const RECT line = frame.Place({middle - 1, middle + 1}, 0);
  FillArea(canvas, line, color);
  // Two arrow heads point at the line from the sides.
  const double head = std::clamp(std::min(frame.Breadth(), frame.Length()) * 0.10, 2.0, 10.0);
  const double x = (line.left + line.right) / 2.0, y = (line.top + line.bottom) / 2.0;
  const RECT& area = frame.area;
  if (frame.vertical) {
    const PointD left[] = {{area.left + 0.0, y - head}, {area.left + head * 1.2, y}, {area.left + 0.0, y + head}};
    const PointD right[] = {{area.right + 0.0, y - head}, {area.right - head * 1.2, y}, {area.right + 0.0, y + head}};
    FillPolygon(canvas, left, color);
    FillPolygon(canvas, right, color);
  } else {
    const PointD top[] = {{x - head, area.top + 0.0}, {x, area.top + head * 1.2}, {x + head, area.top + 0.0}};
    const PointD bottom[] = {
        {x - head, area.bottom + 0.0}, {x, area.bottom - head * 1.2}, {x + head, area.bottom + 0.0}};
    FillPolygon(canvas, top, color);
    FillPolygon(canvas, bottom, color);
  }
}

// The number over the bar's bottom; without text when there is none to show.
struct BarValue {
  FixedText text;
  int characterWidth, height, edge;  // edge: thickness of the black line around the characters
  RECT place, reach;                 // reach: the furthest that its edges and shadow stick out
};

BarValue LayOutBarValue(const RECT& bar, const InstrumentView& view) {
  const InstrumentReading reading = ReadingOf(view.block);
  const InstrumentBlock& block = view.block;
  // At the minimum itself the bar is empty and stays free of a number as well.
  if (reading.valid && !(block.current > block.minimum && block.current <= block.maximum)) return {};
  const FixedText text =
      reading.valid ? FixedWidthNumber(reading.value, NumberWidth(block), block.format) : NoValueNumber(block);
  const int characterWidth = (bar.right - bar.left) / (static_cast<int>(text.size()) + 2) - 1;
  if (characterWidth < 1) return {};
  const int height = static_cast<int>(2.5 * characterWidth), edge = std::clamp(height / 30, 1, 2);
  const RECT place{bar.left, bar.bottom - height - 2, bar.right, bar.bottom - 2};
  RECT reach = place;
  InflateRect(&reach, edge + 3, edge + 3);
  return {WithoutPadding(text), characterWidth, height, edge, place, reach};
}

// All of the bar that depends on the value.
struct BarReading {
  BarFrame frame;
  int count, lit;  // segments
  BarValue number;
};

BarReading ReadBar(const RECT& area, const InstrumentView& view) {
  const int count = SegmentCount(view.block, view.style);
  BarReading bar{
      {BarWithin(LayOutBar(area, view.style).display), IsVerticalBar(area), count < 0}, std::abs(count), 0, {}};
  const InstrumentReading reading = ReadingOf(view.block);
  if (reading.valid) bar.lit = LitSegments(FractionOf(reading, reading.value) * 100, bar.count);
  if (bar.frame.vertical && !IsRectEmpty(&bar.frame.area)) bar.number = LayOutBarValue(bar.frame.area, view);
  return bar;
}

RECT SegmentPlace(const BarFrame& frame, int count, int index) {
  const LONG margin = frame.Breadth() < kNarrow ? kNarrowMargin : kSideMargin;
  const double lead = 1;  // keeps the first and last segment off the frame
  const BarSpan span = SegmentSpan(frame.Length() - 2 * lead, count, index);
  return frame.Place({span.from + lead, span.to + lead}, margin);
}

void DrawSegments(Canvas& canvas, const BarReading& bar, const InstrumentView& view) {
  const InstrumentReading reading = ReadingOf(view.block);
  for (int i = 0; i < bar.count; ++i) {
    const RECT place = SegmentPlace(bar.frame, bar.count, i);
    if (canvas.Hides(place)) continue;
    const double value = reading.minimum + (reading.maximum - reading.minimum) * (i + 0.5) / bar.count;
    const COLORREF color = SegmentColor(view, value);
    if (i < bar.lit) {
      DrawLitSegment(canvas, place, color, bar.frame.vertical);
    } else {
      FillArea(canvas, place, ShadeColor(color, kUnlit));
    }
  }
}

// From a character to the next in heights of a capital; what the font has no outline for stays blank.
double AdvanceOf(const InstrumentView& view, wchar_t character) {
  const GlyphOutline* glyph = view.keep.glyphs.Get(character);
  return glyph ? glyph->advance : 0.8;
}

// A character of the number: where it stands along the number's base line, and what it can touch.
struct BarCharacter {
  wchar_t character;
  double along;
  RECT reach;
};

// Hands each character of the number to `use`. `capital` is the height of its capitals, `stretch` how much wider than
// by nature it is.
template <class Use>
void ForEachCharacter(const BarValue& value, const InstrumentView& view, Use use) {
  constexpr double kCapitalHeight = 0.65, kDigitWidth = 0.775;  // of the cell's height, of the capitals'
  const double capital = value.height * kCapitalHeight, stretch = value.characterWidth / (capital * kDigitWidth);
  double width = 0;
  for (const wchar_t character : value.text) width += AdvanceOf(view, character);
  const double middle = (value.place.left + value.place.right) / 2.0;
  for (double passed = -width / 2; const wchar_t character : value.text) {
    const double advance = AdvanceOf(view, character), along = (passed + advance / 2) * capital * stretch;
    // A character may lean out of its cell a little.
    const double half = advance * 0.75 * capital * stretch;
    const PointD ends[] = {{middle + along - half, static_cast<double>(value.place.top)},
                           {middle + along + half, static_cast<double>(value.place.bottom)}};
    use(BarCharacter{character, along, BoundsOf(ends, value.edge + 3, value.reach)}, capital, stretch);
    passed += advance;
  }
}

void DrawBarValue(Canvas& canvas, const BarValue& value, const InstrumentView& view) {
  constexpr double kCapitalMiddle = 0.485;  // of the cell's height
  if (value.text.empty() || canvas.Hides(value.reach)) return;
  const PointD middle{(value.place.left + value.place.right) / 2.0, value.place.top + value.height * kCapitalMiddle};
  const auto write = [&](double x, double y, COLORREF color) {
    BeginShape(canvas);
    ForEachCharacter(value, view, [&](const BarCharacter& it, double capital, double stretch) {
      const GlyphOutline* glyph = view.keep.glyphs.Get(it.character);
      if (!glyph || canvas.Hides(it.reach)) return;
      AddGlyph(canvas, *glyph, {middle.x + x, middle.y + y}, it.along, capital, 0, color, stretch);
    });
    FillShape(canvas, color);
  };
  // Number and lit segments have one colour: a black edge keeps them apart. What four shifted numbers leave free of it,
  // the last one fills.
  const int edge = value.edge;
  for (const int x : {-edge, edge}) {
    for (const int y : {-edge, edge}) write(x - 1, y - 1, RGB(0, 0, 0));
  }
  write(0, 0, kValueShadow);
  write(-1, -1, DisplayColor(view));
}

}  // namespace

int SegmentCount(const InstrumentBlock& block, DWORD style) {
  const double wanted = (static_cast<double>(block.maximum) - block.minimum) / block.step + 0.5;
  const int count = std::isnan(wanted) ? 100 : static_cast<int>(std::clamp(wanted, 3.0, 100.0));
  return style & kInstrumentReversed ? -count : count;
}

double MarkerPercent(const InstrumentBlock& block) {
  if (!(block.state & ZoneEnabledBit(0))) return kNoMarker;
  return FractionOf(ReadingOf(block), block.zones[0].lower) * 100;
}

int LitSegments(double percent, int count) {
  return static_cast<int>(std::lround(std::clamp(percent, 0.0, 100.0) * count / 100));
}

BarSpan SegmentSpan(double length, int count, int index) {
  const double pitch = length / count;
  const double gap = pitch < 3 ? 0 : std::clamp(std::round(pitch * 0.18), 1.0, 4.0);
  // Whole pixels: sharp edges matter more here than that all segments are equally long to a fraction.
  const int from = RoundLength(pitch * index), to = RoundLength(pitch * (index + 1)) - static_cast<int>(gap);
  return {static_cast<double>(from), static_cast<double>(std::max(from, to))};
}

bool IsVerticalBar(const RECT& area) {
  return area.right - area.left <= area.bottom - area.top;
}

void DrawSegmentBarFace(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  FillArea(canvas, area, GetSysColor(COLOR_BTNFACE));
  const BarParts parts = LayOutBar(area, view.style);
  if (parts.captionFont) {
    DrawCaption(canvas, parts.caption, view, parts.captionFont, IsVerticalBar(area) ? DT_RIGHT : DT_CENTER);
  }
  DrawDisplayWell(canvas, parts.display);
}

void DrawSegmentBarValue(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  const BarReading bar = ReadBar(area, view);
  const RECT clip = canvas.clip();
  RECT seen;
  if (!IntersectRect(&seen, &bar.frame.area, &clip)) return;
  canvas.ClipTo(seen);
  DrawSegments(canvas, bar, view);
  const double marker = MarkerPercent(view.block);
  if (marker != kNoMarker) DrawMarker(canvas, bar.frame, marker, ShownColor(view, RGB(255, 255, 255)));
  DrawBarValue(canvas, bar.number, view);
  canvas.ClipTo(clip);
}

void ListSegmentBarParts(HDC, const RECT& area, const InstrumentView& view, InstrumentParts* parts) {
  const BarReading bar = ReadBar(area, view);
  for (int i = 0; i < bar.count; ++i) {
    const RECT place = SegmentPlace(bar.frame, bar.count, i);
    parts->Add(place, i < bar.lit);
  }
  ForEachCharacter(bar.number, view,
                   [&](const BarCharacter& it, double, double) { parts->Add(it.reach, LookOf(it.character)); });
}

}  // namespace kv
