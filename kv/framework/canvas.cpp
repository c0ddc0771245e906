#include "kv/framework/canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>

#include "kv/framework/bitmaps.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"

namespace kv {

namespace {

COLORREF Between(COLORREF from, COLORREF to, double part) {
  const double t = part > 0 ? std::min(part, 1.0) : 0.0;
  const auto channel = [t](BYTE a, BYTE b) { return static_cast<BYTE>(a + (b - a) * t + 0.5); };
  return RGB(channel(GetRValue(from), GetRValue(to)), channel(GetGValue(from), GetGValue(to)),
             channel(GetBValue(from), GetBValue(to)));
}

// One channel of a gradient over `width` pixels, from pixel `index` on: the nearest level at the center of each pixel.
// Without a division per pixel, because bars are many small gradients.
class ChannelRamp {
 public:
  ChannelRamp(int from, int to, int width, int index) : step_(2 * (to - from)), unit_(2 * width) {
    const int start = (2 * from + 1) * width + (to - from) * (2 * index + 1);
    level_ = start / unit_;
    rest_ = start % unit_;
  }
  BYTE Next() {
    const int level = level_;
    for (rest_ += step_; rest_ >= unit_; rest_ -= unit_) ++level_;
    for (; rest_ < 0; rest_ += unit_) --level_;
    return static_cast<BYTE>(level);
  }

 private:
  int step_, unit_;  // in parts of which `unit_` are one level
  int level_, rest_;
};

DWORD PixelAt(const Paint& paint, LONG y) {
  if (paint.top == paint.bottom) return PixelOfColor(paint.top);
  return PixelOfColor(Between(paint.top, paint.bottom, (y + 0.5 - paint.from) / (paint.to - paint.from)));
}

// Returns the number of chords for an arc with an error of at most 1/200 pixel, limited by the capacity of a shape.
int ChordsOf(double radius, double degrees) {
  constexpr double kSagitta = 0.005;
  constexpr int kMaxChords = CoverageShape::kMaxEdges / 2 - 2;
  if (radius <= kSagitta) return 3;
  const double chords = std::ceil(degrees * kRadiansPerDegree / (2 * std::acos(1 - kSagitta / radius)));
  return static_cast<int>(std::clamp(chords, 3.0, static_cast<double>(kMaxChords)));
}

// Corners along an arc, both ends included, on a slightly larger circle, so that the polygon has the area of the
// sector.
void PutArc(PointD* corners, PointD center, double radius, double from, double to, int chords) {
  const double step = (to - from) * kRadiansPerDegree / chords, sine = std::sin(step), cosine = std::cos(step);
  const double larger = radius * std::sqrt(step / sine);
  PointD point = PolarPoint({0, 0}, larger, from);
  for (int i = 0; i <= chords; ++i) {
    corners[i] = {center.x + point.x, center.y + point.y};
    point = {point.x * cosine - point.y * sine, point.x * sine + point.y * cosine};
  }
}

}  // namespace

// ---- Surface and canvas ---------------------------------------------------------------------------------------------

bool Surface::Create(SIZE size) {
  Reset();
  if (size.cx <= 0 || size.cy <= 0) return false;
  const BITMAPINFO info = TopDownBitmapInfo(size.cx, size.cy);
  void* bits = nullptr;
  bitmap_.Reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap_) return false;
  pixels_ = static_cast<DWORD*>(bits);
  size_ = size;
  return true;
}

bool Surface::Resize(SIZE size) {
  if (size_.cx == size.cx && size_.cy == size.cy) return false;
  Create(size);
  return true;
}

void Surface::Show(HDC target, HDC memory) const {
  if (!bitmap_) return;
  const SelectedObject selected(memory, bitmap_);
  BitBlt(target, 0, 0, size_.cx, size_.cy, memory, 0, 0, SRCCOPY);
}

void Surface::Reset() {
  bitmap_.Reset();
  pixels_ = nullptr;
  size_ = {};
}

Canvas::Canvas(HDC dc, const Surface& surface, CoverageShape& shape)
    : dc_(dc),
      surface_(surface),
      shape_(shape),
      selected_(dc, surface.bitmap()),
      clip_{0, 0, surface.size().cx, surface.size().cy} {}

Canvas::~Canvas() {
  FinishGdi();
  if (gdiIsClipped_) SelectClipRgn(dc_, nullptr);
}

HDC Canvas::dc() {
  if (!gdiKnowsClip_) {
    if (gdiIsClipped_) SelectClipRgn(dc_, nullptr);
    IntersectClipRect(dc_, clip_.left, clip_.top, clip_.right, clip_.bottom);
    gdiKnowsClip_ = gdiIsClipped_ = true;
  }
  gdiDrew_ = true;
  return dc_;
}

void Canvas::ClipTo(const RECT& area) {
  const RECT whole{0, 0, surface_.size().cx, surface_.size().cy};
  if (!IntersectRect(&clip_, &whole, &area)) clip_ = {};
  gdiKnowsClip_ = false;
}

bool Canvas::Hides(const RECT& area) const {
  RECT seen;
  return !IntersectRect(&seen, &area, &clip_);
}

void Canvas::FinishGdi() {
  if (gdiDrew_) GdiFlush();
  gdiDrew_ = false;
}

// ---- Geometry -------------------------------------------------------------------------------------------------------

PointD PolarPoint(PointD center, double radius, double degrees) {
  const double radians = degrees * kRadiansPerDegree;
  return {center.x + radius * std::sin(radians), center.y - radius * std::cos(radians)};
}

RECT BoundsOf(std::span<const PointD> points, double margin, const RECT& limit) {
  double left = limit.right, top = limit.bottom, right = limit.left, bottom = limit.top;
  for (const PointD& point : points) {
    left = std::min(left, point.x - margin);
    top = std::min(top, point.y - margin);
    right = std::max(right, point.x + margin);
    bottom = std::max(bottom, point.y + margin);
  }
  const auto within = [](double value, LONG low, LONG high) {
    return static_cast<LONG>(std::clamp(value, static_cast<double>(low), static_cast<double>(high)));
  };
  return {within(std::floor(left), limit.left, limit.right), within(std::floor(top), limit.top, limit.bottom),
          within(std::ceil(right), limit.left, limit.right), within(std::ceil(bottom), limit.top, limit.bottom)};
}

// ---- Shapes ---------------------------------------------------------------------------------------------------------

// Red and blue are computed in one word.
void BlendPixels(DWORD* pixels, int count, DWORD color, DWORD coverage) {
  const DWORD rest = 255 - coverage;
  const DWORD redBlue = (color & 0xFF00FF) * coverage + 0x800080, green = (color >> 8 & 0xFF) * coverage + 0x80;
  for (DWORD* end = pixels + count; pixels < end; ++pixels) {
    DWORD both = (*pixels & 0xFF00FF) * rest + redBlue, one = (*pixels >> 8 & 0xFF) * rest + green;
    both = (both + (both >> 8 & 0xFF00FF)) >> 8 & 0xFF00FF;
    one = (one + (one >> 8)) >> 8;
    *pixels = both | one << 8;
  }
}

void BeginShape(Canvas& canvas) {
  const RECT& clip = canvas.clip();
  canvas.shape().Begin({clip.left, clip.top, clip.right, clip.bottom});
}

void FillShape(Canvas& canvas, const Paint& paint) {
  canvas.FinishGdi();
  int y = 0;
  for (std::span<const CoverageSpan> spans; !(spans = canvas.shape().NextRow(&y)).empty();) {
    const DWORD color = PixelAt(paint, y);
    DWORD* row = canvas.surface().Row(y);
    for (const CoverageSpan& span : spans) {
      if (span.coverage == 255) {
        std::fill_n(row + span.x, span.count, color);
      } else {
        BlendPixels(row + span.x, span.count, color, span.coverage);
      }
    }
  }
}

void FillPolygon(Canvas& canvas, std::span<const PointD> corners, const Paint& paint) {
  BeginShape(canvas);
  if (canvas.shape().AddContour(corners)) FillShape(canvas, paint);
}

void FillDisc(Canvas& canvas, PointD center, double radius, const Paint& paint) {
  FillAnnularSector(canvas, center, 0, radius, 0, 360, paint);
}

void FillGradientDisc(Canvas& canvas, PointD center, double radius, COLORREF top, COLORREF bottom) {
  FillDisc(canvas, center, radius, Paint(top, bottom, center.y - radius, center.y + radius));
}

void FillAnnularSector(Canvas& canvas, PointD center, double inner, double outer, double from, double to,
                       const Paint& paint) {
  if (!(to > from) || !(outer > inner) || !(inner >= 0) || !(to - from <= 360)) return;
  std::array<PointD, CoverageShape::kMaxEdges> corners;
  const int chords = ChordsOf(outer, to - from), innerChords = inner > 0 ? ChordsOf(inner, to - from) : 0;
  PutArc(corners.data(), center, outer, from, to, chords);
  if (innerChords) {
    PutArc(&corners[chords + 1], center, inner, to, from, innerChords);
  } else {
    corners[chords + 1] = center;
  }
  FillPolygon(canvas, {corners.data(), static_cast<size_t>(chords + innerChords) + 2}, paint);
}

void AddLine(Canvas& canvas, PointD from, PointD to, double width) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  if (!(length > 0)) return;
  const double dx = (to.y - from.y) / length * width / 2, dy = (from.x - to.x) / length * width / 2;
  const PointD corners[] = {
      {from.x + dx, from.y + dy}, {to.x + dx, to.y + dy}, {to.x - dx, to.y - dy}, {from.x - dx, from.y - dy}};
  canvas.shape().AddContour(corners);
}

void FillLine(Canvas& canvas, PointD from, PointD to, double width, const Paint& paint) {
  BeginShape(canvas);
  AddLine(canvas, from, to, width);
  FillShape(canvas, paint);
}

// ---- Whole pixels ---------------------------------------------------------------------------------------------------

void FillArea(Canvas& canvas, const RECT& area, COLORREF color) {
  FillAreaDown(canvas, area, color, color);
}

void FillAreaAcross(Canvas& canvas, const RECT& area, COLORREF left, COLORREF right) {
  RECT seen;
  if (!IntersectRect(&seen, &area, &canvas.clip())) return;
  canvas.FinishGdi();
  DWORD* first = canvas.surface().Row(seen.top);
  const int width = area.right - area.left, skipped = seen.left - area.left;
  const auto ramp = [=](BYTE from, BYTE to) { return ChannelRamp(from, to, width, skipped); };
  ChannelRamp red = ramp(GetRValue(left), GetRValue(right)), green = ramp(GetGValue(left), GetGValue(right));
  ChannelRamp blue = ramp(GetBValue(left), GetBValue(right));
  for (LONG x = seen.left; x < seen.right; ++x) first[x] = PixelOfColor(RGB(red.Next(), green.Next(), blue.Next()));
  for (LONG y = seen.top + 1; y < seen.bottom; ++y) {
    std::memcpy(canvas.surface().Row(y) + seen.left, first + seen.left, (seen.right - seen.left) * sizeof(DWORD));
  }
}

void FillAreaDown(Canvas& canvas, const RECT& area, COLORREF top, COLORREF bottom) {
  RECT seen;
  if (!IntersectRect(&seen, &area, &canvas.clip())) return;
  canvas.FinishGdi();
  const Paint paint(top, bottom, area.top, area.bottom);
  for (LONG y = seen.top; y < seen.bottom; ++y) {
    std::fill_n(canvas.surface().Row(y) + seen.left, seen.right - seen.left, PixelAt(paint, y));
  }
}

void BlendArea(const Surface& surface, const RECT& area, COLORREF color, DWORD coverage) {
  RECT seen;
  const RECT whole{0, 0, surface.size().cx, surface.size().cy};
  if (!IntersectRect(&seen, &area, &whole)) return;
  for (LONG y = seen.top; y < seen.bottom; ++y) {
    BlendPixels(surface.Row(y) + seen.left, seen.right - seen.left, PixelOfColor(color), coverage);
  }
}

void CopyFrom(Canvas& canvas, const Surface& source) {
  const RECT& clip = canvas.clip();
  canvas.FinishGdi();
  for (LONG y = clip.top; y < clip.bottom; ++y) {
    std::memcpy(canvas.surface().Row(y) + clip.left, source.Row(y) + clip.left,
                (clip.right - clip.left) * sizeof(DWORD));
  }
}

}  // namespace kv
