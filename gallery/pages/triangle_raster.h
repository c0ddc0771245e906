// Fills flat triangles into a picture and shrinks it, so that edges come out smooth. Colours are 0x00RRGGBB. Any
// thread; no state.
#pragma once

#include <windows.h>

#include "framework/canvas.h"

namespace gallery {

inline constexpr DWORD kOpaque = 256;

// Every pixel whose centre lies within; triangles that share an edge leave no gap and cover nothing twice. What lies
// outside the picture is cut off. `opacity` is 0..kOpaque.
void FillTriangle(const kv::Surface& surface, const kv::PointD (&corners)[3], DWORD color, DWORD opacity);

// Blends from `top` to `bottom` over the whole picture.
void FillVertically(const kv::Surface& surface, DWORD top, DWORD bottom);

// Each pixel of `target` becomes the mean of four of `source`, which is twice as wide and twice as high.
void ShrinkByTwo(const kv::Surface& source, const kv::Surface& target);

}  // namespace gallery
