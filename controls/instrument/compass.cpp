#include "controls/instrument/compass.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "controls/instrument/fixed_text.h"
#include "controls/instrument_block.h"
#include "controls/instrument/dial.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/text.h"
#include "controls/instrument/view.h"
#include "framework/angles.h"
#include "framework/bounded_format.h"
#include "framework/canvas.h"
#include "framework/coverage.h"
#include "framework/glyph_outline.h"
#include "framework/painting.h"

namespace kv {

namespace {

// Radii as parts of the face's.
constexpr double kZoneOuter = 0.985, kZoneInner = 0.945, kMarkOuter = 0.94;
constexpr double kTenInner = 0.87, kThirtyInner = 0.83, kFineInner = 0.895;
constexpr double kNumbers = 0.74;
constexpr double kHub = 0.31;

constexpr double kLeastFaceWithHeading = 19, kLeastFaceWithNumbers = 88, kLeastFaceWithEightLetters = 42,
                 kLeastFaceWithRose = 26, kLeastFaceWithName = 52, kLeastFaceWithPlaces = 60;

struct CardLetters {
  double radius, cardinalHeight, otherRadius, otherHeight;
};

CardLetters LettersOf(double face) {
  if (face >= kLeastFaceWithNumbers) return {0.70, 0.20, 0.57, 0.09};
  if (face >= kLeastFaceWithEightLetters) return {0.665, 0.21, 0.665, 0.125};
  return {0.645, 0.27, 0.645, 0};
}

// North stands out by the display colour, as long as there is a heading to read.
COLORREF NorthColor(const InstrumentView& view) {
  return ReadingOf(view.block).valid ? DisplayColor(view) : ColorsOf(view).ink;
}

// Adds a text along the tangent, upright when seen from the middle of the card, to the shape.
void AddCardText(Canvas& canvas, const Dial& dial, InstrumentGlyphs& glyphs, const wchar_t* text, int count,
                 double radius, double height, double angle, COLORREF color) {
  double width = 0;
  for (int i = 0; i < count; ++i) {
    const GlyphOutline* glyph = glyphs.Get(text[i]);
    if (!glyph) return;
    width += glyph->advance * height;
  }
  const PointD place = PolarPoint(dial.centre, radius * dial.faceRadius, angle);
  double along = -width / 2;
  for (int i = 0; i < count; ++i) {
    const GlyphOutline& glyph = *glyphs.Get(text[i]);
    AddGlyph(canvas, glyph, place, along + glyph.advance * height / 2, height, angle, color);
    along += glyph.advance * height;
  }
}

void DrawZones(Canvas& canvas, const Dial& dial, const InstrumentView& view, double heading) {
  const double inner = std::min(kZoneInner * dial.faceRadius, kZoneOuter * dial.faceRadius - 1.5);
  for (int i = 0; i < kInstrumentZones; ++i) {
    if (!(view.block.state & ZoneEnabledBit(i))) continue;
    const InstrumentZone& zone = view.block.zones[i];
    if (!std::isfinite(zone.lower) || !std::isfinite(zone.upper)) continue;
    const double from = CardAngle(zone.lower, heading);
    const double sweep = std::clamp(static_cast<double>(zone.upper) - zone.lower, 0.0, 360.0);
    FillRingSector(canvas, dial.centre, inner, kZoneOuter * dial.faceRadius, from, from + sweep,
                   ShownColor(view, zone.color));
  }
}

enum class Mark { kFine, kTen, kThirty };

Mark MarkAt(int bearing) {
  return bearing % 30 == 0 ? Mark::kThirty : bearing % 10 == 0 ? Mark::kTen : Mark::kFine;
}

void AddMark(Canvas& canvas, const Dial& dial, Mark mark, double angle) {
  const double face = dial.faceRadius;
  const double inner = mark == Mark::kThirty ? kThirtyInner : mark == Mark::kTen ? kTenInner : kFineInner;
  const double width = mark == Mark::kThirty ? std::max(1.3, face * 0.02)
                       : mark == Mark::kTen  ? std::max(0.85, face * 0.012)
                                             : face * 0.007;
  AddLine(canvas, PolarPoint(dial.centre, face * inner, angle), PolarPoint(dial.centre, face * kMarkOuter, angle),
          std::max(width, 0.7));
}

// The marks of a quarter make one shape for each colour: those of a whole card with one for each degree have more edges
// than a shape can hold.
void DrawMarks(Canvas& canvas, const Dial& dial, const DialColors& colors, double heading) {
  const int spacing = MarkSpacing(dial.faceRadius);
  for (int quarter = 0; quarter < 360; quarter += 90) {
    for (const bool thirty : {false, true}) {
      BeginShape(canvas);
      for (int bearing = quarter; bearing < quarter + 90; bearing += spacing) {
        const Mark mark = MarkAt(bearing);
        if ((mark == Mark::kThirty) == thirty) AddMark(canvas, dial, mark, CardAngle(bearing, heading));
      }
      FillShape(canvas, thirty ? colors.ink : colors.faintInk);
    }
  }
}

// What is drawn in one go: shapes of one colour that do not touch.
enum class Rank { kNorth, kCardinal, kOther };
constexpr Rank kRanks[] = {Rank::kOther, Rank::kCardinal, Rank::kNorth};

Rank RankOf(const Direction& direction) {
  return direction.bearing == 0 ? Rank::kNorth : direction.count == 1 ? Rank::kCardinal : Rank::kOther;
}

COLORREF ColorOf(Rank rank, const InstrumentView& view) {
  if (rank == Rank::kNorth) return NorthColor(view);
  return rank == Rank::kCardinal ? ColorsOf(view).ink : ColorsOf(view).faintInk;
}

void DrawLetters(Canvas& canvas, const Dial& dial, const InstrumentView& view, double heading) {
  const CardLetters letters = LettersOf(dial.faceRadius);
  for (const Rank rank : kRanks) {
    const bool other = rank == Rank::kOther;
    const double height = dial.faceRadius * (other ? letters.otherHeight : letters.cardinalHeight);
    if (height <= 0) continue;
    const COLORREF color = ColorOf(rank, view);
    BeginShape(canvas);
    for (const Direction& direction : Directions()) {
      if (RankOf(direction) != rank) continue;
      AddCardText(canvas, dial, view.keep.glyphs, direction.letters, direction.count,
                  other ? letters.otherRadius : letters.radius, height, CardAngle(direction.bearing, heading), color);
    }
    FillShape(canvas, color);
  }
}

// Tens of degrees, as on an aircraft's card: the cardinal directions have their letters instead.
void DrawNumbers(Canvas& canvas, const Dial& dial, const InstrumentView& view, double heading) {
  const COLORREF ink = ColorsOf(view).ink;
  if (dial.faceRadius < kLeastFaceWithNumbers) return;
  BeginShape(canvas);
  for (int bearing = 0; bearing < 360; bearing += 30) {
    if (bearing % 90 == 0) continue;
    wchar_t text[8];
    FormatBounded(text, sizeof(text), L"%ld", static_cast<long>(bearing / 10));
    AddCardText(canvas, dial, view.keep.glyphs, text, lstrlenW(text), kNumbers, dial.faceRadius * 0.095,
                CardAngle(bearing, heading), ink);
  }
  FillShape(canvas, ink);
}

// Eight rays, each with a light and a dark side, the cardinal ones longer and on top.
void DrawRose(Canvas& canvas, const Dial& dial, const InstrumentView& view, double heading) {
  const double face = dial.faceRadius, waist = face * kHub * 1.02;
  if (face < kLeastFaceWithRose) return;
  const CardLetters letters = LettersOf(face);
  for (const Rank rank : kRanks) {
    const bool other = rank == Rank::kOther;
    const double height = other ? std::max(letters.otherHeight, 0.1) : letters.cardinalHeight;
    const double length = face * (other ? letters.otherRadius - height * 1.1 - 0.03 : letters.radius - height * 0.75);
    const COLORREF light = ColorOf(rank, view);
    for (const double side : {-1.0, 1.0}) {
      BeginShape(canvas);
      for (const Direction& direction : Directions()) {
        if (RankOf(direction) != rank) continue;
        const double angle = CardAngle(direction.bearing, heading);
        const PointD half[] = {PolarPoint(dial.centre, length, angle),
                               PolarPoint(dial.centre, waist, angle + side * 22.5), dial.centre};
        canvas.shape().AddFigure(half);
      }
      FillShape(canvas, ShadeColor(light, side < 0 ? 0.85 : 0.5));
    }
  }
}

// The fixed index at the top: where it points, the heading is read.
void DrawIndex(Canvas& canvas, const Dial& dial, const InstrumentView& view) {
  const double face = dial.faceRadius, half = std::max(3.0, face * 0.075);
  const double top = dial.centre.y - dial.radius + std::max(0.5, (dial.radius - face) * 0.3);
  const double tip = dial.centre.y - face * 0.82;
  const auto triangle = [&](double wider) {
    return std::array{PointD{dial.centre.x - half - wider, top}, PointD{dial.centre.x + half + wider, top},
                      PointD{dial.centre.x, tip + 1.6 * wider}};
  };
  FillPolygon(canvas, triangle(std::max(0.7, face * 0.012)), ColorsOf(view).faceBottom);
  FillPolygon(canvas, triangle(0), DisplayColor(view));
}

double HeadingOf(const InstrumentView& view) {
  const InstrumentReading reading = ReadingOf(view.block);
  return reading.valid ? NormalHeading(reading.value) : 0;
}

void DrawHeading(Canvas& canvas, const Dial& dial, const InstrumentView& view) {
  const double face = dial.faceRadius;
  const InstrumentReading reading = ReadingOf(view.block);
  const DialColors colors = ColorsOf(view);
  const bool named = face >= kLeastFaceWithName;
  const int places = face >= kLeastFaceWithPlaces ? view.block.format & kFormatPlaces : 0;
  const FixedText text = reading.valid ? HeadingText(reading.value, places) + UnitOf(view.block) : FixedText(L"---");
  const int width = static_cast<int>(face * (face < kLeastFaceWithRose ? 0.9 : 2 * kHub * 0.93));
  const auto box = [&](double middle, double height) {
    const LONG centre = std::lround(dial.centre.x), half = width / 2 + 1;
    return RECT{centre - half, std::lround(dial.centre.y + middle - height / 2), centre + half,
                std::lround(dial.centre.y + middle + height / 2)};
  };
  InstrumentFonts& fonts = view.keep.fonts;
  HFONT font = FittingFont(canvas.dc(), fonts, text, std::max(10, static_cast<int>(face * 0.26)), 9, width, FW_BOLD);
  DrawTextLine(canvas, font, text, box(named ? -face * 0.035 : 0, face * 0.34), colors.ink, DT_CENTER | DT_NOCLIP);
  if (!named) return;
  const FixedText name = NameOf(view.block);
  HFONT nameFont =
      FittingFont(canvas.dc(), fonts, name, std::max(9, static_cast<int>(face * 0.11)), 9, width * 5 / 6, FW_NORMAL);
  DrawTextLine(canvas, nameFont, name, box(face * 0.14, face * 0.16), colors.faintInk, DT_CENTER);
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

double NormalHeading(double degrees) {
  const double turned = std::fmod(degrees, 360.0);
  if (std::isnan(turned)) return 0;
  const double heading = turned < 0 ? turned + 360 : turned;
  return heading >= 360 ? 0 : heading;  // a tiny negative number rounds up to the whole circle
}

double CardAngle(double bearing, double heading) {
  return NormalHeading(bearing - heading);
}

int MarkSpacing(double faceRadius) {
  constexpr double kLeastPixels = 4.0;
  const double perDegree = faceRadius * kRadiansPerDegree;
  for (int spacing : {1, 2, 5}) {
    if (perDegree * spacing >= kLeastPixels) return spacing;
  }
  return 10;
}

FixedText HeadingText(double degrees, int places) {
  const double unit = std::pow(10.0, places);
  const double rounded = NormalHeading(std::round(NormalHeading(degrees) * unit) / unit);
  wchar_t text[32];
  FormatBounded(text, sizeof(text), L"%0*.*f", places > 0 ? 4 + places : 3, places, rounded);
  return text;
}

void DrawCompassFace(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  FillArea(canvas, area, GetSysColor(COLOR_BTNFACE));
  const Dial dial = DialIn(area);
  if (dial.radius > 0) DrawDialCase(canvas, dial, ColorsOf(view));
}

void DrawCompassValue(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  const InstrumentReading reading = ReadingOf(view.block);
  const double heading = HeadingOf(view);
  const DialColors colors = ColorsOf(view);
  DrawZones(canvas, dial, view, heading);
  DrawMarks(canvas, dial, colors, heading);
  DrawNumbers(canvas, dial, view, heading);
  DrawLetters(canvas, dial, view, heading);
  DrawRose(canvas, dial, view, heading);
  if (dial.faceRadius >= kLeastFaceWithRose) {
    FillDisc(canvas, dial.centre, dial.faceRadius * kHub * 1.05, colors.faceBottom);
    FillGradientDisc(canvas, dial.centre, dial.faceRadius * kHub, colors.window, colors.faceTop);
  }
  if (reading.valid) DrawIndex(canvas, dial, view);
  if (dial.faceRadius >= kLeastFaceWithHeading) DrawHeading(canvas, dial, view);
}

void ListCompassParts(HDC, const RECT& area, const InstrumentView& view, InstrumentParts* parts) {
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  // The card turns as a whole; its zones reach furthest.
  const PointD corners[] = {{dial.centre.x - dial.faceRadius, dial.centre.y - dial.radius},
                            {dial.centre.x + dial.faceRadius, dial.centre.y + dial.faceRadius}};
  parts->Add(BoundsOf(corners, 1, area), LookOf(HeadingOf(view)));
}

}  // namespace kv
