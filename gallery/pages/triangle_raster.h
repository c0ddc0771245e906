// Fills flat triangles into a picture in memory and shrinks it, so that edges come out smooth. Any thread; no state.
#pragma once

#include <cstdint>

namespace gallery {

// Pixels 0x00RRGGBB, the top row first, no padding.
struct Raster {
  std::uint32_t* pixels;
  int width, height;
};

struct RasterPoint {
  double x, y;
};

inline constexpr int kOpaque = 256;

// Every pixel whose centre lies within; triangles that share an edge leave no gap and cover nothing twice. What lies
// outside the raster is cut off. `opacity` is 0..kOpaque.
void FillTriangle(const Raster& raster, const RasterPoint (&corners)[3], std::uint32_t color, int opacity);

// Blends from `top` to `bottom` over the whole raster.
void FillVertically(const Raster& raster, std::uint32_t top, std::uint32_t bottom);

// Each pixel of `target` becomes the mean of four of `source`, which is twice as wide and twice as high.
void ShrinkByTwo(const Raster& source, const Raster& target);

}  // namespace gallery
