#include "kv/controls/instrument/gauge_layout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/numbers.h"

namespace kv {

namespace {

// Relative to the dial's radius.
constexpr double kLabelHeight = 0.165, kLabelWidth = 0.52;  // kLabelWidth: the maximum width
constexpr double kLabelGap = 0.05;                          // gap to the marks
constexpr double kTextOuter = 0.825;                        // the outer limit of rows of text
constexpr double kHubClearance = 0.13;                      // the hub with a margin
constexpr double kTailEnd = 0.20;                           // the end of the needle's tail; rows of text begin below it
constexpr double kNeedleClearance = 0.07;                   // half the needle's width with a margin
constexpr double kNameHeight = 0.16, kUnitHeight = 0.15;
constexpr double kNeedleReach = 0.86;
constexpr double kValueMiddle = 0.775, kValueBottom = 0.92, kValueWidth = 0.70, kBareValueWidth = 1.15,
                 kValueHeight = 0.26;

constexpr double kMinRadiusWithName = 29;
constexpr int kMinFontHeight = 9;           // of a readable font
constexpr double kMinLabelGap = 1.75;       // pixels
constexpr double kMinCaptionHeight = 0.09;  // of name and unit, so that a large dial has no tiny text
constexpr double kInk = 0.8;                // the part of a font's cell that characters cover

struct NiceStep {
  double factor;
  int parts;
};
constexpr NiceStep kNiceSteps[] = {{1, 5}, {2, 4}, {2.5, 5}, {5, 5}, {10, 5}};

int ExactDecimals(double step) {
  for (int decimals = 0; decimals < 7; ++decimals) {
    const double scaled = step * std::pow(10.0, decimals);
    if (std::fabs(scaled - std::round(scaled)) < 1e-6 * scaled) return decimals;
  }
  return 7;
}

int LabelLength(double magnitude, double step) {
  const int decimals = ExactDecimals(step);
  return std::max(1, static_cast<int>(std::floor(std::log10(magnitude) + 1e-9)) + 1) +
         (decimals > 0 ? decimals + 1 : 0);
}

// A power of ten must be shown beside the unit and makes labels harder to read: use it only if it shortens them enough.
int LabelExponent(double magnitude, double step) {
  if (magnitude >= 1e-2 && magnitude < 1e4) return 0;
  const int exponent = 3 * static_cast<int>(std::floor(std::log10(magnitude) / 3));
  const double unit = std::pow(10.0, exponent);
  return LabelLength(magnitude, step) <= LabelLength(magnitude / unit, step / unit) + 2 ? 0 : exponent;
}

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

RECT BoxAt(PointD center, double width, double height) {
  const int left = Round(center.x - width / 2), top = Round(center.y - height / 2);
  return {left, top, left + Round(width), top + Round(height)};
}

// The part of its box that a text covers.
RECT InkOf(RECT box) {
  const LONG air = std::lround((box.bottom - box.top) * (1 - kInk) / 2);
  return {box.left, box.top + air, box.right, box.bottom - air};
}

bool Touch(const RECT& first, const RECT& second, double gap) {
  return first.left < second.right + gap && second.left < first.right + gap && first.top < second.bottom + gap &&
         second.top < first.bottom + gap;
}

double DistanceTo(const RECT& box, PointD place) {
  return std::hypot(std::max({box.left - place.x, place.x - box.right, 0.0}),
                    std::max({box.top - place.y, place.y - box.bottom, 0.0}));
}

// A dial and the areas that are already taken.
struct DialSpace {
  Dial dial;
  double gap;
  double reach;  // of the needle
  FixedList<RECT, 24> taken;
};

// The vertical extent of a row of text, downwards from the dial's center.
struct Band {
  double top, bottom;
  bool low;  // the row may be at the lower end, where the needle leaves more space
};

// Half the width that is available to a row of this height, centered on the dial's vertical axis. Below the hub, the
// needle at either end of the scale limits the row near its upper corners, where a text seldom has ink.
double FreeHalf(const DialSpace& space, double middle, int height) {
  const PointD center = space.dial.center;
  const double radius = space.dial.innerRadius, ink = height * kInk, top = middle - ink / 2, bottom = middle + ink / 2;
  const double within = kTextOuter * radius, needleEnd = space.reach * -std::cos(Radians(kGaugeStart));
  double half = bottom < within ? std::sqrt(within * within - bottom * bottom) : 0;
  if (top < needleEnd) half = std::min(half, top + 0.15 * ink - kNeedleClearance * radius);
  for (const RECT& box : space.taken) {
    if (box.bottom <= center.y + top || box.top >= center.y + bottom) continue;
    half = std::min(half, std::max(box.left - center.x, center.x - box.right) - space.gap);
  }
  return half;
}

// The middle of a row of this height, at the position where more width is available.
double MiddleOf(const DialSpace& space, const Band& band, int height) {
  const double middle = (band.top + band.bottom) / 2, low = std::max(middle, band.bottom - height * kInk / 2);
  return band.low && FreeHalf(space, low, height) >= FreeHalf(space, middle, height) ? low : middle;
}

int MinFontHeight(const DialSpace& space) {
  return std::max(kMinFontHeight, Round(kMinCaptionHeight * space.dial.innerRadius));
}

// The text in the largest font up to `wanted` with which it fits into the band; hidden if there is none.
GaugeText FitText(const DialSpace& space, const Band& band, std::wstring_view text, double wanted,
                  TextMeasure measure) {
  const int least = MinFontHeight(space);
  int height = std::max(least, Round(std::min(wanted, (band.bottom - band.top) / kInk)));
  while (true) {
    const double width = measure(text, height, FW_NORMAL).cx, middle = MiddleOf(space, band, height);
    const double half = FreeHalf(space, middle, height);
    const PointD place{space.dial.center.x, space.dial.center.y + middle};
    if (width <= 2 * half) return {text, height, FW_NORMAL, BoxAt(place, width + 2, height)};
    if (height == least) return {};
    height = std::clamp(Round(height * 2 * half / width) + 1, least, height - 1);
  }
}

// The rows between the needle's tail and the value: two, or one if there is no space for two.
FixedList<Band, 2> BandsOf(const DialSpace& space) {
  const double top = kTailEnd * space.dial.innerRadius;
  const double bottom = GaugeValueBox(space.dial).top - space.dial.center.y, middle = (top + bottom) / 2;
  if (middle - top < kMinFontHeight * kInk) return {{top, bottom, false}};
  return {{top, middle, true}, {middle, bottom, false}};
}

struct Captions {
  GaugeText name, unit;
  bool NameFits() const { return name.height > 0; }
  bool UnitFits() const { return unit.height > 0; }
  int Score() const { return NameFits() + 2 * UnitFits(); }
};

// Whether another order of name and unit makes more of them fit, or makes the smaller one considerably larger.
bool FitBetter(const Captions& tried, const Captions& best) {
  constexpr double kWorthIt = 1.1;
  if (tried.Score() != best.Score()) return tried.Score() > best.Score();
  const auto smaller = [](const Captions& captions) { return std::min(captions.name.height, captions.unit.height); };
  return smaller(tried) > kWorthIt * smaller(best);
}

// Places the unit at the hub and the name below it, or vice versa if that fits better. A text that fits in neither row
// is omitted. A single row contains the unit.
Captions PlaceCaptions(const DialSpace& space, std::wstring_view name, std::wstring_view unit, TextMeasure measure) {
  const double radius = space.dial.innerRadius;
  const FixedList<Band, 2> bands = BandsOf(space);
  Captions best{};
  for (const size_t ofUnit : {0u, 1u}) {
    if (ofUnit >= bands.size()) break;
    Captions tried{{}, FitText(space, bands[ofUnit], unit, kUnitHeight * radius, measure)};
    if (bands.size() > 1) tried.name = FitText(space, bands[1 - ofUnit], name, kNameHeight * radius, measure);
    if (FitBetter(tried, best)) best = tried;
  }
  return best;
}

// Not close to the marks: a mark beside its number could be read as a minus sign.
double LabelRadius(double radius) {
  return kMajorInner * radius - std::max(kMinLabelGap, kLabelGap * radius);
}

GaugeLabels PlaceLabels(const DialSpace& space, const InstrumentBlock& block, const GaugeScale& scale,
                        TextMeasure measure) {
  const Dial& dial = space.dial;
  const InstrumentReading reading = ReadingOf(block);
  const int height = std::max(kMinFontHeight, Round(dial.innerRadius * kLabelHeight));
  GaugeLabels labels;
  for (long long index = scale.first; index <= scale.last; ++index) {
    const FixedText text =
        PlainNumber(LabelValue(scale, index), scale.labelDecimals, (block.format & kFormatSign) != 0);
    const SIZE size = measure(text, height, FW_SEMIBOLD);
    const double angle = GaugeAngle(reading, static_cast<double>(index) * scale.step);
    const PointD center = LabelCenter(dial.center, LabelRadius(dial.innerRadius), angle, size);
    labels.push_back({text, height, FW_SEMIBOLD, BoxAt(center, size.cx, size.cy)});
  }
  return labels;
}

// Reserves the areas of the labels, and shortens the needle so that it does not reach them. Returns false if a label is
// too wide, or overlaps another label or a taken area.
bool ReserveSpace(const GaugeLabels& labels, DialSpace* space) {
  const double widest = kLabelWidth * space->dial.innerRadius;
  for (const GaugeText& label : labels) {
    const RECT ink = InkOf(label.box);
    if (ink.right - ink.left > widest) return false;
    if (std::ranges::any_of(space->taken, [&](const RECT& other) { return Touch(ink, other, space->gap); })) {
      return false;
    }
    space->taken.push_back(ink);
    const double distance = DistanceTo(ink, space->dial.center);
    space->reach = std::min(space->reach, distance - std::max(1.5, space->dial.innerRadius * 0.02));
  }
  return true;
}

// The needle's length without labels. At both ends of a small dial's scale, the needle ends above the value's text.
double NeedleReach(const Dial& dial) {
  const double reach = kNeedleReach * dial.innerRadius;
  if (dial.innerRadius < kMinRadiusWithValue || dial.innerRadius >= kMinRadiusWithLabels) return reach;
  const double valueTop = InkOf(GaugeValueBox(dial)).top - dial.center.y - kNeedleClearance * dial.innerRadius;
  return std::min(reach, valueTop / -std::cos(Radians(kGaugeStart)));
}

// Whether the unit can have a prefix for this power of ten.
bool TakesPrefix(const InstrumentBlock& block, int exponent) {
  constexpr std::wstring_view kPlainUnits[] = {L"A",      L"Bq",     L"C", L"F",   L"H", L"Hz", L"J",
                                               L"K",      L"L",      L"N", L"S",   L"V", L"W",  L"Pa",
                                               L"\u03A9", L"\u2126", L"g", L"m/s", L"m", L"s"};
  return exponent != 0 && std::abs(exponent) <= 12 &&
         std::ranges::find(kPlainUnits, DecodedUnit(block).view()) != std::end(kPlainUnits);
}

// The unit with a prefix ("\u00B5A") or a power of ten ("\u00D710\u2076 kn").
FixedText UnitText(const InstrumentBlock& block, int exponent) {
  constexpr std::wstring_view kPrefixes = L"pn\u00B5m kMGT";
  constexpr std::wstring_view kDigits = L"\u2070\u00B9\u00B2\u00B3\u2074\u2075\u2076\u2077\u2078\u2079";
  const FixedText unit = DecodedUnit(block);
  if (exponent == 0) return unit;
  if (TakesPrefix(block, exponent)) return FixedText(kPrefixes.substr(exponent / 3 + 4, 1)) + unit;
  if (exponent == 3) return FixedText(L"\u00D71000 ") + unit;
  FixedText power = L"\u00D710";
  if (exponent < 0) power += L'\u207B';
  const int magnitude = std::abs(exponent);
  if (magnitude >= 10) power += kDigits[magnitude / 10];
  return power + kDigits.substr(magnitude % 10, 1) + L" " + unit;
}

}  // namespace

double GaugeAngle(const InstrumentReading& reading, double value) {
  return kGaugeStart + kGaugeSweep * FractionOf(reading, value);
}

GaugeScale ChooseScale(double minimum, double maximum, int maxIntervals) {
  const double low = std::min(minimum, maximum), high = std::max(minimum, maximum);
  const double raw = (high - low) / std::max(maxIntervals, 1);
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  const auto* nice = std::find_if(std::begin(kNiceSteps), std::end(kNiceSteps) - 1, [raw, power](const NiceStep& step) {
    return raw <= step.factor * power * (1 + 1e-9);
  });
  const double step = nice->factor * power, slack = 1e-6;
  const int exponent = LabelExponent(std::max(std::fabs(low), std::fabs(high)), step);
  return {.step = step,
          .parts = nice->parts,
          .first = static_cast<long long>(std::ceil(low / step - slack)),
          .last = static_cast<long long>(std::floor(high / step + slack)),
          .exponent = exponent,
          .labelDecimals = ExactDecimals(step / std::pow(10.0, exponent))};
}

double LabelValue(const GaugeScale& scale, long long index) {
  return static_cast<double>(index) * scale.step / std::pow(10.0, scale.exponent);
}

PointD LabelCenter(PointD center, double radius, double degrees, SIZE label) {
  const PointD direction = PolarPoint({0, 0}, 1, degrees);
  // Treats a text as an ellipse within its box, so that all labels appear to have the same distance from the marks.
  const double extent = std::hypot(direction.x * label.cx / 2, direction.y * label.cy / 2 * kInk);
  return PolarPoint(center, radius - extent, degrees);
}

GaugeLayout LayOutGauge(const RECT& area, const InstrumentBlock& block, TextMeasure measure) {
  const Dial dial = DialIn(area);
  const double radius = dial.innerRadius;
  const InstrumentReading reading = ReadingOf(block);
  GaugeLayout layout{dial, ChooseScale(reading.minimum, reading.maximum, 10), {}, {}, {}, NeedleReach(dial), 0};
  if (radius < kMinRadiusWithName) return layout;
  const DialSpace empty{
      dial,
      std::max(2.0, radius * 0.04),
      layout.reach,
      {BoxAt(dial.center, 2 * kHubClearance * radius, 2 * kHubClearance * radius), GaugeValueBox(dial)}};
  const FixedText name = DecodedName(block);
  Captions captions{};
  if (radius >= kMinRadiusWithLabels) {
    // The finest scale that leaves space for name and unit. Fewer than four parts are not accepted for a name.
    for (const int intervals : {10, 8, 6, 5, 4, 2}) {
      const GaugeScale scale = ChooseScale(reading.minimum, reading.maximum, intervals);
      const GaugeLabels labels = PlaceLabels(empty, block, scale, measure);
      DialSpace space = empty;
      if ((intervals < 4 && !layout.labels.empty()) || !ReserveSpace(labels, &space)) continue;
      const Captions placed = PlaceCaptions(space, name, UnitText(block, scale.exponent), measure);
      if (scale.exponent != 0 && !placed.UnitFits()) continue;
      if (!layout.labels.empty() && placed.Score() <= captions.Score()) continue;
      captions = placed;
      layout.scale = scale;
      layout.labels = labels;
      layout.reach = space.reach;
      if (captions.Score() == 3) break;
    }
  }
  if (layout.labels.empty()) captions = PlaceCaptions(empty, name, DecodedUnit(block), measure);
  layout.name = captions.name;
  layout.unit = captions.unit;
  const bool scaled = !layout.labels.empty() && TakesPrefix(block, layout.scale.exponent);
  layout.valueExponent = scaled ? layout.scale.exponent : 0;
  return layout;
}

RECT GaugeValueBox(const Dial& dial) {
  const double radius = dial.innerRadius, height = std::max(10.0, radius * kValueHeight);
  const double middle = std::min(kValueMiddle * radius, kValueBottom * radius - height / 2);
  const double width = radius < kMinRadiusWithLabels ? kBareValueWidth : kValueWidth;
  return BoxAt({dial.center.x, dial.center.y + middle}, std::max(24.0, radius * width), height);
}

GaugeText LayOutGaugeValue(const Dial& dial, const InstrumentBlock& block, int exponent, TextMeasure measure) {
  InstrumentReading reading = ReadingOf(block);
  for (double* number : {&reading.minimum, &reading.maximum, &reading.value}) *number /= std::pow(10.0, exponent);
  const int decimals = std::clamp((block.format & kFormatDecimals) + exponent, 0, static_cast<int>(kFormatDecimals));
  const BYTE format = static_cast<BYTE>(decimals | (block.format & kFormatSign));
  const RECT box = GaugeValueBox(dial);
  const int space = box.right - box.left - 2, wanted = Round(std::max(10.0, dial.innerRadius * 0.25));
  const NumberFormList forms = reading.valid ? NumberForms(reading, format) : NumberFormList{L"---"};
  // A truncated number would be wrong: the last form is made as small as necessary.
  for (const FixedText& form : forms) {
    const int least = &form == &forms.back() ? 1 : kMinFontHeight;
    for (int height = wanted; height >= least;) {
      const int width = measure(form, height, FW_BOLD).cx;
      if (width <= space) return {form, height, FW_BOLD, box};
      height = std::min(height - 1, MulDiv(height, space, width));
    }
  }
  return {};
}

}  // namespace kv
