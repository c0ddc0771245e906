#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/gauge_layout.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"
#include "kv/framework/numbers.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

// ---- Background

// Radii relative to the dial's.
constexpr double kZoneOuter = 0.97, kZoneInner = 0.91;
constexpr double kTickOuter = 0.955, kMinorInner = 0.905;
constexpr double kNeedleTail = 0.17, kHub = 0.10, kIndexTip = 0.94, kNeedleTip = 0.9;

RECT Widened(RECT box) {
  // Rounding must not truncate a text.
  InflateRect(&box, 2, 0);
  return box;
}

void DrawText(Canvas& canvas, const GaugeText& text, COLORREF color) {
  if (text.height == 0) return;
  DrawTextLine(canvas, InstrumentFont(text.height, 0, text.weight), text.text, Widened(text.box), color, DT_CENTER);
}

void DrawZones(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance) {
  const InstrumentReading reading = ReadingOf(appearance.block);
  const double inner = std::min(kZoneInner * dial.innerRadius, kZoneOuter * dial.innerRadius - 2);
  for (int i = 0; i < kInstrumentZones; ++i) {
    if (!(appearance.block.state & ZoneEnabledBit(i))) continue;
    const InstrumentZone& zone = appearance.block.zones[i];
    const double lower = GaugeAngle(reading, zone.lower), upper = GaugeAngle(reading, zone.upper);
    FillAnnularSector(canvas, dial.center, inner, kZoneOuter * dial.innerRadius, std::min(lower, upper),
                      std::max(lower, upper), ShownColor(appearance, zone.color));
  }
}

// If minor marks are closer than three pixels, only every second one is drawn, or none.
int MinorParts(const GaugeScale& scale, double pixelsPerStep) {
  if (pixelsPerStep / scale.parts >= 3) return scale.parts;
  return pixelsPerStep / 2 >= 3 ? 2 : 1;
}

void DrawTicks(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance, const GaugeScale& scale) {
  const double radius = dial.innerRadius, arc = Radians(kGaugeSweep) * radius;
  const InstrumentReading reading = ReadingOf(appearance.block);
  const DialColors colors = ColorsOf(appearance);
  const int parts = MinorParts(scale, arc * scale.step / std::fabs(reading.maximum - reading.minimum));
  const double low = std::min(reading.minimum, reading.maximum), high = std::max(reading.minimum, reading.maximum);
  const double slack = scale.step * 1e-6;
  for (long long index = (scale.first - 1) * parts; index <= (scale.last + 1) * parts; ++index) {
    const double value = static_cast<double>(index) * scale.step / parts;
    if (value < low - slack || value > high + slack) continue;
    const bool major = index % parts == 0;
    const double angle = GaugeAngle(reading, value);
    FillLine(canvas, PolarPoint(dial.center, radius * (major ? kMajorInner : kMinorInner), angle),
             PolarPoint(dial.center, radius * kTickOuter, angle),
             major ? std::max(1.25, radius * 0.022) : std::max(0.8, radius * 0.011),
             major ? colors.ink : colors.faintInk);
  }
}

void DrawTexts(Canvas& canvas, const GaugeLayout& layout, const InstrumentAppearance& appearance) {
  const DialColors colors = ColorsOf(appearance);
  for (const GaugeText& label : layout.labels) DrawText(canvas, label, colors.ink);
  DrawText(canvas, layout.name, colors.faintInk);
  DrawText(canvas, layout.unit, colors.faintInk);
}

void DrawValueWindow(Canvas& canvas, const Dial& dial, const DialColors& colors) {
  const RECT box = GaugeValueBox(dial);
  const auto corner = [](LONG x, LONG y) { return PointD{static_cast<double>(x), static_cast<double>(y)}; };
  const PointD corners[] = {corner(box.left, box.top), corner(box.right, box.top), corner(box.right, box.bottom),
                            corner(box.left, box.bottom)};
  FillPolygon(canvas, corners, colors.window);
  FillLine(canvas, corner(box.left, box.bottom), corner(box.right, box.bottom), 1, colors.dialTop);
}

void DrawBackground(Canvas& canvas, InstrumentAppearance& appearance) {
  const GaugeLayout layout = LayOutGauge(appearance.area, appearance.block, MeasureText);
  const Dial& dial = layout.dial;
  appearance.reach = static_cast<float>(layout.reach);
  appearance.valueExponent = layout.valueExponent;
  DrawDialCase(canvas, dial, appearance);
  if (dial.radius <= 0) return;
  DrawZones(canvas, dial, appearance);
  DrawTicks(canvas, dial, appearance, layout.scale);
  if (dial.innerRadius >= kMinRadiusWithWindow) DrawValueWindow(canvas, dial, ColorsOf(appearance));
  DrawTexts(canvas, layout, appearance);
}

// ---- Value

// The geometry of a needle, in pixels. Its body ends at the labels, from where a thin tip, which hides no label,
// reaches the marks.
struct Needle {
  PointD tip, end, tail;
  double angle, root, point, hub;
};

Needle NeedleAt(const Dial& dial, double reach, double angle) {
  const double radius = dial.innerRadius;
  const double tip = radius < kMinRadiusWithLabels ? reach : std::max(reach, kNeedleTip * radius);
  return {.tip = PolarPoint(dial.center, tip, angle),
          .end = PolarPoint(dial.center, reach, angle),
          .tail = PolarPoint(dial.center, -radius * kNeedleTail, angle),
          .angle = angle,
          .root = std::max(1.8, radius * 0.055),
          .point = std::max(0.6, radius * 0.01),
          .hub = std::max(2.0, radius * kHub)};
}

RECT BoundsOfNeedle(const Needle& needle, const Dial& dial, const RECT& limit) {
  const PointD ends[] = {needle.tip,
                         needle.tail,
                         {dial.center.x - needle.hub, dial.center.y - needle.hub},
                         {dial.center.x + needle.hub, dial.center.y + needle.hub}};
  return BoundsOf(ends, needle.root + 3 + dial.innerRadius * 0.012, limit);
}

void DrawNeedle(Canvas& canvas, const InstrumentAppearance& appearance, const Needle& needle) {
  const Dial dial = DialIn(appearance.area);
  const double edge = std::max(0.5, dial.innerRadius * 0.012);
  const auto [tip, end, tail, angle, root, point, hub] = needle;
  const PointD across = PolarPoint({0, 0}, 1, angle + 90), center = dial.center;
  const auto beside = [&across](PointD place, double distance) {
    return PointD{place.x + across.x * distance, place.y + across.y * distance};
  };
  const auto outline = [&](double wider) {
    const double half = needle.root + wider, tailHalf = needle.root * 0.75 + wider, tipHalf = needle.point + wider / 2;
    return std::array{beside(needle.tip, tipHalf),   beside(needle.end, tipHalf),    beside(center, half),
                      beside(needle.tail, tailHalf), beside(needle.tail, -tailHalf), beside(center, -half),
                      beside(needle.end, -tipHalf),  beside(needle.tip, -tipHalf)};
  };
  const COLORREF color = DisplayColor(appearance);
  // A dark edge separates the needle from the labels; two tones give it a ridge.
  FillPolygon(canvas, outline(edge), ColorsOf(appearance).dialBottom);
  FillPolygon(canvas, outline(0), color);
  const PointD darkHalf[] = {end, beside(end, point), beside(dial.center, root), beside(tail, root * 0.75), tail};
  FillPolygon(canvas, darkHalf, ShadeColor(color, 0.72));
  FillDisc(canvas, dial.center, hub + edge, ColorsOf(appearance).dialBottom);
  FillGradientDisc(canvas, dial.center, hub, RGB(150, 155, 161), RGB(62, 66, 72));
  FillGradientDisc(canvas, dial.center, hub * 0.62, RGB(70, 74, 80), RGB(112, 117, 123));
}

// An index on the rim, as on the compass. Because of the labels, the needle does not reach the marks; the index shows
// to which of them it points.
struct Index {
  PointD tip, left, right;
};

Index IndexAt(const Dial& dial, double angle) {
  const PointD base = PolarPoint(dial.center, 0.3 * dial.innerRadius + 0.7 * dial.radius, angle);
  const PointD half = PolarPoint({0, 0}, std::max(2.5, dial.innerRadius * 0.05), angle + 90);
  return {.tip = PolarPoint(dial.center, dial.innerRadius * kIndexTip, angle),
          .left = {base.x - half.x, base.y - half.y},
          .right = {base.x + half.x, base.y + half.y}};
}

void DrawIndex(Canvas& canvas, const InstrumentAppearance& appearance, const Index& index) {
  const PointD corners[] = {index.tip, index.right, index.left};
  const double edge = std::max(1.5, DialIn(appearance.area).innerRadius * 0.02);
  for (int i = 0; i < 3; ++i) {
    FillLine(canvas, corners[i], corners[(i + 1) % 3], edge, ColorsOf(appearance).dialBottom);
  }
  FillPolygon(canvas, corners, DisplayColor(appearance));
}

void DrawValueText(Canvas& canvas, const InstrumentAppearance& appearance, const GaugeText& text) {
  DrawText(canvas, text, ColorsOf(appearance).ink);
}

void AddParts(ValueLayer& layer, const InstrumentBlock& block, const char*) {
  const InstrumentAppearance& appearance = layer.appearance();
  const Dial dial = DialIn(appearance.area);
  if (dial.radius <= 0) return;
  const RECT window = Widened(GaugeValueBox(dial));
  if (dial.innerRadius >= kMinRadiusWithValue && !layer.Skips(window)) {
    layer.Add(window, LayOutGaugeValue(dial, block, appearance.valueExponent, MeasureText), DrawValueText);
  }
  const InstrumentReading reading = ReadingOf(block);
  if (!reading.valid) return;
  const double angle = GaugeAngle(reading, reading.value);
  if (dial.innerRadius >= kMinRadiusWithLabels) {
    const Index index = IndexAt(dial, angle);
    layer.Add(BoundsOf(std::array{index.tip, index.left, index.right}, 3, appearance.area), index, DrawIndex);
  }
  const Needle needle = NeedleAt(dial, appearance.reach, angle);
  layer.Add(BoundsOfNeedle(needle, dial, appearance.area), needle, DrawNeedle);
}

}  // namespace

const ModeRenderer kGaugeRenderer{DrawBackground, AddParts};

}  // namespace kv
