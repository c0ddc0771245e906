// The geometry of the digital readout: a caption above a black display with slanted seven-segment characters, whose
// unlit segments are visible. Pure functions; any thread.
#pragma once

#include <windows.h>

#include <array>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/framework/coverage.h"

namespace kv {

// Segments of a character: six clockwise from the top, the middle one, and strokes for letters and the plus sign, which
// are invisible when unlit.
enum Segment : unsigned {
  kSegmentTop = 1,
  kSegmentUpperRight = 2,
  kSegmentLowerRight = 4,
  kSegmentBottom = 8,
  kSegmentLowerLeft = 16,
  kSegmentUpperLeft = 32,
  kSegmentMiddle = 64,
  kStrokeUpright = 128,     // of the plus sign
  kStrokeMiddleLeft = 256,  // halves of the middle segment
  kStrokeMiddleRight = 512,
  kStrokeStemUpper = 1024,  // in the middle between left and right
  kStrokeStemLower = 2048,
  kArmUpperLeft = 4096,  // from the character's center toward its corners
  kArmUpperRight = 8192,
  kArmLowerRight = 16384,
  kArmLowerLeft = 32768,
};
inline constexpr int kSevenSegments = 7, kAllStrokes = 16;

// The separator between a character and the next one, in a separate narrow cell.
enum class Separator { kNone, kPoint, kColon, kDegree, kMinute, kSecond };

struct DigitCell {
  unsigned segments;
  Separator separator;
};

// The lit segments of a digit, minus (or dash), plus, or letter A to Z in either case; 0 (blank) for all others.
unsigned SegmentsOf(char character);

// The characters of a text, at most kMaxDigits. Each '.' becomes the separator of the style (kInstrumentShowTime ...)
// after the previous character, or after a blank if there is none.
inline constexpr int kMaxDigits = 32;
struct DigitCells {
  std::array<DigitCell, kMaxDigits> cells;
  int count;
  const DigitCell* begin() const { return cells.data(); }
  const DigitCell* end() const { return cells.data() + count; }
};
DigitCells CellsOf(const char* text, DWORD style);

// The text for accessibility: without padding, with separators as characters.
FixedText ReadableDigits(const char* text, DWORD style);

// The box of a character; all have the same size and are centered in the area.
struct DigitBox {
  double left, top, width, height;  // the upright box
  double stroke;                    // thickness of a segment
  double between, separator;        // space between two characters; additional space of a separator
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
StrokeCorners CornersOf(const DigitBox& box, int stroke);

struct DigitalParts {
  int captionHeight;  // also the height of its font; 0 without a caption
  RECT caption;
  RECT display;  // including its frame
};
DigitalParts LayOutDigital(const RECT& area, DWORD style);

}  // namespace kv
