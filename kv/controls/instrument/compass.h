// The geometry of the compass: a card with rose, marks and letters that rotates under a fixed index, and the heading in
// its center. Pure functions; any thread.
#pragma once

#include <array>

#include "kv/controls/instrument/fixed_text.h"

namespace kv {

// The eight directions, concatenated; the four with one letter are first.
inline constexpr wchar_t kDirectionLetters[] = L"NESWNESESWNW";

struct Direction {
  const wchar_t* letters;  // into kDirectionLetters
  int count;
  double bearing;  // degrees clockwise from north
};
std::array<Direction, 8> Directions();

// The position of a bearing, in degrees clockwise from the top, while the card shows `heading`.
double CardAngle(double bearing, double heading);

// Degrees between the card's marks, depending on the size: 10, 5, 2 or 1.
int MarkSpacing(double innerRadius);

// The heading with three digits before the point, as headings are spoken; if rounded up to 360, 0.
FixedText HeadingText(double degrees, int decimals);

}  // namespace kv
