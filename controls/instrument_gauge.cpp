#include "controls/instrument_gauge.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "controls/instrument_gauge_layout.h"
#include "framework/angles.h"
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

// Measures texts with the fonts of a device context.
struct TextMeasurer {
  HDC dc;
  OwnedFont font = OwnedFont();
  int height = 0, weight = 0;

  SIZE operator()(const std::wstring& text, int wantedHeight, int wantedWeight) {
    if (wantedHeight != height || wantedWeight != weight) {
      font = CreateInstrumentFont(wantedHeight, 0, wantedWeight);
      height = wantedHeight;
      weight = wantedWeight;
    }
    return TextSize(dc, font, text);
  }
};

void DrawText(HDC dc, const GaugeText& text, COLORREF color) {
  if (text.height == 0) return;
  DrawTextLine(dc, CreateInstrumentFont(text.height, 0, text.weight), text.text, Widened(text.box), color, DT_CENTER);
}

void DrawZones(const Supersample& canvas, const Dial& dial, const InstrumentView& view) {
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

void DrawTicks(const Supersample& canvas, const Dial& dial, const InstrumentView& view, const GaugeScale& scale) {
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

void DrawTexts(HDC dc, const GaugeLayout& layout, const DialColors& colors) {
  for (const GaugeText& label : layout.labels) DrawText(dc, label, colors.ink);
  DrawText(dc, layout.name, colors.faintInk);
  DrawText(dc, layout.unit, colors.faintInk);
}

void DrawValueWindow(const Supersample& canvas, const Dial& dial, const DialColors& colors) {
  const RECT box = GaugeValueBox(dial);
  const auto corner = [](LONG x, LONG y) { return PointD{static_cast<double>(x), static_cast<double>(y)}; };
  const PointD corners[] = {corner(box.left, box.top), corner(box.right, box.top), corner(box.right, box.bottom),
                            corner(box.left, box.bottom)};
  FillPolygon(canvas, corners, colors.window);
  FillLine(canvas, corner(box.left, box.bottom), corner(box.right, box.bottom), 1, colors.faceTop);
}

void DrawNeedle(HDC dc, const RECT& area, const Dial& dial, const InstrumentView& view) {
  const double face = dial.faceRadius, hub = std::max(2.0, face * kHub);
  const double angle = GaugeAngle(ReadingOf(view.block), ReadingOf(view.block).value);
  const double root = std::max(1.6, face * 0.042), point = std::max(0.5, face * 0.006);
  const PointD tip = PolarPoint(dial.centre, face * kNeedleTip, angle);
  const PointD tail = PolarPoint(dial.centre, -face * kNeedleTail, angle);
  const PointD ends[] = {
      tip, tail, {dial.centre.x - hub, dial.centre.y - hub}, {dial.centre.x + hub, dial.centre.y + hub}};
  const Supersample canvas(dc, BoundsOf(ends, root + 3, area));
  const PointD across = PolarPoint({0, 0}, 1, angle + 90);
  const auto beside = [&across](PointD place, double distance) {
    return PointD{place.x + across.x * distance, place.y + across.y * distance};
  };
  const auto outline = [&](double wider) {
    return std::vector<PointD>{beside(tip, point + wider),         beside(dial.centre, root + wider),
                               beside(tail, root * 0.75 + wider),  beside(tail, -root * 0.75 - wider),
                               beside(dial.centre, -root - wider), beside(tip, -point - wider)};
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

void DrawGaugeFace(HDC dc, const RECT& area, const InstrumentView& view) {
  FillSolid(dc, area, GetSysColor(COLOR_BTNFACE));
  TextMeasurer measurer{dc};
  const GaugeLayout layout = LayOutGauge(area, view.block, std::ref(measurer));
  const Dial& dial = layout.dial;
  if (dial.radius <= 0) return;
  {
    const Supersample canvas(dc, area);
    DrawDialCase(canvas, dial, ColorsOf(view));
    DrawZones(canvas, dial, view);
    DrawTicks(canvas, dial, view, layout.scale);
    if (dial.faceRadius >= kLeastFaceWithWindow) DrawValueWindow(canvas, dial, ColorsOf(view));
  }
  DrawTexts(dc, layout, ColorsOf(view));
}

void DrawGaugeValue(HDC dc, const RECT& area, const InstrumentView& view) {
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  if (dial.faceRadius >= kLeastFaceWithValue) {
    TextMeasurer measurer{dc};
    DrawText(dc, LayOutGaugeValue(dial, view.block, std::ref(measurer)), ColorsOf(view).ink);
  }
  if (ReadingOf(view.block).valid) DrawNeedle(dc, area, dial, view);
}

}  // namespace kv
