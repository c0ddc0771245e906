#include "framework/supersample.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <type_traits>

#include "framework/painting.h"
#include "framework/picture.h"

namespace kv {

namespace {

constexpr int kLargestFactor = 4;
constexpr long long kMillion = 1024 * 1024;
constexpr long long kMostFinePixels = 4 * kMillion;  // 16 MB; beyond, smoothness is not worth more than factor 2
constexpr long long kMostPixels = 16 * kMillion;     // 64 MB, for the moment of drawing

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

// Hands the factor on as a constant: the inner loops are a few times faster when the compiler knows their length.
template <class Work>
void WithConstantFactor(int factor, Work work) {
  switch (factor) {
    case 1: return work(std::integral_constant<int, 1>());
    case 2: return work(std::integral_constant<int, 2>());
    case 3: return work(std::integral_constant<int, 3>());
    case 4: return work(std::integral_constant<int, 4>());
  }
}

template <int kFactor>
void RepeatPixels(const DWORD* source, LONG width, DWORD* result) {
  for (LONG x = 0; x < width; ++x, result += kFactor) {
    for (int column = 0; column < kFactor; ++column) result[column] = source[x];
  }
}

// Averages one row of the result, red and blue together in one word.
template <int kFactor>
void AveragePixels(const DWORD* source, size_t stride, LONG width, DWORD* result) {
  constexpr DWORD kCount = kFactor * kFactor, kHalf = kCount / 2;
  for (LONG x = 0; x < width; ++x, source += kFactor) {
    DWORD redBlue = 0, green = 0;
    for (int row = 0; row < kFactor; ++row) {
      for (int column = 0; column < kFactor; ++column) {
        const DWORD pixel = source[row * stride + column];
        redBlue += pixel & 0xFF00FF;
        green += pixel & 0x00FF00;
      }
    }
    const DWORD red = ((redBlue >> 16) + kHalf) / kCount, blue = ((redBlue & 0xFFFF) + kHalf) / kCount;
    result[x] = (red << 16) | ((((green >> 8) + kHalf) / kCount) << 8) | blue;
  }
}

// An enlarged picture that stays from one use to the next: touching fresh memory costs more than drawing in it. It
// grows to what is asked for, up to 16 MB.
struct KeptPicture {
  OwnedBitmap bitmap;
  DWORD* pixels = nullptr;
  LONG width = 0, height = 0;
  bool taken = false;
};
KeptPicture keptPicture;

bool TakeKeptPicture(HDC dc, LONG width, LONG height) {
  KeptPicture& kept = keptPicture;
  if (kept.taken || static_cast<long long>(width) * height > kMostFinePixels) return false;
  if (kept.width < width || kept.height < height) {
    const LONG wider = std::max(kept.width, width), higher = std::max(kept.height, height);
    const bool both = static_cast<long long>(wider) * higher <= kMostFinePixels;
    kept.width = both ? wider : width;
    kept.height = both ? higher : height;
    kept.bitmap.Reset();
    kept.bitmap.Reset(CreatePixels(dc, kept.width, kept.height, &kept.pixels));
    if (!kept.bitmap) kept.width = kept.height = 0;
  }
  kept.taken = kept.bitmap != nullptr;
  return kept.taken;
}

}  // namespace

int SupersampleFactor(LONG width, LONG height) {
  if (width <= 0 || height <= 0) return 0;
  const long long pixels = static_cast<long long>(width) * height;
  int factor = kLargestFactor;
  while (factor > 0 && pixels * factor * factor > (factor > 2 ? kMostFinePixels : kMostPixels)) --factor;
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
  usesKept_ = TakeKeptPicture(target, width * factor_, height * factor_);
  if (!usesKept_) enlarged_.Reset(CreatePixels(target, width * factor_, height * factor_, &enlargedPixels_));
  if (usesKept_) enlargedPixels_ = keptPicture.pixels;
  stride_ = usesKept_ ? keptPicture.width : width * factor_;
  if (!plain_ || !enlargedPixels_) return;
  previousPlain_ = SelectObject(plainDc_, plain_);
  previousEnlarged_ = SelectObject(enlargedDc_, usesKept_ ? keptPicture.bitmap : enlarged_);
  Enlarge();
}

Supersample::~Supersample() {
  if (previousEnlarged_) Average();
  if (previousEnlarged_) SelectObject(enlargedDc_, previousEnlarged_);
  if (previousPlain_) SelectObject(plainDc_, previousPlain_);
  if (usesKept_) keptPicture.taken = false;
}

void Supersample::Enlarge() {
  const LONG width = area_.right - area_.left, height = area_.bottom - area_.top;
  BitBlt(plainDc_, 0, 0, width, height, target_, area_.left, area_.top, SRCCOPY);
  GdiFlush();
  WithConstantFactor(factor_, [&](auto factor) {
    for (LONG y = 0; y < height; ++y) {
      DWORD* first = enlargedPixels_ + y * factor() * stride_;
      RepeatPixels<factor()>(plainPixels_ + static_cast<size_t>(y) * width, width, first);
      for (int copy = 1; copy < factor(); ++copy) {
        std::memcpy(first + copy * stride_, first, width * factor() * sizeof(DWORD));
      }
    }
  });
}

void Supersample::Average() {
  const LONG width = area_.right - area_.left, height = area_.bottom - area_.top;
  GdiFlush();
  WithConstantFactor(factor_, [&](auto factor) {
    for (LONG y = 0; y < height; ++y) {
      AveragePixels<factor()>(enlargedPixels_ + y * factor() * stride_, stride_, width,
                              plainPixels_ + static_cast<size_t>(y) * width);
    }
  });
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
