// The circular gauge: a dial of 270 degrees with scale, coloured zones, needle, name, unit and value. The geometry is
// pure; drawing takes a device context and a rectangle and works from a few pixels to thousands.
#pragma once

#include "controls/instrument_view.h"
#include "framework/supersample.h"

namespace kv {

inline constexpr double kGaugeStart = -135, kGaugeSweep = 270;  // degrees clockwise from the top

double GaugeAngle(const InstrumentReading& reading, double value);

// Marks of a scale at round numbers: multiples of 1, 2, 2.5 or 5 times a power of ten.
struct GaugeScale {
  double step;            // between labelled marks
  int parts;              // minor marks divide each step into so many
  long long first, last;  // the labelled marks are first * step to last * step
  int exponent;           // labels are divided by ten to this power, a multiple of 3
  int labelPlaces;        // decimal places that the labels need
};
// The finest scale with at most `mostIntervals` steps across the range.
GaugeScale ChooseScale(double minimum, double maximum, int mostIntervals);
double LabelValue(const GaugeScale& scale, long long index);

// Middle of a label of this size so that it just touches a circle of `radius` from within, in the given direction.
PointD LabelCentre(PointD centre, double radius, double degrees, SIZE label);
// Whether any label comes closer to its follower than `gap` pixels.
bool LabelsCollide(std::span<const PointD> centres, std::span<const SIZE> sizes, double gap);

void DrawGaugeFace(HDC dc, const RECT& area, const InstrumentView& view);
void DrawGaugeValue(HDC dc, const RECT& area, const InstrumentView& view);

}  // namespace kv
