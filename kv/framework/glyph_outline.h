// Outlines of single characters, for text that rotates smoothly. Once read, an outline is plain data, which any number
// of canvases of one thread can use.
#pragma once

#include <windows.h>

#include <array>

#include "kv/framework/canvas.h"

namespace kv {

// Closed contours in units of the height of capital letters, y downwards, with the origin in the middle of the
// character's box. Curves are flattened finely enough for characters of 100 pixels.
struct GlyphOutline {
  static constexpr int kMaxPoints = 320, kMaxContours = 8;
  struct Point {
    float x, y;
  };
  std::array<Point, kMaxPoints> points;
  std::array<int, kMaxContours> ends;  // one past the last point of each contour
  int contours;
  double advance;  // from this character to the next
};

// Reads the outline of a character from an outline font of this name. Returns false, with no contours, when there is
// none or it exceeds the capacity.
bool OutlineOfCharacter(const wchar_t* faceName, int weight, wchar_t character, GlyphOutline* outline);

// Draws an outline, with capitals `height` pixels tall and the width multiplied by `stretch`, moved by `along` on its
// baseline and rotated about `center`.
void FillGlyph(Canvas& canvas, const GlyphOutline& glyph, PointD center, double along, double height, double degrees,
               const Paint& paint, double stretch = 1);

// Adds the outline to the shape begun with BeginShape. If the shape has no capacity left, it is filled with `paint` and
// a new one begins; finish with FillShape and the same paint.
void AddGlyph(Canvas& canvas, const GlyphOutline& glyph, PointD center, double along, double height, double degrees,
              const Paint& paint, double stretch = 1);

}  // namespace kv
