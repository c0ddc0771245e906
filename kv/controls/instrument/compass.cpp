#include "kv/controls/instrument/compass.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/numbers.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

// Radii relative to the dial's.
constexpr double kZoneOuter = 0.985, kZoneInner = 0.945, kMarkOuter = 0.94;
constexpr double kTenInner = 0.87, kThirtyInner = 0.83, kFineInner = 0.895;
constexpr double kNumbers = 0.74;
constexpr double kHub = 0.31;

constexpr double kMinRadiusWithHeading = 19, kMinRadiusWithNumbers = 88, kMinRadiusWithEightLetters = 42,
                 kMinRadiusWithRose = 26, kMinRadiusWithName = 52, kMinRadiusWithDecimals = 60;

constexpr int kMinNameHeight = 9, kMinHeadingHeight = 9;

struct CardLetters {
  double radius, cardinalHeight, otherRadius, otherHeight;
};

CardLetters LettersOf(double innerRadius) {
  if (innerRadius >= kMinRadiusWithNumbers) return {0.70, 0.20, 0.57, 0.09};
  if (innerRadius >= kMinRadiusWithEightLetters) return {0.665, 0.21, 0.665, 0.125};
  return {0.645, 0.27, 0.645, 0};
}

// North has the display color while there is a valid heading and the control is enabled.
COLORREF NorthColor(const InstrumentAppearance& appearance) {
  return ReadingOf(appearance.block).valid && !IsDisabled(appearance) ? DisplayColor(appearance)
                                                                      : ColorsOf(appearance).ink;
}

// Adds a text to the shape, along the tangent and upright as seen from the center of the card.
void AddCardText(Canvas& canvas, const Dial& dial, const wchar_t* text, int count, double radius, double height,
                 double angle, COLORREF color) {
  double width = 0;
  for (int i = 0; i < count; ++i) {
    const GlyphOutline* glyph = InstrumentGlyph(text[i]);
    if (!glyph) return;
    width += glyph->advance * height;
  }
  const PointD place = PolarPoint(dial.center, radius * dial.innerRadius, angle);
  double along = -width / 2;
  for (int i = 0; i < count; ++i) {
    const GlyphOutline& glyph = *InstrumentGlyph(text[i]);
    AddGlyph(canvas, glyph, place, along + glyph.advance * height / 2, height, angle, color);
    along += glyph.advance * height;
  }
}

void DrawZones(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance, double heading) {
  const double inner = std::min(kZoneInner * dial.innerRadius, kZoneOuter * dial.innerRadius - 1.5);
  for (int i = 0; i < kInstrumentZones; ++i) {
    if (!(appearance.block.state & ZoneEnabledBit(i))) continue;
    const InstrumentZone& zone = appearance.block.zones[i];
    if (!std::isfinite(zone.lower) || !std::isfinite(zone.upper)) continue;
    const double from = CardAngle(zone.lower, heading);
    const double sweep = std::clamp(static_cast<double>(zone.upper) - zone.lower, 0.0, 360.0);
    FillAnnularSector(canvas, dial.center, inner, kZoneOuter * dial.innerRadius, from, from + sweep,
                      ShownColor(appearance, zone.color));
  }
}

enum class Mark { kFine, kTen, kThirty };

Mark MarkAt(int bearing) {
  return bearing % 30 == 0 ? Mark::kThirty : bearing % 10 == 0 ? Mark::kTen : Mark::kFine;
}

// `direction` is a unit vector.
void AddMark(Canvas& canvas, const Dial& dial, Mark mark, PointD direction) {
  const double radius = dial.innerRadius;
  const double inner = mark == Mark::kThirty ? kThirtyInner : mark == Mark::kTen ? kTenInner : kFineInner;
  const double width = mark == Mark::kThirty ? std::max(1.3, radius * 0.02)
                       : mark == Mark::kTen  ? std::max(0.85, radius * 0.012)
                                             : radius * 0.007;
  const double half = std::max(width, 0.7) / 2;
  const auto at = [&](double along, double aside) {
    return PointD{dial.center.x + direction.x * along + direction.y * aside,
                  dial.center.y + direction.y * along - direction.x * aside};
  };
  const double from = radius * inner, to = radius * kMarkOuter;
  const PointD corners[] = {at(from, half), at(to, half), at(to, -half), at(from, -half)};
  canvas.shape().AddContour(corners);
}

// Whether a pixel that is rotated by 90 degrees about the dial's center is another pixel within the clip.
bool HasSymmetricPixels(const Canvas& canvas, const Dial& dial) {
  const RECT& clip = canvas.clip();
  const double radius = dial.innerRadius, difference = dial.center.y - dial.center.x;
  return difference == std::floor(difference) && dial.center.x - radius >= clip.left &&
         dial.center.x + radius <= clip.right && dial.center.y - radius >= clip.top &&
         dial.center.y + radius <= clip.bottom;
}

// Fills the shape, and its copies that are rotated by 90, 180 and 270 degrees.
void FillFourTimes(Canvas& canvas, const Dial& dial, COLORREF color) {
  canvas.FinishGdi();
  const Surface& surface = canvas.surface();
  const DWORD pixel = PixelOfColor(color);
  const int sum = static_cast<int>(dial.center.x + dial.center.y) - 1;
  const int difference = static_cast<int>(dial.center.y - dial.center.x);
  const int right = static_cast<int>(2 * dial.center.x) - 1, bottom = static_cast<int>(2 * dial.center.y) - 1;
  int y = 0;
  for (std::span<const CoverageSpan> spans; !(spans = canvas.shape().NextRow(&y)).empty();) {
    for (const CoverageSpan& span : spans) {
      BlendPixels(surface.Row(y) + span.x, span.count, pixel, span.coverage);
      BlendPixels(surface.Row(bottom - y) + right - span.x - span.count + 1, span.count, pixel, span.coverage);
      for (int x = span.x; x < span.x + span.count; ++x) {
        BlendPixels(surface.Row(x + difference) + sum - y, 1, pixel, span.coverage);
        BlendPixels(surface.Row(sum - x) + y - difference, 1, pixel, span.coverage);
      }
    }
  }
}

// The marks of a quarter are one shape for each color: a whole card with a mark for each degree would exceed a shape's
// capacity of edges. The other quarters are its copies, if possible.
void DrawMarks(Canvas& canvas, const Dial& dial, const DialColors& colors, double heading) {
  const int spacing = MarkSpacing(dial.innerRadius);
  const PointD turn = PolarPoint({0, 0}, 1, spacing);
  const bool symmetric = HasSymmetricPixels(canvas, dial);
  for (int quarter = 0; quarter < (symmetric ? 90 : 360); quarter += 90) {
    for (const bool thirty : {false, true}) {
      BeginShape(canvas);
      PointD direction = PolarPoint({0, 0}, 1, CardAngle(quarter, heading));
      for (int bearing = quarter; bearing < quarter + 90; bearing += spacing) {
        const Mark mark = MarkAt(bearing);
        if ((mark == Mark::kThirty) == thirty) AddMark(canvas, dial, mark, direction);
        direction = {-direction.x * turn.y - direction.y * turn.x, direction.x * turn.x - direction.y * turn.y};
      }
      const COLORREF color = thirty ? colors.ink : colors.faintInk;
      if (symmetric) {
        FillFourTimes(canvas, dial, color);
      } else {
        FillShape(canvas, color);
      }
    }
  }
}

// Shapes of one color that do not touch; drawn together.
enum class Rank { kNorth, kCardinal, kOther };
constexpr Rank kRanks[] = {Rank::kOther, Rank::kCardinal, Rank::kNorth};

Rank RankOf(const Direction& direction) {
  return direction.bearing == 0 ? Rank::kNorth : direction.count == 1 ? Rank::kCardinal : Rank::kOther;
}

COLORREF ColorOf(Rank rank, const InstrumentAppearance& appearance) {
  if (rank == Rank::kNorth) return NorthColor(appearance);
  return rank == Rank::kCardinal ? ColorsOf(appearance).ink : ColorsOf(appearance).faintInk;
}

void DrawLetters(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance, double heading) {
  const CardLetters letters = LettersOf(dial.innerRadius);
  for (const Rank rank : kRanks) {
    const bool other = rank == Rank::kOther;
    const double height = dial.innerRadius * (other ? letters.otherHeight : letters.cardinalHeight);
    if (height <= 0) continue;
    const COLORREF color = ColorOf(rank, appearance);
    BeginShape(canvas);
    for (const Direction& direction : Directions()) {
      if (RankOf(direction) != rank) continue;
      AddCardText(canvas, dial, direction.letters, direction.count, other ? letters.otherRadius : letters.radius,
                  height, CardAngle(direction.bearing, heading), color);
    }
    FillShape(canvas, color);
  }
}

// Numbers in tens of degrees, as on an aircraft's compass card; cardinal directions have letters instead.
void DrawNumbers(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance, double heading) {
  const COLORREF ink = ColorsOf(appearance).ink;
  if (dial.innerRadius < kMinRadiusWithNumbers) return;
  BeginShape(canvas);
  for (int bearing = 0; bearing < 360; bearing += 30) {
    if (bearing % 90 == 0) continue;
    const wchar_t digits[] = {static_cast<wchar_t>(L'0' + bearing / 100),
                              static_cast<wchar_t>(L'0' + bearing / 10 % 10)};
    const int blanks = bearing < 100 ? 1 : 0;
    AddCardText(canvas, dial, digits + blanks, 2 - blanks, kNumbers, dial.innerRadius * 0.095,
                CardAngle(bearing, heading), ink);
  }
  FillShape(canvas, ink);
}

// Eight rays, each with a light and a dark side; the cardinal ones are longer and on top.
void DrawRose(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance, double heading) {
  const double radius = dial.innerRadius, waist = radius * kHub * 1.02;
  if (radius < kMinRadiusWithRose) return;
  const CardLetters letters = LettersOf(radius);
  for (const Rank rank : kRanks) {
    const bool other = rank == Rank::kOther;
    const double height = other ? std::max(letters.otherHeight, 0.1) : letters.cardinalHeight;
    const double length = radius * (other ? letters.otherRadius - height * 1.1 - 0.03 : letters.radius - height * 0.75);
    const COLORREF light = ColorOf(rank, appearance);
    for (const double side : {-1.0, 1.0}) {
      BeginShape(canvas);
      for (const Direction& direction : Directions()) {
        if (RankOf(direction) != rank) continue;
        const double angle = CardAngle(direction.bearing, heading);
        const PointD half[] = {PolarPoint(dial.center, length, angle),
                               PolarPoint(dial.center, waist, angle + side * 22.5), dial.center};
        canvas.shape().AddContour(half);
      }
      FillShape(canvas, ShadeColor(light, side < 0 ? 0.85 : 0.5));
    }
  }
}

// The fixed index at the top, which points to the heading.
void DrawIndex(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance) {
  const double radius = dial.innerRadius, half = std::max(3.0, radius * 0.075);
  const double top = dial.center.y - dial.radius + std::max(0.5, (dial.radius - radius) * 0.3);
  const double tip = dial.center.y - radius * 0.82;
  const auto triangle = [&](double wider) {
    return std::array{PointD{dial.center.x - half - wider, top}, PointD{dial.center.x + half + wider, top},
                      PointD{dial.center.x, tip + 1.6 * wider}};
  };
  FillPolygon(canvas, triangle(std::max(0.7, radius * 0.012)), ColorsOf(appearance).dialBottom);
  FillPolygon(canvas, triangle(0), DisplayColor(appearance));
}

void DrawHeading(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance, double heading) {
  const double radius = dial.innerRadius;
  const DialColors colors = ColorsOf(appearance);
  const bool valid = ReadingOf(appearance.block).valid, small = radius < kMinRadiusWithRose;
  const int decimals = radius >= kMinRadiusWithDecimals ? appearance.block.format & kFormatDecimals : 0;
  const int width = static_cast<int>(radius * (small ? 0.9 : 2 * kHub * 0.93)), nameWidth = width * 5 / 6;
  FixedText text = valid ? HeadingText(heading, decimals) : FixedText(L"---");
  // A small card has no space for a unit between its letters.
  if (valid && !small) {
    const FixedText whole = text + DecodedUnit(appearance.block);
    if (MeasureText(whole, kMinHeadingHeight, FW_BOLD).cx <= width) text = whole;
  }
  const FixedText name = DecodedName(appearance.block);
  const bool named = radius >= kMinRadiusWithName && MeasureText(name, kMinNameHeight, FW_NORMAL).cx <= width;
  const auto write = [&](const FixedText& line, double tall, int least, int maxWidth, int weight, double middle,
                         double boxHeight, COLORREF color, UINT align) {
    const int wanted = std::max(least, static_cast<int>(radius * tall));
    HFONT font = InstrumentFont(FittingHeight(line, wanted, kMinHeadingHeight, maxWidth, weight), 0, weight);
    const LONG center = std::lround(dial.center.x), half = maxWidth / 2 + 1;
    const double top = dial.center.y + radius * (middle - boxHeight / 2);
    const RECT box{center - half, std::lround(top), center + half, std::lround(top + radius * boxHeight)};
    DrawTextLine(canvas, font, line, box, color, align);
  };
  write(text, 0.26, 10, width, FW_BOLD, named ? -0.035 : 0, 0.34, colors.ink, DT_CENTER | DT_NOCLIP);
  if (!named) return;
  write(name, 0.11, kMinNameHeight, nameWidth, FW_NORMAL, 0.14, 0.16, colors.faintInk, DT_CENTER);
}

}  // namespace

std::array<Direction, 8> Directions() {
  const wchar_t* letters = kDirectionLetters;
  return {{{letters, 1, 0},
           {letters + 1, 1, 90},
           {letters + 2, 1, 180},
           {letters + 3, 1, 270},
           {letters + 4, 2, 45},
           {letters + 6, 2, 135},
           {letters + 8, 2, 225},
           {letters + 10, 2, 315}}};
}

double CardAngle(double bearing, double heading) {
  return NormalHeading(bearing - heading);
}

int MarkSpacing(double innerRadius) {
  constexpr double kMinPixels = 4.0;
  const double perDegree = innerRadius * kRadiansPerDegree;
  for (int spacing : {1, 2, 5}) {
    if (perDegree * spacing >= kMinPixels) return spacing;
  }
  return 10;
}

FixedText HeadingText(double degrees, int decimals) {
  wchar_t text[32];
  FormatPlain(text, sizeof(text), L"%0*.*f", decimals > 0 ? 4 + decimals : 3, decimals,
              RoundedHeading(degrees, decimals));
  return text;
}

namespace {

void DrawBackground(Canvas& canvas, InstrumentAppearance& appearance) {
  DrawDialCase(canvas, DialIn(appearance.area), appearance);
}

// The card rotates as a whole.
void DrawCard(Canvas& canvas, const InstrumentAppearance& appearance, const double& heading) {
  const Dial dial = DialIn(appearance.area);
  const DialColors colors = ColorsOf(appearance);
  DrawZones(canvas, dial, appearance, heading);
  DrawMarks(canvas, dial, colors, heading);
  DrawNumbers(canvas, dial, appearance, heading);
  DrawLetters(canvas, dial, appearance, heading);
  DrawRose(canvas, dial, appearance, heading);
  if (dial.innerRadius >= kMinRadiusWithRose) {
    FillDisc(canvas, dial.center, dial.innerRadius * kHub * 1.05, colors.dialBottom);
    FillGradientDisc(canvas, dial.center, dial.innerRadius * kHub, colors.window, colors.dialTop);
  }
  if (ReadingOf(appearance.block).valid) DrawIndex(canvas, dial, appearance);
  if (dial.innerRadius >= kMinRadiusWithHeading) DrawHeading(canvas, dial, appearance, heading);
}

void AddParts(ValueLayer& layer, const InstrumentBlock& block, const char*) {
  const Dial dial = DialIn(layer.appearance().area);
  if (dial.radius <= 0) return;
  const InstrumentReading reading = ReadingOf(block);
  const PointD corners[] = {{dial.center.x - dial.innerRadius, dial.center.y - dial.radius},
                            {dial.center.x + dial.innerRadius, dial.center.y + dial.innerRadius}};
  layer.Add(BoundsOf(corners, 1, layer.appearance().area), reading.valid ? NormalHeading(reading.value) : 0.0,
            DrawCard);
}

}  // namespace

const ModeRenderer kCompassRenderer{DrawBackground, AddParts};

}  // namespace kv
