// Drawing with smooth edges into a picture of 32-bit pixels. Shapes are turned into exact coverage
// (framework/coverage.h) and blended once, so the result is the same on every system; GDI may draw into the same
// picture in between, for text and frames.
//
// Places are in pixels, whole numbers the edges between them; angles are degrees clockwise from the top. Nothing
// throws: when allocation fails, or a shape has more edges than can be held, that shape is not drawn. What is no
// number, empty or backwards draws nothing. A surface and its canvas belong to one thread at a time.
#pragma once

#include <windows.h>

#include <span>

#include "framework/coverage.h"
#include "framework/guards.h"

namespace kv {

// A picture: a top-down DIB section. Owns the bitmap.
class Surface {
 public:
  // Recreates the bitmap at this size, its content undefined. False, without a bitmap, when the size is empty or
  // allocation fails.
  bool Create(SIZE size);
  void Reset();

  HBITMAP bitmap() const { return bitmap_; }
  SIZE size() const { return size_; }
  // GDI must be flushed before its pixels are touched: Canvas does.
  DWORD* Row(LONG y) const { return pixels_ + static_cast<size_t>(y) * size_.cx; }

 private:
  OwnedBitmap bitmap_;
  SIZE size_{};
  DWORD* pixels_ = nullptr;
};

// One round of drawing on a surface, which must have a picture: its bitmap is selected into `dc` (a memory device
// context) as long as the canvas lives. `shape` is the buffer in which shapes are computed; it and the device context
// stay the caller's, who keeps them from one round to the next.
class Canvas {
 public:
  Canvas(HDC dc, const Surface& surface, CoverageShape& shape);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  // For drawing with GDI. What GDI draws is finished before the next shape.
  HDC dc();
  // Confines all drawing, GDI's too, to this part of the picture.
  void ClipTo(const RECT& area);
  const RECT& clip() const { return clip_; }
  // Whether nothing of the area can be seen.
  bool Hides(const RECT& area) const;

  const Surface& surface() const { return surface_; }
  CoverageShape& shape() { return shape_; }
  // Lets GDI finish; call before touching the surface's pixels.
  void FinishGdi();

 private:
  HDC dc_;
  const Surface& surface_;
  CoverageShape& shape_;
  SelectedObject selected_;
  RECT clip_;
  bool gdiDrew_ = true;  // whoever had the picture before may have
  bool gdiKnowsClip_ = true, gdiIsClipped_ = false;
};

// What a shape is filled with: one colour, or two blended from one height to another.
struct Paint {
  Paint(COLORREF color) : top(color), bottom(color) {}
  Paint(COLORREF upper, COLORREF lower, double start, double end) : top(upper), bottom(lower), from(start), to(end) {}
  COLORREF top, bottom;
  double from = 0, to = 0;
};

PointD PolarPoint(PointD centre, double radius, double degrees);
// The smallest rectangle of whole pixels around some places and `margin` pixels about them, within `limit`.
RECT BoundsOf(std::span<const PointD> places, double margin, const RECT& limit);

void FillPolygon(Canvas& canvas, std::span<const PointD> corners, const Paint& paint);
void FillDisc(Canvas& canvas, PointD centre, double radius, const Paint& paint);
void FillGradientDisc(Canvas& canvas, PointD centre, double radius, COLORREF top, COLORREF bottom);
// A sector of up to 360 degrees; no ring, but a piece of cake, for an `inner` radius of 0.
void FillAnnularSector(Canvas& canvas, PointD centre, double inner, double outer, double from, double to,
                       const Paint& paint);
void FillLine(Canvas& canvas, PointD from, PointD to, double width, const Paint& paint);

// Whole pixels, blended from one colour to the other from left to right or from top to bottom, or of one colour.
void FillArea(Canvas& canvas, const RECT& area, COLORREF color);
void FillAreaAcross(Canvas& canvas, const RECT& area, COLORREF left, COLORREF right);
void FillAreaDown(Canvas& canvas, const RECT& area, COLORREF top, COLORREF bottom);

// Neighbouring pixels of a row: each channel becomes (new * coverage + old * (255 - coverage)) / 255, rounded. `color`
// is a pixel (PixelOfColor), coverage 0 to 255. For whoever computes the coverage of pixels himself.
void BlendPixels(DWORD* pixels, int count, DWORD color, DWORD coverage);

// Copies the canvas's clip from a surface of the same size.
void CopyFrom(Canvas& canvas, const Surface& source);

// Fills what has been added to canvas.shape() since the last canvas.shape().Begin(): for shapes of several contours,
// which cost less in one. BeginShape starts one within the canvas's clip.
void BeginShape(Canvas& canvas);
void AddLine(Canvas& canvas, PointD from, PointD to, double width);
void FillShape(Canvas& canvas, const Paint& paint);

}  // namespace kv
