#include "kv/controls/instrument/segment_bar.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>
#include <span>

#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/digital.h"
#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/painting.h"

namespace kv {

// ---- Layout

namespace {

constexpr COLORREF kValueShadow = RGB(63, 63, 63);
constexpr LONG kSideMargin = 2, kNarrowMargin = 1, kNarrow = 12;

struct BarParts {
  RECT caption;  // empty without a caption
  int captionFont;
  RECT display;  // including its frame
};

BarParts LayOutBar(const RECT& area, DWORD style) {
  if (!IsVerticalBar(area)) {
    const DigitalParts parts = LayOutDigital(area, style & ~kInstrumentNoCaption);
    return {parts.caption, parts.captionHeight, parts.display};
  }
  const int font =
      std::min<int>(CaptionFontHeight(area.right - area.left, style), std::max<LONG>(14, (area.bottom - area.top) / 8));
  BarParts parts{area, font, area};
  parts.caption.bottom = parts.display.top = std::min(area.top + font + 1, area.bottom);
  return parts;
}

// Rounds a non-negative length to whole pixels, halves up. The runtime's functions are slower, because they handle
// negative numbers.
int RoundLength(double pixels) {
  return static_cast<int>(pixels + 0.5);
}

// Maps ranges along the bar to rectangles of the target.
struct BarFrame {
  RECT area;
  BOOL vertical, reversed;

  LONG Length() const { return vertical ? area.bottom - area.top : area.right - area.left; }
  LONG Breadth() const { return vertical ? area.right - area.left : area.bottom - area.top; }
  RECT Place(BarSpan span, LONG margin) const {
    // A vertical bar increases upwards, a horizontal one to the right, unless reversed.
    const double length = Length();
    if (vertical != reversed) span = {length - span.to, length - span.from};
    const auto edge = [](LONG start, double offset) { return start + RoundLength(offset); };
    if (vertical) return {area.left + margin, edge(area.top, span.from), area.right - margin, edge(area.top, span.to)};
    return {edge(area.left, span.from), area.top + margin, edge(area.left, span.to), area.bottom - margin};
  }
};

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
  const int gap = pitch < 3 ? 0 : std::clamp(RoundLength(pitch * 0.18), 1, 4);
  // Whole pixels: sharp edges are more important than exactly equal lengths.
  const int from = RoundLength(pitch * index), to = RoundLength(pitch * (index + 1)) - gap;
  return {static_cast<double>(from), static_cast<double>(std::max(from, to))};
}

FixedText SegmentBarNumber(const RECT& bar, const InstrumentBlock& block, DWORD style) {
  constexpr int kMinCharacterWidth = 4;
  const InstrumentReading reading = ReadingOf(block);
  if (!reading.valid) return NoValueNumber(block, style);
  // At the minimum, the bar is empty and has no number.
  if (style & kInstrumentFitted) {
    const int most = (bar.right - bar.left - 2) / kMinCharacterWidth;
    return reading.value != reading.minimum ? FittedNumber(reading, block.format, most) : FixedText();
  }
  const bool shown = block.current > block.minimum && block.current <= block.maximum;
  return shown ? FixedWidthNumber(reading.value, NumberWidth(block), block.format) : FixedText();
}

bool IsVerticalBar(const RECT& area) {
  return area.right - area.left <= area.bottom - area.top;
}

// ---- Background

namespace {

void DrawBackground(Canvas& canvas, InstrumentAppearance& appearance) {
  FillArea(canvas, appearance.area, GetSysColor(COLOR_BTNFACE));
  const BarParts parts = LayOutBar(appearance.area, appearance.style);
  if (parts.captionFont) {
    DrawCaption(canvas, parts.caption, appearance, parts.captionFont,
                IsVerticalBar(appearance.area) ? DT_RIGHT : DT_CENTER);
  }
  DrawDisplayWell(canvas, parts.display);
}

// ---- Value

COLORREF SegmentColor(const InstrumentAppearance& appearance, double value) {
  for (int i = kInstrumentZones - 1; i >= 0; --i) {
    const InstrumentZone& zone = appearance.block.zones[i];
    const bool enabled = (appearance.block.state & ZoneEnabledBit(i)) != 0;
    if (enabled && zone.lower <= value && value <= zone.upper && zone.lower < zone.upper) {
      return ShownColor(appearance, zone.color);
    }
  }
  return DisplayColor(appearance);
}

struct Segment {
  RECT place;
  COLORREF color;
  BOOL lit, vertical;
};

void DrawSegment(Canvas& canvas, const InstrumentAppearance&, const Segment& segment) {
  const RECT& place = segment.place;
  if (!segment.lit) return FillArea(canvas, place, ShadeColor(segment.color, kUnlit));
  FillRounded(canvas, place, segment.vertical, ShadeColor(segment.color, 0.72), segment.color);
}

struct Marker {
  BarFrame frame;
  double percent;
};

void DrawMarker(Canvas& canvas, const InstrumentAppearance& appearance, const Marker& marker) {
  const BarFrame& frame = marker.frame;
  const COLORREF color = ShownColor(appearance, RGB(255, 255, 255));
  const double length = frame.Length();
  const double middle = std::clamp(length * marker.percent / 100, 1.0, std::max(1.0, length - 1));
  const RECT line = frame.Place({middle - 1, middle + 1}, 0);
  FillArea(canvas, line, color);
  // Two arrow heads point to the line from both sides.
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

// A character of the number near the bar's bottom.
struct Character {
  PointD middle;
  double capital, stretch;  // the height of capitals in pixels, and the relative width
  int character, edge;      // edge: thickness of the black line around it
};

void DrawAt(Canvas& canvas, const Character& item, std::initializer_list<PointD> shifts, COLORREF color) {
  const GlyphOutline& glyph = *InstrumentGlyph(static_cast<wchar_t>(item.character));
  BeginShape(canvas);
  for (const PointD& shift : shifts) {
    const PointD middle{item.middle.x + shift.x, item.middle.y + shift.y};
    AddGlyph(canvas, glyph, middle, 0, item.capital, 0, color, item.stretch);
  }
  FillShape(canvas, color);
}

// The pixels of a character that is drawn with shifts of up to `reach` pixels.
RECT InkOf(const GlyphOutline& glyph, const Character& item, double reach, const RECT& bar) {
  const std::span points(glyph.points.data(), glyph.ends[glyph.contours - 1]);
  const auto [left, right] = std::ranges::minmax(points, {}, &GlyphOutline::Point::x);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &GlyphOutline::Point::y);
  const auto at = [&item](float x, float y) {
    return PointD{item.middle.x + x * item.capital * item.stretch, item.middle.y + y * item.capital};
  };
  const PointD corners[] = {at(left.x, top.y), at(right.x, bottom.y)};
  return BoundsOf(corners, reach, bar);
}

// How far the edge of a number reaches beyond its characters, in pixels.
double EdgeReach(int edge) {
  return edge * 0.75 + 1;
}

// A black edge separates the number from the lit segments, which may have its color: shifted characters, which the
// character then covers inside.
void DrawEdge(Canvas& canvas, const InstrumentAppearance&, const Character& item) {
  const double left = -EdgeReach(item.edge), right = -left - 2;
  DrawAt(canvas, item, {{left, left}, {right, left}, {left, right}, {right, right}}, RGB(0, 0, 0));
}

void DrawCharacter(Canvas& canvas, const InstrumentAppearance& appearance, const Character& item) {
  const bool fitted = (appearance.style & kInstrumentFitted) != 0;
  DrawAt(canvas, item, {{0, 0}}, kValueShadow);
  DrawAt(canvas, item, {{-1, -1}}, fitted ? ShownColor(appearance, RGB(255, 255, 255)) : DisplayColor(appearance));
}

void AddNumber(ValueLayer& layer, const RECT& bar, const InstrumentBlock& block) {
  // Relative to the cell's height; relative to the height of capitals.
  constexpr double kCapitalHeight = 0.65, kCapitalMiddle = 0.485, kDigitWidth = 0.775, kBlank = 0.8;
  const DWORD style = layer.appearance().style;
  const FixedText padded = SegmentBarNumber(bar, block, style), text = WithoutPadding(padded);
  const int count = static_cast<int>(padded.size()), breadth = bar.right - bar.left, length = bar.bottom - bar.top;
  int characterWidth = breadth / (count + 2) - 1;
  if ((style & kInstrumentFitted) && count > 0) {  // a small part of the bar, but readable
    constexpr int kReadable = 5;
    characterWidth = std::min(std::max(characterWidth, std::min(kReadable, (breadth - 2) / count)),
                              std::max(length / 10, std::min(kReadable, length * 2 / 5)));
  }
  if (characterWidth < 1) return;
  const int height = static_cast<int>(2.5 * characterWidth), edge = std::max(1, height / 14);
  const double capital = height * kCapitalHeight, stretch = characterWidth / (capital * kDigitWidth);
  // Character advances, relative to the height of capitals. Characters without an outline in the font are blank.
  const auto advanceOf = [](const GlyphOutline* glyph) { return glyph ? glyph->advance : kBlank; };
  double width = 0;
  for (const wchar_t character : text) width += advanceOf(InstrumentGlyph(character));
  // First all edges: those of neighbors overlap.
  for (const auto draw : {DrawEdge, DrawCharacter}) {
    const double reach = draw == DrawEdge ? EdgeReach(edge) : 1;
    double x = (bar.left + bar.right - width * capital * stretch) / 2;
    for (const wchar_t character : text) {
      const GlyphOutline* glyph = InstrumentGlyph(character);
      const double half = advanceOf(glyph) * capital * stretch / 2;
      const PointD middle{x + half, bar.bottom - 2 - height * (1 - kCapitalMiddle)};
      x += 2 * half;
      const Character item{middle, capital, stretch, character, edge};
      if (glyph) layer.Add(InkOf(*glyph, item, reach, bar), item, draw);
    }
  }
}

RECT SegmentRect(const BarFrame& frame, int count, int index) {
  const LONG margin = frame.Breadth() < kNarrow ? kNarrowMargin : kSideMargin;
  const double lead = 1;  // the distance of the first and last segment to the frame
  const BarSpan span = SegmentSpan(frame.Length() - 2 * lead, count, index);
  return frame.Place({span.from + lead, span.to + lead}, margin);
}

void AddParts(ValueLayer& layer, const InstrumentBlock& block, const char*) {
  const InstrumentAppearance& appearance = layer.appearance();
  const InstrumentReading reading = ReadingOf(block);
  const int count = std::abs(SegmentCount(block, appearance.style));
  const BarFrame frame{WithinFrame(LayOutBar(appearance.area, appearance.style).display),
                       IsVerticalBar(appearance.area), (appearance.style & kInstrumentReversed) != 0};
  if (IsRectEmpty(&frame.area)) return;
  const int lit = reading.valid ? LitSegments(FractionOf(reading, reading.value) * 100, count) : 0;
  for (int i = 0; i < count; ++i) {
    const RECT place = SegmentRect(frame, count, i);
    if (layer.Skips(place)) continue;
    const double value = reading.minimum + (reading.maximum - reading.minimum) * (i + 0.5) / count;
    layer.Add(place, Segment{place, SegmentColor(appearance, value), i < lit, frame.vertical}, DrawSegment);
  }
  // At an end of the bar, a marker shows nothing.
  const double marker = MarkerPercent(block);
  if (marker > 0 && marker < 100) layer.Add(frame.area, Marker{frame, marker}, DrawMarker);
  if (frame.vertical) AddNumber(layer, frame.area, block);
}

}  // namespace

const ModeRenderer kSegmentBarRenderer{DrawBackground, AddParts};

}  // namespace kv
