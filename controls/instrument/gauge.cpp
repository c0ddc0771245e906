#include "controls/instrument/gauge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "controls/instrument_block.h"
#include "controls/instrument/dial.h"
#include "controls/instrument/gauge_layout.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/view.h"
#include "framework/angles.h"
#include "framework/canvas.h"
#include "framework/painting.h"

namespace kv {

namespace {

// Radii as parts of the face's.
constexpr double kZoneOuter = 0.97, kZoneInner = 0.91;
constexpr double kTickOuter = 0.94, kMajorInner = 0.80, kMinorInner = 0.87;
constexpr double kNeedleTip = 0.90, kNeedleTail = 0.20, kHub = 0.10;

RECT Widened(RECT box) {
  // Rounding must not cost a text its last letter.
  InflateRect(&box, 2, 0);
  return box;
}

// Measures texts with the fonts of a control.
struct TextMeasurer {
  HDC dc;
  InstrumentFonts& fonts;

  SIZE operator()(std::wstring_view text, int height, int weight) const {
    return TextSize(dc, fonts.Get(height, 0, weight), text);
  }
};

void DrawText(Canvas& canvas, const InstrumentView& view, const GaugeText& text, COLORREF color) {
  if (text.height == 0) return;
  DrawTextLine(canvas, view.keep.fonts.Get(text.height, 0, text.weight), text.text, Widened(text.box), color,
               DT_CENTER);
}

void DrawZones(Canvas& canvas, const Dial& dial, const InstrumentView& view) {
  const InstrumentReading reading = ReadingOf(view.block);
  const double inner = std::min(kZoneInner * dial.faceRadius, kZoneOuter * dial.faceRadius - 2);
  for (int i = 0; i < kInstrumentZones; ++i) {
    if (!(view.block.state & ZoneEnabledBit(i))) continue;
    const InstrumentZone& zone = view.block.zones[i];
    const double lower = GaugeAngle(reading, zone.lower), upper = GaugeAngle(reading, zone.upper);
    FillRingSector(canvas, dial.centre, inner, kZoneOuter * dial.faceRadius, std::min(lower, upper),
                   std::max(lower, upper), ShownColor(view, zone.color));
  }
}

// Minor marks that would stand closer than three pixels are thinned out to every second or left away.
int MinorParts(const GaugeScale& scale, double pixelsPerStep) {
  if (pixelsPerStep / scale.parts >= 3) return scale.parts;
  return pixelsPerStep / 2 >= 3 ? 2 : 1;
}

void DrawTicks(Canvas& canvas, const Dial& dial, const InstrumentView& view, const GaugeScale& scale) {
  const double face = dial.faceRadius, arc = Radians(kGaugeSweep) * face;
  const InstrumentReading reading = ReadingOf(view.block);
  const DialColors colors = ColorsOf(view);
  const int parts = MinorParts(scale, arc * scale.step / std::fabs(reading.maximum - reading.minimum));
  const double low = std::min(reading.minimum, reading.maximum), high = std::max(reading.minimum, reading.maximum);
  const double slack = scale.step * 1e-6;
  for (long long index = (scale.first - 1) * parts; index <= (scale.last + 1) * parts; ++index) {
    const double value = static_cast<double>(index) * scale.step / parts;
    if (value < low - slack || value > high + slack) continue;
    const bool major = index % parts == 0;
    const double angle = GaugeAngle(reading, value);
    FillLine(canvas, PolarPoint(dial.centre, face * (major ? kMajorInner : kMinorInner), angle),
             PolarPoint(dial.centre, face * kTickOuter, angle),
             major ? std::max(1.25, face * 0.022) : std::max(0.8, face * 0.011), major ? colors.ink : colors.faintInk);
  }
}

void DrawTexts(Canvas& canvas, const GaugeLayout& layout, const InstrumentView& view) {
  const DialColors colors = ColorsOf(view);
  for (const GaugeText& label : layout.labels) DrawText(canvas, view, label, colors.ink);
  DrawText(canvas, view, layout.name, colors.faintInk);
  DrawText(canvas, view, layout.unit, colors.faintInk);
}

void DrawValueWindow(Canvas& canvas, const Dial& dial, const DialColors& colors) {
  const RECT box = GaugeValueBox(dial);
  const auto corner = [](LONG x, LONG y) { return PointD{static_cast<double>(x), static_cast<double>(y)}; };
  const PointD corners[] = {corner(box.left, box.top), corner(box.right, box.top), corner(box.right, box.bottom),
                            corner(box.left, box.bottom)};
  FillPolygon(canvas, corners, colors.window);
  FillLine(canvas, corner(box.left, box.bottom), corner(box.right, box.bottom), 1, colors.faceTop);
}

// Where a needle stands, in pixels.
struct Needle {
  PointD tip, tail;
  double angle, root, point, hub;
};

Needle NeedleOf(const Dial& dial, const InstrumentView& view) {
  const double face = dial.faceRadius;
  const InstrumentReading reading = ReadingOf(view.block);
  const double angle = GaugeAngle(reading, reading.value);
  return {.tip = PolarPoint(dial.centre, face * kNeedleTip, angle),
          .tail = PolarPoint(dial.centre, -face * kNeedleTail, angle),
          .angle = angle,
          .root = std::max(1.6, face * 0.042),
          .point = std::max(0.5, face * 0.006),
          .hub = std::max(2.0, face * kHub)};
}

RECT BoundsOfNeedle(const Needle& needle, const Dial& dial, const RECT& limit) {
  const PointD ends[] = {needle.tip,
                         needle.tail,
                         {dial.centre.x - needle.hub, dial.centre.y - needle.hub},
                         {dial.centre.x + needle.hub, dial.centre.y + needle.hub}};
  return BoundsOf(ends, needle.root + 3 + dial.faceRadius * 0.012, limit);
}

void DrawNeedle(Canvas& canvas, const RECT& area, const Dial& dial, const InstrumentView& view) {
  const double face = dial.faceRadius;
  const Needle needle = NeedleOf(dial, view);
  if (canvas.Hides(BoundsOfNeedle(needle, dial, area))) return;
  const auto [tip, tail, angle, root, point, hub] = needle;
  const PointD across = PolarPoint({0, 0}, 1, angle + 90), centre = dial.centre;
  const auto beside = [&across](PointD place, double distance) {
    return PointD{place.x + across.x * distance, place.y + across.y * distance};
  };
  const auto outline = [&](double wider) {
    const double half = needle.root + wider, tailHalf = needle.root * 0.75 + wider, tipHalf = needle.point + wider;
    return std::array{beside(needle.tip, tipHalf),    beside(centre, half),  beside(needle.tail, tailHalf),
                      beside(needle.tail, -tailHalf), beside(centre, -half), beside(needle.tip, -tipHalf)};
  };
  const COLORREF color = DisplayColor(view);
  // A dark edge lifts the needle off the labels; two tones make it a ridge.
  FillPolygon(canvas, outline(std::max(0.5, face * 0.012)), ColorsOf(view).faceBottom);
  FillPolygon(canvas, outline(0), color);
  const PointD darkHalf[] = {tip, beside(tip, point), beside(dial.centre, root), beside(tail, root * 0.75), tail};
  FillPolygon(canvas, darkHalf, ShadeColor(color, 0.72));
  FillDisc(canvas, dial.centre, hub + std::max(0.5, face * 0.012), ColorsOf(view).faceBottom);
  FillGradientDisc(canvas, dial.centre, hub, RGB(150, 155, 161), RGB(62, 66, 72));
  FillGradientDisc(canvas, dial.centre, hub * 0.62, RGB(70, 74, 80), RGB(112, 117, 123));
}

}  // namespace

void DrawGaugeFace(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  FillArea(canvas, area, GetSysColor(COLOR_BTNFACE));
  const GaugeLayout layout = LayOutGauge(area, view.block, TextMeasurer{canvas.dc(), view.keep.fonts});
  const Dial& dial = layout.dial;
  if (dial.radius <= 0) return;
  DrawDialCase(canvas, dial, ColorsOf(view));
  DrawZones(canvas, dial, view);
  DrawTicks(canvas, dial, view, layout.scale);
  if (dial.faceRadius >= kLeastFaceWithWindow) DrawValueWindow(canvas, dial, ColorsOf(view));
  DrawTexts(canvas, layout, view);
}

void DrawGaugeValue(Canvas& canvas, const RECT& area, const InstrumentView& view) {
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  if (dial.faceRadius >= kLeastFaceWithValue && !canvas.Hides(Widened(GaugeValueBox(dial)))) {
    DrawText(canvas, view, LayOutGaugeValue(dial, view.block, TextMeasurer{canvas.dc(), view.keep.fonts}),
             ColorsOf(view).ink);
  }
  if (ReadingOf(view.block).valid) DrawNeedle(canvas, area, dial, view);
}

void ListGaugeParts(HDC dc, const RECT& area, const InstrumentView& view, InstrumentParts* parts) {
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  if (dial.faceRadius >= kLeastFaceWithValue) {
    const GaugeText text = LayOutGaugeValue(dial, view.block, TextMeasurer{dc, view.keep.fonts});
    parts->Add(Widened(text.box), LookOf(text.text));
  }
  if (!ReadingOf(view.block).valid) return;
  const Needle needle = NeedleOf(dial, view);
  parts->Add(BoundsOfNeedle(needle, dial, area), LookOf(needle.angle));
}

}  // namespace kv
