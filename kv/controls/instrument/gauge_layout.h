// The layout of a circular gauge: scale, labels, name, unit and value. Texts overlap neither each other nor the hub; a
// text without space is shortened or omitted. Pure functions, which measure texts with a function of the caller; any
// thread.
#pragma once

#include <string_view>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/view.h"

namespace kv {

inline constexpr double kGaugeStart = -135, kGaugeSweep = 270;  // degrees clockwise from the top
inline constexpr double kMajorInner = 0.875;  // the inner end of labeled marks, relative to the radius

double GaugeAngle(const InstrumentReading& reading, double value);

// Marks of a scale at round numbers: multiples of 1, 2, 2.5 or 5 times a power of ten.
struct GaugeScale {
  double step;            // between labeled marks
  int parts;              // the number of parts into which minor marks divide a step
  long long first, last;  // the labeled marks are first * step to last * step
  int exponent;           // labels are divided by ten to this power, a multiple of 3; 0 unless that makes them shorter
  int labelDecimals;      // decimals of the labels
};
// The finest scale with at most `maxIntervals` steps across the range.
GaugeScale ChooseScale(double minimum, double maximum, int maxIntervals);
double LabelValue(const GaugeScale& scale, long long index);

// The center of a label of this size that touches a circle of `radius` from the inside, in the given direction.
PointD LabelCenter(PointD center, double radius, double degrees, SIZE label);

// The extent of a text in a font of this cell height (pixels) and weight.
using TextMeasure = SIZE (*)(std::wstring_view text, int height, int weight);

// A text, centered in its box. `height` is that of its font's cell; 0: hidden.
struct GaugeText {
  FixedText text;
  int height, weight;
  RECT box;
};

// A scale has at most eleven labels, or slightly more because of rounding.
using GaugeLabels = FixedList<GaugeText, 16>;

struct GaugeLayout {
  Dial dial;
  GaugeScale scale;
  GaugeLabels labels;    // empty when there is no space
  GaugeText name, unit;  // below the hub; hidden if they do not fit
  double reach;          // the length of the needle's body; it does not reach the labels
  int valueExponent;     // the value is divided by ten to this power, because the unit has a prefix for it
};
GaugeLayout LayOutGauge(const RECT& area, const InstrumentBlock& block, TextMeasure measure);

// The window of the value. A dial that is too small for a window shows only the value at this position, or none.
inline constexpr double kMinRadiusWithWindow = 40, kMinRadiusWithValue = 20;
inline constexpr double kMinRadiusWithLabels = 36;
RECT GaugeValueBox(const Dial& dial);
GaugeText LayOutGaugeValue(const Dial& dial, const InstrumentBlock& block, int exponent, TextMeasure measure);

}  // namespace kv
