#include "gallery/pages/triangle_raster.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace gallery {

namespace {

// Red and blue are calculated together, with eight free bits above each.
constexpr std::uint32_t kRedAndBlue = 0xFF00FF;

std::uint32_t Blend(std::uint32_t below, std::uint32_t above, std::uint32_t opacity) {
  const std::uint32_t rest = kOpaque - opacity;
  const std::uint32_t redAndBlue = (below & kRedAndBlue) * rest + (above & kRedAndBlue) * opacity;
  const std::uint32_t green = (below >> 8 & 0xFF) * rest + (above >> 8 & 0xFF) * opacity;
  return (redAndBlue >> 8 & kRedAndBlue) | (green & 0xFF00);
}

// The first of `count` pixels whose centre is not before `position`.
int FirstPixel(double position, int count) {
  return static_cast<int>(std::clamp(std::ceil(position - 0.5), 0.0, static_cast<double>(count)));
}

// Where the edge from `top` to `bottom` crosses a height.
double Crossing(const RasterPoint& top, const RasterPoint& bottom, double y) {
  return bottom.y > top.y ? top.x + (bottom.x - top.x) * (y - top.y) / (bottom.y - top.y) : top.x;
}

}  // namespace

void FillTriangle(const Raster& raster, const RasterPoint (&corners)[3], std::uint32_t color, int opacity) {
  RasterPoint sorted[3] = {corners[0], corners[1], corners[2]};
  std::sort(sorted, sorted + 3, [](const RasterPoint& a, const RasterPoint& b) { return a.y < b.y; });
  const auto& [top, middle, bottom] = sorted;
  const int end = FirstPixel(bottom.y, raster.height);
  for (int row = FirstPixel(top.y, raster.height); row < end; ++row) {
    const double y = row + 0.5;
    double left = Crossing(top, bottom, y);
    double right = y < middle.y ? Crossing(top, middle, y) : Crossing(middle, bottom, y);
    if (left > right) std::swap(left, right);
    std::uint32_t* line = raster.pixels + static_cast<std::ptrdiff_t>(row) * raster.width;
    std::uint32_t* first = line + FirstPixel(left, raster.width);
    std::uint32_t* last = line + FirstPixel(right, raster.width);
    if (opacity >= kOpaque) {
      std::fill(first, last, color);
    } else {
      for (; first < last; ++first) *first = Blend(*first, color, static_cast<std::uint32_t>(opacity));
    }
  }
}

void FillVertically(const Raster& raster, std::uint32_t top, std::uint32_t bottom) {
  for (int row = 0; row < raster.height; ++row) {
    const std::uint32_t color = Blend(top, bottom, static_cast<std::uint32_t>(row * kOpaque / raster.height));
    std::fill_n(raster.pixels + static_cast<std::ptrdiff_t>(row) * raster.width, raster.width, color);
  }
}

void ShrinkByTwo(const Raster& source, const Raster& target) {
  for (int row = 0; row < target.height; ++row) {
    const std::uint32_t* upper = source.pixels + static_cast<std::ptrdiff_t>(row) * 2 * source.width;
    const std::uint32_t* lower = upper + source.width;
    std::uint32_t* pixel = target.pixels + static_cast<std::ptrdiff_t>(row) * target.width;
    for (int column = 0; column < target.width; ++column, upper += 2, lower += 2) {
      std::uint32_t redAndBlue = 0, green = 0;
      for (const std::uint32_t sample : {upper[0], upper[1], lower[0], lower[1]}) {
        redAndBlue += sample & kRedAndBlue;
        green += sample & 0xFF00;
      }
      *pixel++ = (redAndBlue >> 2 & kRedAndBlue) | (green >> 2 & 0xFF00);
    }
  }
}

}  // namespace gallery
