// Antialiased drawing into a 32-bit bitmap. Shapes are converted to exact area coverage (kv/framework/coverage.h) and
// blended once, so the result is the same on every system. GDI can draw into the same bitmap in between, for text and
// frames.
//
// Coordinates are in pixels, with whole numbers at the edges between pixels; angles are degrees clockwise from the top.
// Nothing throws: a shape is not drawn if allocation fails or it has too many edges. NaN and empty or reversed
// dimensions draw nothing. A surface and its canvas belong to one thread at a time.
#pragma once

#include <windows.h>

#include <span>

#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"

namespace kv {

// A top-down 32-bit DIB section. Owns the bitmap.
class Surface {
 public:
  // Recreates the bitmap at this size, with undefined content. Returns false, and has no bitmap, when the size is empty
  // or allocation fails.
  bool Create(SIZE size);
  // The same unless it has this size already. Returns whether the content is undefined now.
  bool Resize(SIZE size);
  void Reset();
  // Copies everything to the top left of `target`, if there is a bitmap. `memory` is a memory device context.
  void Show(HDC target, HDC memory) const;

  HBITMAP bitmap() const { return bitmap_; }
  SIZE size() const { return size_; }
  // Flush GDI before accessing the pixels; Canvas does.
  DWORD* Row(LONG y) const { return pixels_ + static_cast<size_t>(y) * size_.cx; }

 private:
  OwnedBitmap bitmap_;
  SIZE size_{};
  DWORD* pixels_ = nullptr;
};

// Draws on a surface, which must have a bitmap. The bitmap is selected into `dc`, a memory device context, as long as
// the canvas lives. Shapes are computed in `shape`. The caller owns both and can reuse them for the next canvas.
class Canvas {
 public:
  Canvas(HDC dc, const Surface& surface, CoverageShape& shape);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  // For drawing with GDI, which is flushed before the next shape is drawn.
  HDC dc();
  // Clips all drawing, including GDI's, to this part of the bitmap.
  void ClipTo(const RECT& area);
  const RECT& clip() const { return clip_; }
  // Returns whether the area is completely outside the clip.
  bool Hides(const RECT& area) const;

  const Surface& surface() const { return surface_; }
  CoverageShape& shape() { return shape_; }
  // Flushes GDI. Call before accessing the surface's pixels.
  void FinishGdi();

 private:
  HDC dc_;
  const Surface& surface_;
  CoverageShape& shape_;
  SelectedObject selected_;
  RECT clip_;
  bool gdiDrew_ = true;  // GDI may have drawn on the surface before
  bool gdiKnowsClip_ = true, gdiIsClipped_ = false;
};

// The fill of a shape: one color, or a vertical gradient between the heights `from` and `to`.
struct Paint {
  Paint(COLORREF color) : top(color), bottom(color) {}
  Paint(COLORREF upper, COLORREF lower, double start, double end) : top(upper), bottom(lower), from(start), to(end) {}
  COLORREF top, bottom;
  double from = 0, to = 0;
};

PointD PolarPoint(PointD center, double radius, double degrees);
// Returns the smallest rectangle of whole pixels around the points and `margin` pixels about them, within `limit`.
RECT BoundsOf(std::span<const PointD> points, double margin, const RECT& limit);

void FillPolygon(Canvas& canvas, std::span<const PointD> corners, const Paint& paint);
void FillDisc(Canvas& canvas, PointD center, double radius, const Paint& paint);
void FillGradientDisc(Canvas& canvas, PointD center, double radius, COLORREF top, COLORREF bottom);
// A sector of up to 360 degrees. With an `inner` radius of 0 it is a pie slice.
void FillAnnularSector(Canvas& canvas, PointD center, double inner, double outer, double from, double to,
                       const Paint& paint);
void FillLine(Canvas& canvas, PointD from, PointD to, double width, const Paint& paint);

// Fills whole pixels with one color, or with a gradient from left to right or from top to bottom.
void FillArea(Canvas& canvas, const RECT& area, COLORREF color);
void FillAreaAcross(Canvas& canvas, const RECT& area, COLORREF left, COLORREF right);
void FillAreaDown(Canvas& canvas, const RECT& area, COLORREF top, COLORREF bottom);

// Blends `count` pixels of a row: each channel becomes (new * coverage + old * (255 - coverage)) / 255, rounded.
// `color` is a pixel (PixelOfColor), coverage 0 to 255. For callers that compute coverage themselves.
void BlendPixels(DWORD* pixels, int count, DWORD color, DWORD coverage);

// Blends a color into an area of a surface in that way.
void BlendArea(const Surface& surface, const RECT& area, COLORREF color, DWORD coverage);

// Copies the clip area from a surface of the same size.
void CopyFrom(Canvas& canvas, const Surface& source);

// Drawing several contours as one shape, which is faster than one shape for each. BeginShape begins a shape within the
// clip; FillShape fills everything added to canvas.shape() since then.
void BeginShape(Canvas& canvas);
void AddLine(Canvas& canvas, PointD from, PointD to, double width);
void FillShape(Canvas& canvas, const Paint& paint);

}  // namespace kv
