#include "controls/instrument_gauge.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "controls/instrument_dial.h"
#include "controls/instrument_text.h"
#include "framework/bounded_format.h"
#include "framework/painting.h"

namespace kv {

namespace {

// Radii as parts of the face's.
constexpr double kZoneOuter = 0.97, kZoneInner = 0.91;
constexpr double kTickOuter = 0.94, kMajorInner = 0.80, kMinorInner = 0.87;
constexpr double kLabelOuter = 0.77;
constexpr double kNeedleTip = 0.90, kNeedleTail = 0.20, kHub = 0.10;
constexpr double kNameHeight = 0.34, kUnitHeight = 0.33, kValueHeight = 0.70;  // from the centre, up, down, down

constexpr double kLeastFaceWithLabels = 36, kLeastFaceWithName = 29, kLeastFaceWithWindow = 40;

struct NiceStep {
  double factor;
  int parts;
};
constexpr NiceStep kNiceSteps[] = {{1, 5}, {2, 4}, {2.5, 5}, {5, 5}, {10, 5}};

int PlacesFor(double step) {
  for (int places = 0; places < 7; ++places) {
    const double scaled = step * std::pow(10.0, places);
    if (std::fabs(scaled - std::round(scaled)) < 1e-6 * scaled) return places;
  }
  return 7;
}

int LabelExponent(double magnitude) {
  if (magnitude >= 1e-2 && magnitude < 1e4) return 0;
  return 3 * static_cast<int>(std::floor(std::log10(magnitude) / 3));
}

struct Labels {
  GaugeScale scale;
  OwnedFont font;
  std::vector<std::wstring> texts;  // empty when there is no room for any
  std::vector<PointD> centres;
  std::vector<SIZE> sizes;
};

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

RECT BoxAt(PointD centre, double width, double height) {
  const int left = Round(centre.x - width / 2), top = Round(centre.y - height / 2);
  return {left, top, left + Round(width), top + Round(height)};
}

void PlaceLabels(HDC dc, const Dial& dial, const InstrumentView& view, Labels* labels) {
  const InstrumentReading reading = ReadingOf(view.block);
  const GaugeScale& scale = labels->scale;
  labels->texts.clear();
  labels->centres.clear();
  labels->sizes.clear();
  for (long long index = scale.first; index <= scale.last; ++index) {
    labels->texts.push_back(
        PlainNumber(LabelValue(scale, index), scale.labelPlaces, (view.block.format & kFormatSign) != 0));
    labels->sizes.push_back(TextSize(dc, labels->font, labels->texts.back()));
    labels->centres.push_back(LabelCentre(dial.centre, dial.faceRadius * kLabelOuter,
                                          GaugeAngle(reading, static_cast<double>(index) * scale.step),
                                          labels->sizes.back()));
  }
}

// The finest scale whose labels keep apart; without labels on a small dial.
Labels LayOutLabels(HDC dc, const Dial& dial, const InstrumentView& view) {
  const double face = dial.faceRadius;
  const InstrumentReading reading = ReadingOf(view.block);
  Labels labels;
  if (face >= kLeastFaceWithLabels) {
    labels.font = CreateInstrumentFont(Round(std::max(9.0, face * 0.165)), 0, FW_SEMIBOLD);
    for (int intervals : {10, 8, 6, 5, 4, 2}) {
      labels.scale = ChooseScale(reading.minimum, reading.maximum, intervals);
      PlaceLabels(dc, dial, view, &labels);
      const bool tooWide =
          std::any_of(labels.sizes.begin(), labels.sizes.end(), [face](SIZE size) { return size.cx > 0.56 * face; });
      if (!tooWide && !LabelsCollide(labels.centres, labels.sizes, std::max(2.0, face * 0.03))) return labels;
    }
  }
  labels.scale = ChooseScale(reading.minimum, reading.maximum, 10);
  labels.texts.clear();
  return labels;
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
  const double face = dial.faceRadius, arc = kGaugeSweep / 180 * std::numbers::pi * face;
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

std::wstring UnitText(const InstrumentView& view, int exponent) {
  std::wstring unit = InstrumentUnit(view.block);
  if (exponent == 0) return unit;
  wchar_t scaled[32];
  if (exponent == 3) {
    FormatBounded(scaled, sizeof(scaled), L"\u00D71000 %s", unit.c_str());
  } else {
    FormatBounded(scaled, sizeof(scaled), L"\u00D71E%ld %s", static_cast<long>(exponent), unit.c_str());
  }
  return scaled;
}

void DrawTexts(HDC dc, const Dial& dial, const InstrumentView& view, const Labels& labels) {
  const double face = dial.faceRadius;
  const DialColors colors = ColorsOf(view);
  for (size_t i = 0; i < labels.texts.size(); ++i) {
    const RECT box = BoxAt(labels.centres[i], labels.sizes[i].cx + 4, labels.sizes[i].cy);
    DrawTextLine(dc, labels.font, labels.texts[i], box, colors.ink, DT_CENTER);
  }
  if (face < kLeastFaceWithName) return;
  const double width = face * (labels.texts.empty() ? 1.15 : 0.72);
  const std::wstring name = InstrumentName(view.block);
  const OwnedFont nameFont = CreateFittingFont(dc, name, Round(std::max(9.0, face * 0.16)), 9, Round(width), FW_NORMAL);
  DrawTextLine(dc, nameFont, name, BoxAt({dial.centre.x, dial.centre.y - face * kNameHeight}, width, face * 0.24),
               colors.faintInk, DT_CENTER);
  const std::wstring unit = UnitText(view, labels.texts.empty() ? 0 : labels.scale.exponent);
  const OwnedFont unitFont = CreateFittingFont(dc, unit, Round(std::max(9.0, face * 0.15)), 9, Round(width), FW_NORMAL);
  DrawTextLine(dc, unitFont, unit, BoxAt({dial.centre.x, dial.centre.y + face * kUnitHeight}, width, face * 0.24),
               colors.faintInk, DT_CENTER);
}

RECT ValueBox(const Dial& dial) {
  const double face = dial.faceRadius;
  return BoxAt({dial.centre.x, dial.centre.y + face * kValueHeight}, std::max(24.0, face * 0.80),
               std::max(10.0, face * 0.26));
}

void DrawValueWindow(const Supersample& canvas, const Dial& dial, const DialColors& colors) {
  const RECT box = ValueBox(dial);
  const auto corner = [](LONG x, LONG y) { return PointD{static_cast<double>(x), static_cast<double>(y)}; };
  const PointD corners[] = {corner(box.left, box.top), corner(box.right, box.top), corner(box.right, box.bottom),
                            corner(box.left, box.bottom)};
  FillPolygon(canvas, corners, colors.window);
  FillLine(canvas, corner(box.left, box.bottom), corner(box.right, box.bottom), 1, colors.faceTop);
}

void DrawValueText(HDC dc, const Dial& dial, const InstrumentView& view) {
  const InstrumentReading reading = ReadingOf(view.block);
  const RECT box = ValueBox(dial);
  const int width = box.right - box.left - 2, height = Round(std::max(10.0, dial.faceRadius * 0.25));
  std::wstring text = L"---";
  if (reading.valid) {
    text = PlainNumber(reading.value, view.block.format & kFormatPlaces, (view.block.format & kFormatSign) != 0);
  }
  OwnedFont font = CreateFittingFont(dc, text, height, 9, width, FW_BOLD);
  if (TextSize(dc, font, text).cx > width) {
    // A number cut at its end would be a wrong one.
    text = ShortNumber(reading.value);
    font = CreateFittingFont(dc, text, height, 9, width, FW_BOLD);
  }
  DrawTextLine(dc, font, text, box, ColorsOf(view).ink, DT_CENTER);
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

double GaugeAngle(const InstrumentReading& reading, double value) {
  return kGaugeStart + kGaugeSweep * FractionOf(reading, value);
}

GaugeScale ChooseScale(double minimum, double maximum, int mostIntervals) {
  const double low = std::min(minimum, maximum), high = std::max(minimum, maximum);
  const double raw = (high - low) / std::max(mostIntervals, 1);
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  const auto* nice = std::find_if(std::begin(kNiceSteps), std::end(kNiceSteps) - 1, [raw, power](const NiceStep& step) {
    return raw <= step.factor * power * (1 + 1e-9);
  });
  const double step = nice->factor * power, slack = 1e-6;
  const int exponent = LabelExponent(std::max(std::fabs(low), std::fabs(high)));
  return {.step = step,
          .parts = nice->parts,
          .first = static_cast<long long>(std::ceil(low / step - slack)),
          .last = static_cast<long long>(std::floor(high / step + slack)),
          .exponent = exponent,
          .labelPlaces = PlacesFor(step / std::pow(10.0, exponent))};
}

double LabelValue(const GaugeScale& scale, long long index) {
  return static_cast<double>(index) * scale.step / std::pow(10.0, scale.exponent);
}

PointD LabelCentre(PointD centre, double radius, double degrees, SIZE label) {
  const PointD direction = PolarPoint({0, 0}, 1, degrees);
  // A text fills its box like an ellipse: that keeps all labels at one apparent distance from the marks.
  const double extent = std::hypot(direction.x * label.cx / 2, direction.y * label.cy / 2 * 0.8);
  return PolarPoint(centre, radius - extent, degrees);
}

bool LabelsCollide(std::span<const PointD> centres, std::span<const SIZE> sizes, double gap) {
  for (size_t i = 1; i < centres.size(); ++i) {
    const double apartX = std::fabs(centres[i].x - centres[i - 1].x) - (sizes[i].cx + sizes[i - 1].cx) / 2.0;
    const double apartY = std::fabs(centres[i].y - centres[i - 1].y) - (sizes[i].cy + sizes[i - 1].cy) / 2.0 * 0.8;
    if (apartX < gap && apartY < gap) return true;
  }
  return false;
}

void DrawGaugeFace(HDC dc, const RECT& area, const InstrumentView& view) {
  FillSolid(dc, area, GetSysColor(COLOR_BTNFACE));
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  const Labels labels = LayOutLabels(dc, dial, view);
  {
    const Supersample canvas(dc, area);
    DrawDialCase(canvas, dial, ColorsOf(view));
    DrawZones(canvas, dial, view);
    DrawTicks(canvas, dial, view, labels.scale);
    if (dial.faceRadius >= kLeastFaceWithWindow) DrawValueWindow(canvas, dial, ColorsOf(view));
  }
  DrawTexts(dc, dial, view, labels);
}

void DrawGaugeValue(HDC dc, const RECT& area, const InstrumentView& view) {
  const Dial dial = DialIn(area);
  if (dial.radius <= 0) return;
  if (dial.faceRadius >= 14) DrawValueText(dc, dial, view);
  if (ReadingOf(view.block).valid) DrawNeedle(dc, area, dial, view);
}

}  // namespace kv
