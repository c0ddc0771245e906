// Rasterizes flat triangles, and scales a surface down for smooth edges. Colors are 0x00RRGGBB. Any thread; no state.
#pragma once

#include <windows.h>

#include "kv/framework/canvas.h"

namespace gallery {

inline constexpr DWORD kOpaque = 256;

// Fills every pixel whose center is within the triangle, so that adjacent triangles have no gaps or overlaps. Clipped
// to the surface. `opacity` is 0..kOpaque.
void FillTriangle(const kv::Surface& surface, const kv::PointD (&corners)[3], DWORD color, DWORD opacity);

// Fills the whole surface with a gradient from `top` to `bottom`.
void FillVertically(const kv::Surface& surface, DWORD top, DWORD bottom);

// Sets each pixel of `target` to the mean of four of `source`, which is twice as wide and high.
void ShrinkByTwo(const kv::Surface& source, const kv::Surface& target);

}  // namespace gallery
