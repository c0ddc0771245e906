#include "kv/controls/instrument/digital.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/view.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

// Proportions of a character relative to its height.
constexpr double kWidth = 0.54, kStroke = 0.115, kBetween = 0.17, kSeparator = 0.20, kSlant = 0.10;
// Margins around the characters.
constexpr double kMarginX = 0.03, kMarginY = 0.10;

constexpr int kCaptionRightMargin = 4;

constexpr unsigned kLeftSide = kSegmentUpperLeft | kSegmentLowerLeft,
                   kRightSide = kSegmentUpperRight | kSegmentLowerRight, kStem = kStrokeStemUpper | kStrokeStemLower,
                   kRing = kSegmentTop | kSegmentBottom | kLeftSide | kRightSide;
constexpr unsigned kLetters[] = {
    kRing - kSegmentBottom + kSegmentMiddle,                                        // A
    kSegmentTop | kSegmentBottom | kRightSide | kStem | kStrokeMiddleRight,         // B
    kRing - kRightSide,                                                             // C
    kSegmentTop | kSegmentBottom | kRightSide | kStem,                              // D
    kRing - kRightSide + kSegmentMiddle,                                            // E
    kSegmentTop | kLeftSide | kSegmentMiddle,                                       // F
    kRing - kSegmentUpperRight + kStrokeMiddleRight,                                // G
    kLeftSide | kRightSide | kSegmentMiddle,                                        // H
    kSegmentTop | kSegmentBottom | kStem,                                           // I
    kRightSide | kSegmentBottom | kSegmentLowerLeft,                                // J
    kLeftSide | kStrokeMiddleLeft | kArmUpperRight | kArmLowerRight,                // K
    kLeftSide | kSegmentBottom,                                                     // L
    kLeftSide | kRightSide | kArmUpperLeft | kArmUpperRight,                        // M
    kLeftSide | kRightSide | kArmUpperLeft | kArmLowerRight,                        // N
    kRing,                                                                          // O
    kRing - kSegmentBottom - kSegmentLowerRight + kSegmentMiddle,                   // P
    kRing | kArmLowerRight,                                                         // Q
    kRing - kSegmentBottom - kSegmentLowerRight + kSegmentMiddle + kArmLowerRight,  // R
    kRing - kSegmentUpperRight - kSegmentLowerLeft + kSegmentMiddle,                // S
    kSegmentTop | kStem,                                                            // T
    kRing - kSegmentTop,                                                            // U
    kLeftSide | kArmUpperRight | kArmLowerLeft,                                     // V
    kLeftSide | kRightSide | kArmLowerLeft | kArmLowerRight,                        // W
    kArmUpperLeft | kArmUpperRight | kArmLowerRight | kArmLowerLeft,                // X
    kArmUpperLeft | kArmUpperRight | kStrokeStemLower,                              // Y
    kSegmentTop | kSegmentBottom | kArmUpperRight | kArmLowerLeft,                  // Z
};
static_assert(std::size(kLetters) == 26);

Separator SeparatorAt(DWORD style, int index) {
  if (style & kInstrumentShowTime) return Separator::kColon;
  if (style & kInstrumentShowDate) return Separator::kPoint;
  if (!(style & kInstrumentShowAngle)) return Separator::kPoint;
  constexpr Separator kOfAngle[] = {Separator::kDegree, Separator::kMinute, Separator::kPoint, Separator::kSecond};
  return index < 4 ? kOfAngle[index] : Separator::kNone;
}

// The width of a character with the space or separator after it, relative to the character height.
double CellWidth(const DigitCell& cell) {
  return kWidth + kBetween + (cell.separator == Separator::kNone ? 0.0 : kSeparator);
}

// Converts a point of a character's upright box to its slanted position in the target.
PointD Slanted(const DigitBox& box, double x, double y) {
  return {box.left + x + (box.height - y) * kSlant, box.top + y};
}

// A bar with pointed ends from one node of the character to another, with a gap to its neighbors.
StrokeCorners Bar(const DigitBox& box, PointD from, PointD to, double gap) {
  const double half = box.stroke / 2;
  const bool level = from.y == to.y;
  const double dx = level ? 1 : 0, dy = level ? 0 : 1;
  const PointD a{from.x + dx * gap, from.y + dy * gap}, b{to.x - dx * gap, to.y - dy * gap};
  const auto corner = [&](PointD end, double inwards, double aside) {
    return Slanted(box, end.x + dx * inwards + dy * aside, end.y + dy * inwards + dx * aside);
  };
  return {{corner(a, 0, 0), corner(a, half, -half), corner(b, -half, -half), corner(b, 0, 0), corner(b, -half, half),
           corner(a, half, half)},
          6};
}

// A diagonal arm with horizontal ends, thinner than a segment: two of them fork within a character.
StrokeCorners Arm(const DigitBox& box, PointD from, PointD to) {
  const double half = box.stroke * 0.38;
  return {{Slanted(box, from.x - half, from.y), Slanted(box, from.x + half, from.y), Slanted(box, to.x + half, to.y),
           Slanted(box, to.x - half, to.y)},
          4};
}

}  // namespace

unsigned SegmentsOf(char character) {
  constexpr unsigned kDigits[] = {0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};
  if (character >= '0' && character <= '9') return kDigits[character - '0'];
  if (character >= 'A' && character <= 'Z') return kLetters[character - 'A'];
  if (character >= 'a' && character <= 'z') return kLetters[character - 'a'];
  return character == '-' ? kSegmentMiddle : character == '+' ? kSegmentMiddle | kStrokeUpright : 0;
}

DigitCells CellsOf(const char* text, DWORD style) {
  DigitCells cells{};
  const auto add = [&cells](unsigned segments) {
    if (cells.count < kMaxDigits) cells.cells[cells.count++] = {segments, Separator::kNone};
  };
  int separators = 0;
  for (; *text; ++text) {
    if (*text != '.') {
      add(SegmentsOf(*text));
      continue;
    }
    if (cells.count == 0 || cells.cells[cells.count - 1].separator != Separator::kNone) add(0);
    cells.cells[cells.count - 1].separator = SeparatorAt(style, separators++);
  }
  return cells;
}

FixedText ReadableDigits(const char* text, DWORD style) {
  constexpr wchar_t kSigns[] = {L'.', L'.', L':', L'\u00B0', L'\'', L'"'};
  FixedText readable;
  for (int separators = 0; *text; ++text) {
    if (*text == ' ') continue;
    readable += *text != '.' ? static_cast<BYTE>(*text) : kSigns[static_cast<int>(SeparatorAt(style, separators++))];
  }
  return readable;
}

DigitBoxes LayOutDigits(const RECT& area, const DigitCells& cells) {
  const double width = std::max<LONG>(area.right - area.left, 0), height = std::max<LONG>(area.bottom - area.top, 0);
  double across = kSlant - kBetween;  // of all characters, relative to the height of one
  for (const DigitCell& cell : cells) across += CellWidth(cell);
  const double digitHeight = std::max(0.0, std::min(height * (1 - 2 * kMarginY), width * (1 - 2 * kMarginX) / across));
  DigitBoxes boxes;
  double left = area.left + (width - across * digitHeight) / 2;
  for (int i = 0; i < cells.count; ++i) {
    boxes[i] = {.left = left,
                .top = area.top + (height - digitHeight) / 2,
                .width = kWidth * digitHeight,
                .height = digitHeight,
                .stroke = kStroke * digitHeight,
                .between = kBetween * digitHeight,
                .separator = kSeparator * digitHeight};
    left += CellWidth(cells.cells[i]) * digitHeight;
  }
  return boxes;
}

StrokeCorners CornersOf(const DigitBox& box, int stroke) {
  const double t = box.stroke, gap = std::max(box.height * 0.012, 0.12);
  const double left = t / 2, right = box.width - t / 2, center = box.width / 2;
  const double top = t / 2, middle = box.height / 2, bottom = box.height - t / 2;
  const auto bar = [&](PointD from, PointD to) { return Bar(box, from, to, gap); };
  // Arms end beside the vertical segments.
  const auto arm = [&](double side, double end) {
    const double x = center + side * (box.width / 2 - t * 1.15);
    return Arm(box, {center, middle}, {x, end});
  };
  switch (1u << stroke) {
    case kSegmentTop: return bar({left, top}, {right, top});
    case kSegmentUpperRight: return bar({right, top}, {right, middle});
    case kSegmentLowerRight: return bar({right, middle}, {right, bottom});
    case kSegmentBottom: return bar({left, bottom}, {right, bottom});
    case kSegmentLowerLeft: return bar({left, middle}, {left, bottom});
    case kSegmentUpperLeft: return bar({left, top}, {left, middle});
    case kSegmentMiddle: return bar({left, middle}, {right, middle});
    case kStrokeUpright: {
      const double half = (right - left) * 0.55;
      return bar({center, middle - half}, {center, middle + half});
    }
    case kStrokeMiddleLeft: return bar({left, middle}, {center, middle});
    case kStrokeMiddleRight: return bar({center, middle}, {right, middle});
    case kStrokeStemUpper: return bar({center, top}, {center, middle});
    case kStrokeStemLower: return bar({center, middle}, {center, bottom});
    case kArmUpperLeft: return arm(-1, t);
    case kArmUpperRight: return arm(1, t);
    case kArmLowerRight: return arm(1, box.height - t);
    case kArmLowerLeft: return arm(-1, box.height - t);
    default: return {};
  }
}

DigitalParts LayOutDigital(const RECT& area, DWORD style) {
  const int height = area.bottom - area.top;
  DigitalParts parts{0, {}, area};
  if (height < kMinHeightWithCaption || (style & kInstrumentNoCaption)) return parts;
  parts.captionHeight =
      CaptionFontHeight(style & kInstrumentFitted ? std::min<int>(height, area.right - area.left) : height, style);
  parts.caption = {area.left, area.top, area.right - kCaptionRightMargin, area.top + parts.captionHeight};
  parts.display.top += parts.captionHeight;
  return parts;
}

// ---- Background

namespace {

void DrawBackground(Canvas& canvas, InstrumentAppearance& appearance) {
  FillArea(canvas, appearance.area, GetSysColor(COLOR_BTNFACE));
  const DigitalParts parts = LayOutDigital(appearance.area, appearance.style);
  if (parts.captionHeight) DrawCaption(canvas, parts.caption, appearance, parts.captionHeight, DT_CENTER);
  DrawDisplayWell(canvas, parts.display);
}

// ---- Value

struct Digit {
  DigitBox box;
  DigitCell cell;
};

void DrawSeparator(Canvas& canvas, const DigitBox& box, Separator separator, COLORREF color) {
  const double height = box.height, radius = box.stroke * 0.62;
  const double x = box.width + (box.between + box.separator) / 2;
  const auto tick = [&](double aside) {
    FillLine(canvas, Slanted(box, x + aside + radius * 0.3, 0), Slanted(box, x + aside - radius * 0.2, height * 0.22),
             box.stroke * 0.6, color);
  };
  switch (separator) {
    case Separator::kNone: break;
    case Separator::kPoint: FillDisc(canvas, Slanted(box, x, height - radius), radius, color); break;
    case Separator::kColon:
      FillDisc(canvas, Slanted(box, x, height * 0.30), radius, color);
      FillDisc(canvas, Slanted(box, x, height * 0.70), radius, color);
      break;
    case Separator::kDegree:
      FillAnnularSector(canvas, Slanted(box, x, height * 0.08), height * 0.045, height * 0.085, 0, 360, color);
      break;
    case Separator::kMinute: tick(0); break;
    case Separator::kSecond:
      tick(-box.stroke * 0.5);
      tick(box.stroke * 0.5);
      break;
  }
}

void DrawDigit(Canvas& canvas, const InstrumentAppearance& appearance, const Digit& digit) {
  const COLORREF lit = DisplayColor(appearance), unlit = ShadeColor(lit, kUnlit);
  for (int stroke = 0; stroke < kAllStrokes; ++stroke) {
    const bool isLit = (digit.cell.segments >> stroke) & 1;
    if (isLit || stroke < kSevenSegments) FillPolygon(canvas, CornersOf(digit.box, stroke), isLit ? lit : unlit);
  }
  DrawSeparator(canvas, digit.box, digit.cell.separator, lit);
}

void AddParts(ValueLayer& layer, const InstrumentBlock&, const char* text) {
  const InstrumentAppearance& appearance = layer.appearance();
  RECT area = WithinFrame(LayOutDigital(appearance.area, appearance.style).display);
  InflateRect(&area, -2, -1);
  const DigitCells cells = CellsOf(text, appearance.style);
  if (cells.count == 0 || IsRectEmpty(&area)) return;
  const DigitBoxes boxes = LayOutDigits(area, cells);
  for (int i = 0; i < cells.count; ++i) {
    const DigitBox& box = boxes[i];
    const double right = box.left + box.width + box.between + box.separator + box.height * kSlant;
    const PointD corners[] = {{box.left, box.top}, {right, box.top + box.height}};
    layer.Add(BoundsOf(corners, 1 + box.stroke, area), Digit{box, cells.cells[i]}, DrawDigit);
  }
}

}  // namespace

const ModeRenderer kDigitalRenderer{DrawBackground, AddParts};

}  // namespace kv
