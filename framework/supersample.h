// Smooth edges with plain GDI: draw larger into a picture in memory, then average it down. The result is the same on
// every system, because nothing depends on how a driver blends. Main thread only.
#pragma once

#include <windows.h>

#include <span>
#include <vector>

#include "framework/guards.h"

namespace kv {

// A place in pixels of the target; fractions count, since the enlarged picture resolves them.
struct PointD {
  double x, y;
};

// How many times larger an area of this size is drawn: 4, and less for areas so large that memory would suffer; 0 when
// the area is empty or too large to be held at all.
int SupersampleFactor(LONG width, LONG height);

// Opens an enlarged copy of `area` of the target, with what stands there already; on destruction the copy is averaged
// and put back, within the target's clipping region. What was not drawn on comes back unchanged. When memory is short
// the device context is null: drawing then fails harmlessly and the target stays as it was.
class Supersample {
 public:
  Supersample(HDC target, const RECT& area);
  ~Supersample();
  Supersample(const Supersample&) = delete;
  Supersample& operator=(const Supersample&) = delete;

  HDC dc() const { return enlargedDc_; }
  int factor() const { return factor_; }
  // Where a place of the target lies in the enlarged picture.
  POINT At(PointD place) const;

 private:
  void Enlarge();
  void Average();

  HDC target_;
  RECT area_;
  int factor_;
  MemoryDc plainDc_, enlargedDc_;
  OwnedBitmap plain_, enlarged_;  // no enlarged one of its own when the kept picture serves
  bool usesKept_ = false;
  size_t stride_ = 0;  // pixels from one row of the enlarged picture to the next
  DWORD* plainPixels_ = nullptr;
  DWORD* enlargedPixels_ = nullptr;
  HGDIOBJ previousPlain_ = nullptr, previousEnlarged_ = nullptr;
};

// The smallest rectangle of whole pixels around some places and `margin` pixels about them, within `limit`.
RECT BoundsOf(std::span<const PointD> places, double margin, const RECT& limit);

// Shapes, in places of the target. Angles are degrees clockwise from the top.
PointD PolarPoint(PointD centre, double radius, double degrees);
void FillPolygon(const Supersample& canvas, std::span<const PointD> corners, COLORREF color);
void FillDisc(const Supersample& canvas, PointD centre, double radius, COLORREF color);
void FillGradientDisc(const Supersample& canvas, PointD centre, double radius, COLORREF top, COLORREF bottom);
void FillRingSector(const Supersample& canvas, PointD centre, double inner, double outer, double from, double to,
                    COLORREF color);
void FillLine(const Supersample& canvas, PointD from, PointD to, double width, COLORREF color);

// The outline of one character: closed figures in units of the capital letters' height, y downwards, the origin in the
// middle of the character's box of capital height. For letters that turn with what they stand on.
using GlyphOutline = std::vector<std::vector<PointD>>;
GlyphOutline OutlineOfCharacter(const wchar_t* faceName, int weight, wchar_t character, double* advance);
// Draws an outline with its capitals `height` pixels tall, moved `along` its own base line and turned about `centre`.
void FillGlyph(const Supersample& canvas, const GlyphOutline& glyph, PointD centre, double along, double height,
               double degrees, COLORREF color);

}  // namespace kv
