// Outlines of single characters: for letters that turn with what they stand on, which no font could follow smoothly.
// Pure data once made, so any number of canvases on one thread may use them.
#pragma once

#include <windows.h>

#include <array>

#include "framework/canvas.h"

namespace kv {

// Closed contours in units of the capital letters' height, y downwards, the origin in the middle of the character's box
// of capital height. Curves are flattened finely enough for letters of a hundred pixels.
struct GlyphOutline {
  static constexpr int kMaxPoints = 320, kMaxContours = 8;
  struct Point {
    float x, y;
  };
  std::array<Point, kMaxPoints> points;
  std::array<int, kMaxContours> ends;  // behind the last point of each contour
  int contours;
  double advance;  // from this character to the next
};

// Reads the outline of a character in an outline font of this name. False, with an outline of no contours, when there
// is none or it is too complicated to be held.
bool OutlineOfCharacter(const wchar_t* faceName, int weight, wchar_t character, GlyphOutline* outline);

// Draws an outline with its capitals `height` pixels tall and `stretch` times as wide as the font has it, moved `along`
// its own base line and turned about `centre`.
void FillGlyph(Canvas& canvas, const GlyphOutline& glyph, PointD centre, double along, double height, double degrees,
               const Paint& paint, double stretch = 1);

// The same, added to the shape that has begun on the canvas (BeginShape). A shape without capacity for it is filled
// with `paint` and another begun; FillShape with the same paint ends the last one.
void AddGlyph(Canvas& canvas, const GlyphOutline& glyph, PointD centre, double along, double height, double degrees,
              const Paint& paint, double stretch = 1);

}  // namespace kv
