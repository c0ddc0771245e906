// The geometry of the compass: a card with rose, marks and letters that turns under a fixed index, and the heading in
// its middle. Pure functions; any thread.
#pragma once

#include <array>

#include "controls/instrument/fixed_text.h"

namespace kv {

// The eight directions one after another, the four of one letter first.
inline constexpr wchar_t kDirectionLetters[] = L"NESWNESESWNW";

struct Direction {
  const wchar_t* letters;  // into kDirectionLetters
  int count;
  double bearing;  // degrees clockwise from north
};
std::array<Direction, 8> Directions();

// A heading from 0 up to, not including, 360.
double NormalHeading(double degrees);

// Where a bearing stands on the instrument (degrees clockwise from the top) while the card shows `heading`.
double CardAngle(double bearing, double heading);

// Degrees between the card's marks, as fine as the size allows: 10, 5, 2 or 1.
int MarkSpacing(double innerRadius);

// Three digits before the point, as headings are spoken; what rounds up to 360 is 0.
FixedText HeadingText(double degrees, int decimals);

}  // namespace kv
