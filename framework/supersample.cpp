#include "framework/supersample.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "framework/painting.h"
#include "framework/picture.h"

namespace kv {

namespace {

constexpr int kLargestFactor = 4;
constexpr long long kMostPixels = 16LL * 1024 * 1024;  // 64 MB, for the moment of drawing

LONG RoundToLong(double value) {
  constexpr double kLimit = 1 << 24;  // far outside of every picture, yet harmless to GDI's arithmetic
  return std::isnan(value) ? 0 : std::lround(std::clamp(value, -kLimit, kLimit));
}

HBITMAP CreatePixels(HDC dc, LONG width, LONG height, DWORD** pixels) {
  const BITMAPINFO info = TopDownBitmapInfo(width, height);
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  *pixels = static_cast<DWORD*>(bits);
  return bitmap;
}

// Brush of the given colour and no outline, without making objects.
class FillScope {
 public:
  FillScope(HDC dc, COLORREF color) : brush_(dc, GetStockObject(DC_BRUSH)), pen_(dc, GetStockObject(NULL_PEN)) {
    SetDCBrushColor(dc, color);
  }

 private:
  SelectedObject brush_, pen_;
};

// Averages one row of the result from `factor` rows of the enlarged picture, red and blue together in one word.
void AverageRow(const DWORD* source, size_t stride, int factor, int width, DWORD* result) {
  const DWORD count = static_cast<DWORD>(factor) * factor, half = count / 2;
  for (int x = 0; x < width; ++x, source += factor) {
    DWORD redBlue = 0, green = 0;
    for (int row = 0; row < factor; ++row) {
      const DWORD* pixel = source + row * stride;
      for (int column = 0; column < factor; ++column) {
        redBlue += pixel[column] & 0xFF00FF;
        green += (pixel[column] >> 8) & 0xFF;
      }
    }
    const DWORD red = ((redBlue >> 16) + half) / count, blue = ((redBlue & 0xFFFF) + half) / count;
    result[x] = (red << 16) | (((green + half) / count) << 8) | blue;
  }
}

}  // namespace

int SupersampleFactor(LONG width, LONG height) {
  if (width <= 0 || height <= 0) return 0;
  const long long pixels = static_cast<long long>(width) * height;
  int factor = kLargestFactor;
  while (factor > 0 && pixels * factor * factor > kMostPixels) --factor;
  return factor;
}

Supersample::Supersample(HDC target, const RECT& area)
    : target_(target),
      area_(area),
      factor_(SupersampleFactor(area.right - area.left, area.bottom - area.top)),
      plainDc_(factor_ ? target : nullptr),
      enlargedDc_(factor_ ? target : nullptr) {
  if (!factor_) return;
  const LONG width = area.right - area.left, height = area.bottom - area.top;
  plain_.Reset(CreatePixels(target, width, height, &plainPixels_));
  enlarged_.Reset(CreatePixels(target, width * factor_, height * factor_, &enlargedPixels_));
  if (!plain_ || !enlarged_) return;
  previousPlain_ = SelectObject(plainDc_, plain_);
  previousEnlarged_ = SelectObject(enlargedDc_, enlarged_);
  Enlarge();
}

Supersample::~Supersample() {
  if (previousEnlarged_) Average();
  if (previousEnlarged_) SelectObject(enlargedDc_, previousEnlarged_);
  if (previousPlain_) SelectObject(plainDc_, previousPlain_);
}

void Supersample::Enlarge() {
  const LONG width = area_.right - area_.left, height = area_.bottom - area_.top;
  BitBlt(plainDc_, 0, 0, width, height, target_, area_.left, area_.top, SRCCOPY);
  GdiFlush();
  const size_t stride = static_cast<size_t>(width) * factor_;
  for (LONG y = 0; y < height; ++y) {
    const DWORD* source = plainPixels_ + static_cast<size_t>(y) * width;
    DWORD* first = enlargedPixels_ + y * factor_ * stride;
    for (LONG x = 0; x < width; ++x) std::fill_n(first + x * factor_, factor_, source[x]);
    for (int copy = 1; copy < factor_; ++copy) std::memcpy(first + copy * stride, first, stride * sizeof(DWORD));
  }
}

void Supersample::Average() {
  const LONG width = area_.right - area_.left, height = area_.bottom - area_.top;
  const size_t stride = static_cast<size_t>(width) * factor_;
  GdiFlush();
  for (LONG y = 0; y < height; ++y) {
    AverageRow(enlargedPixels_ + y * factor_ * stride, stride, factor_, width,
               plainPixels_ + static_cast<size_t>(y) * width);
  }
  BitBlt(target_, area_.left, area_.top, width, height, plainDc_, 0, 0, SRCCOPY);
}

POINT Supersample::At(PointD place) const {
  return {RoundToLong((place.x - area_.left) * factor_), RoundToLong((place.y - area_.top) * factor_)};
}

RECT BoundsOf(std::span<const PointD> places, double margin, const RECT& limit) {
  double left = limit.right, top = limit.bottom, right = limit.left, bottom = limit.top;
  for (const PointD& place : places) {
    left = std::min(left, place.x - margin);
    top = std::min(top, place.y - margin);
    right = std::max(right, place.x + margin);
    bottom = std::max(bottom, place.y + margin);
  }
  const auto within = [](double value, LONG low, LONG high) {
    return static_cast<LONG>(std::clamp(value, static_cast<double>(low), static_cast<double>(high)));
  };
  return {within(std::floor(left), limit.left, limit.right), within(std::floor(top), limit.top, limit.bottom),
          within(std::ceil(right), limit.left, limit.right), within(std::ceil(bottom), limit.top, limit.bottom)};
}

PointD PolarPoint(PointD centre, double radius, double degrees) {
  const double radians = degrees * std::numbers::pi / 180;
  return {centre.x + radius * std::sin(radians), centre.y - radius * std::cos(radians)};
}

void FillPolygon(const Supersample& canvas, std::span<const PointD> corners, COLORREF color) {
  std::vector<POINT> points;
  points.reserve(corners.size());
  for (const PointD& corner : corners) points.push_back(canvas.At(corner));
  const FillScope fill(canvas.dc(), color);
  Polygon(canvas.dc(), points.data(), static_cast<int>(points.size()));
}

void FillDisc(const Supersample& canvas, PointD centre, double radius, COLORREF color) {
  if (!(radius > 0)) return;
  const POINT from = canvas.At({centre.x - radius, centre.y - radius});
  const POINT to = canvas.At({centre.x + radius, centre.y + radius});
  const FillScope fill(canvas.dc(), color);
  // Without an outline GDI leaves out the last column and row.
  Ellipse(canvas.dc(), from.x, from.y, to.x + 1, to.y + 1);
}

void FillGradientDisc(const Supersample& canvas, PointD centre, double radius, COLORREF top, COLORREF bottom) {
  if (!(radius > 0)) return;
  const POINT from = canvas.At({centre.x - radius, centre.y - radius});
  const POINT to = canvas.At({centre.x + radius, centre.y + radius});
  const OwnedRegion disc(CreateEllipticRgn(from.x, from.y, to.x + 1, to.y + 1));
  SelectClipRgn(canvas.dc(), disc);
  FillVerticalGradient(canvas.dc(), {from.x, from.y, to.x + 1, to.y + 1}, top, bottom);
  SelectClipRgn(canvas.dc(), nullptr);
}

void FillRingSector(const Supersample& canvas, PointD centre, double inner, double outer, double from, double to,
                    COLORREF color) {
  if (!(to > from) || !(outer > inner) || to - from > 360) return;
  // Chords of two degrees stay within a fifth of an enlarged pixel of the arc up to dials of some 1300 pixels.
  const int steps = static_cast<int>(std::ceil((to - from) / 2));
  std::vector<PointD> corners;
  corners.reserve(2 * steps + 2);
  for (int i = 0; i <= steps; ++i) corners.push_back(PolarPoint(centre, outer, from + (to - from) * i / steps));
  for (int i = steps; i >= 0; --i) corners.push_back(PolarPoint(centre, inner, from + (to - from) * i / steps));
  FillPolygon(canvas, corners, color);
}

void FillLine(const Supersample& canvas, PointD from, PointD to, double width, COLORREF color) {
  const double length = std::hypot(to.x - from.x, to.y - from.y);
  if (!(length > 0)) return;
  const double dx = (to.y - from.y) / length * width / 2, dy = (from.x - to.x) / length * width / 2;
  const PointD corners[] = {
      {from.x + dx, from.y + dy}, {to.x + dx, to.y + dy}, {to.x - dx, to.y - dy}, {from.x - dx, from.y - dy}};
  FillPolygon(canvas, corners, color);
}

GlyphOutline OutlineOfCharacter(const wchar_t* faceName, int weight, wchar_t character, double* advance) {
  constexpr int kEmHeight = 512;  // large enough that hinting and rounding vanish
  GlyphOutline outline;
  *advance = 0;
  const MemoryDc dc(nullptr);
  const OwnedFont font(CreateFontW(-kEmHeight, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                                   OUT_TT_ONLY_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY, VARIABLE_PITCH | FF_SWISS,
                                   faceName));
  const SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextAlign(dc, TA_LEFT | TA_BASELINE);
  GLYPHMETRICS capital{};
  const MAT2 identity{{0, 1}, {0, 0}, {0, 0}, {0, 1}};
  SIZE box{};
  if (GetGlyphOutlineW(dc, L'H', GGO_METRICS, &capital, 0, nullptr, &identity) == GDI_ERROR ||
      capital.gmptGlyphOrigin.y <= 0 || !GetTextExtentPoint32W(dc, &character, 1, &box)) {
    return outline;
  }
  BeginPath(dc);
  TextOutW(dc, 0, 0, &character, 1);
  EndPath(dc);
  FlattenPath(dc);
  const int count = GetPath(dc, nullptr, nullptr, 0);
  if (count <= 0) return outline;
  std::vector<POINT> points(count);
  std::vector<BYTE> types(count);
  if (GetPath(dc, points.data(), types.data(), count) != count) return outline;
  const double unit = capital.gmptGlyphOrigin.y;
  for (int i = 0; i < count; ++i) {
    if ((types[i] & ~PT_CLOSEFIGURE) == PT_MOVETO) outline.emplace_back();
    if (outline.empty()) continue;
    outline.back().push_back({(points[i].x - box.cx / 2.0) / unit, points[i].y / unit + 0.5});
  }
  *advance = box.cx / unit;
  return outline;
}

void FillGlyph(const Supersample& canvas, const GlyphOutline& glyph, PointD centre, double along, double height,
               double degrees, COLORREF color) {
  const double radians = degrees * std::numbers::pi / 180, cosine = std::cos(radians), sine = std::sin(radians);
  std::vector<POINT> points;
  std::vector<INT> counts;
  for (const auto& figure : glyph) {
    if (figure.size() < 3) continue;
    for (const PointD& point : figure) {
      const double x = point.x * height + along, y = point.y * height;
      points.push_back(canvas.At({centre.x + x * cosine - y * sine, centre.y + x * sine + y * cosine}));
    }
    counts.push_back(static_cast<INT>(figure.size()));
  }
  if (counts.empty()) return;
  const FillScope fill(canvas.dc(), color);
  SetPolyFillMode(canvas.dc(), WINDING);
  PolyPolygon(canvas.dc(), points.data(), counts.data(), static_cast<int>(counts.size()));
  SetPolyFillMode(canvas.dc(), ALTERNATE);
}

}  // namespace kv
