#include "gallery/pages/triangle_raster.h"

#include <algorithm>
#include <cmath>

#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"

namespace gallery {

namespace {

// Red and blue are computed together, with eight free bits above each.
constexpr DWORD kRedAndBlue = 0xFF00FF;

DWORD Blend(DWORD below, DWORD above, DWORD opacity) {
  const DWORD rest = kOpaque - opacity;
  const DWORD redAndBlue = (below & kRedAndBlue) * rest + (above & kRedAndBlue) * opacity;
  const DWORD green = (below >> 8 & 0xFF) * rest + (above >> 8 & 0xFF) * opacity;
  return (redAndBlue >> 8 & kRedAndBlue) | (green & 0xFF00);
}

// Returns the first of `count` pixels whose center is not before `position`.
int FirstPixel(double position, int count) {
  return static_cast<int>(std::clamp(std::ceil(position - 0.5), 0.0, static_cast<double>(count)));
}

// Returns the x at which the edge from `top` to `bottom` crosses `y`.
double Crossing(const kv::PointD& top, const kv::PointD& bottom, double y) {
  return bottom.y > top.y ? top.x + (bottom.x - top.x) * (y - top.y) / (bottom.y - top.y) : top.x;
}

}  // namespace

void FillTriangle(const kv::Surface& surface, const kv::PointD (&corners)[3], DWORD color, DWORD opacity) {
  kv::PointD sorted[3] = {corners[0], corners[1], corners[2]};
  std::sort(sorted, sorted + 3, [](const kv::PointD& a, const kv::PointD& b) { return a.y < b.y; });
  const auto& [top, middle, bottom] = sorted;
  const SIZE size = surface.size();
  const int end = FirstPixel(bottom.y, size.cy);
  for (int row = FirstPixel(top.y, size.cy); row < end; ++row) {
    const double y = row + 0.5;
    double left = Crossing(top, bottom, y);
    double right = y < middle.y ? Crossing(top, middle, y) : Crossing(middle, bottom, y);
    if (left > right) std::swap(left, right);
    DWORD* const last = surface.Row(row) + FirstPixel(right, size.cx);
    for (DWORD* pixel = surface.Row(row) + FirstPixel(left, size.cx); pixel < last; ++pixel) {
      *pixel = opacity >= kOpaque ? color : Blend(*pixel, color, opacity);
    }
  }
}

void FillVertically(const kv::Surface& surface, DWORD top, DWORD bottom) {
  const SIZE size = surface.size();
  for (LONG row = 0; row < size.cy; ++row) {
    std::fill_n(surface.Row(row), size.cx, Blend(top, bottom, row * kOpaque / size.cy));
  }
}

void ShrinkByTwo(const kv::Surface& source, const kv::Surface& target) {
  for (LONG row = 0; row < target.size().cy; ++row) {
    const DWORD *upper = source.Row(row * 2), *lower = source.Row(row * 2 + 1);
    DWORD* pixel = target.Row(row);
    for (LONG column = 0; column < target.size().cx; ++column, upper += 2, lower += 2) {
      DWORD redAndBlue = 0, green = 0;
      for (const DWORD sample : {upper[0], upper[1], lower[0], lower[1]}) {
        redAndBlue += sample & kRedAndBlue;
        green += sample & 0xFF00;
      }
      *pixel++ = (redAndBlue >> 2 & kRedAndBlue) | (green >> 2 & 0xFF00);
    }
  }
}

}  // namespace gallery
