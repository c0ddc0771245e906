// Where everything of a circular gauge stands: scale, labels, name, unit and value. One rule for all of them: no two
// texts touch, none touches the hub, and what finds no room becomes shorter or is left away. Pure functions, which ask
// their caller how large a text is; any thread.
#pragma once

#include <string_view>

#include "controls/instrument/fixed_text.h"
#include "controls/instrument/view.h"

namespace kv {

inline constexpr double kGaugeStart = -135, kGaugeSweep = 270;  // degrees clockwise from the top
inline constexpr double kMajorInner = 0.86;                     // where labelled marks begin, as part of the radius

double GaugeAngle(const InstrumentReading& reading, double value);

// Marks of a scale at round numbers: multiples of 1, 2, 2.5 or 5 times a power of ten.
struct GaugeScale {
  double step;            // between labelled marks
  int parts;              // minor marks divide each step into so many
  long long first, last;  // the labelled marks are first * step to last * step
  int exponent;           // labels are divided by ten to this power, a multiple of 3; 0 unless that makes them shorter
  int labelDecimals;      // decimal places that the labels need
};
// The finest scale with at most `maxIntervals` steps across the range.
GaugeScale ChooseScale(double minimum, double maximum, int maxIntervals);
double LabelValue(const GaugeScale& scale, long long index);

// Middle of a label of this size so that it just touches a circle of `radius` from within, in the given direction.
PointD LabelCentre(PointD centre, double radius, double degrees, SIZE label);

// The extent of a text in a font of this cell height (pixels) and weight.
using TextMeasure = SIZE (*)(std::wstring_view text, int height, int weight);

// A text in the middle of its box; not shown when `height`, that of its font's cell, is 0.
struct GaugeText {
  FixedText text;
  int height, weight;
  RECT box;
};

// A scale has at most eleven labels, rounding aside.
using GaugeLabels = FixedList<GaugeText, 16>;

struct GaugeLayout {
  Dial dial;
  GaugeScale scale;
  GaugeLabels labels;    // empty when there is no room for any
  GaugeText name, unit;  // below the hub, whole or not at all
  double reach;          // of the needle: it crosses out no label
};
GaugeLayout LayOutGauge(const RECT& area, const InstrumentBlock& block, TextMeasure measure);

// The window of the value. A dial that is too small for a window shows the value alone at this place, or none.
inline constexpr double kMinRadiusWithWindow = 40, kMinRadiusWithValue = 20;
inline constexpr double kMinRadiusWithLabels = 36;
RECT GaugeValueBox(const Dial& dial);
GaugeText LayOutGaugeValue(const Dial& dial, const InstrumentBlock& block, TextMeasure measure);

}  // namespace kv
