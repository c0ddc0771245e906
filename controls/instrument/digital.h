// The geometry of the digital readout: a caption over a black display with seven-segment characters, slanted, lit
// beside unlit ones. Pure functions; any thread.
#pragma once

#include <windows.h>

#include <array>

#include "controls/instrument/fixed_text.h"
#include "framework/coverage.h"

namespace kv {

// Segments of a character: the seven, clockwise from the top, then the middle; and strokes that only letters and the
// plus need, which therefore do not show unlit.
enum Segment : unsigned {
  kSegmentTop = 1,
  kSegmentUpperRight = 2,
  kSegmentLowerRight = 4,
  kSegmentBottom = 8,
  kSegmentLowerLeft = 16,
  kSegmentUpperLeft = 32,
  kSegmentMiddle = 64,
  kStrokeUpright = 128,     // the plus
  kStrokeMiddleLeft = 256,  // halves of the middle segment
  kStrokeMiddleRight = 512,
  kStrokeStemUpper = 1024,  // half-way between left and right
  kStrokeStemLower = 2048,
  kArmUpperLeft = 4096,  // from the character's middle towards its corners
  kArmUpperRight = 8192,
  kArmLowerRight = 16384,
  kArmLowerLeft = 32768,
};
inline constexpr int kSevenSegments = 7, kAllStrokes = 16;

// What stands between a character and the next, in a narrow cell of its own.
enum class Separator { kNone, kPoint, kColon, kDegree, kMinute, kSecond };

struct DigitCell {
  unsigned segments;
  Separator separator;
};

// Lit segments of a character: digits, minus (and dash), plus, and the letters A to Z, small ones as capitals; 0
// (blank) for all others.
unsigned SegmentsOf(char character);

// The characters of a text, of which at most kMaxDigits are shown; each '.' becomes the separator that `style` asks
// for in its place (kInstrumentShowTime ...) behind the character before it, or behind a blank when there is none.
inline constexpr int kMaxDigits = 32;
struct DigitCells {
  std::array<DigitCell, kMaxDigits> cells;
  int count;
  const DigitCell* begin() const { return cells.data(); }
  const DigitCell* end() const { return cells.data() + count; }
};
DigitCells CellsOf(const char* text, DWORD style);

// The text as it is read out: without padding, with the signs that the separators stand for.
FixedText ReadableDigits(const char* text, DWORD style);

// A character's place: all of one size, in the middle of the area.
struct DigitBox {
  double left, top, width, height;  // of its upright box
  double stroke;                    // thickness of a segment
  double between, separator;        // room between two characters, and that of a separator besides
};
using DigitBoxes = std::array<DigitBox, kMaxDigits>;
DigitBoxes LayOutDigits(const RECT& area, const DigitCells& cells);

// Corners of a segment or stroke (bit number 0..kAllStrokes - 1) of a character.
struct StrokeCorners {
  std::array<PointD, 6> corners;
  int count;
  const PointD& operator[](int i) const { return corners[i]; }
  const PointD* begin() const { return corners.data(); }
  const PointD* end() const { return corners.data() + count; }
};
StrokeCorners CornersOf(const DigitBox& place, int stroke);

struct DigitalParts {
  int captionHeight;  // also the caption's font; 0 without a caption
  RECT caption;
  RECT display;  // with its frame
};
DigitalParts LayOutDigital(const RECT& area, DWORD style);

}  // namespace kv
