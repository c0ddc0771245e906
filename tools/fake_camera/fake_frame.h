// The fake camera's image: color bars that move to the left, and a frame counter below them.
#pragma once

#include <windows.h>

#include <cstdint>

namespace fakecamera {

// The color 0xRRGGBB of a pixel of frame number `frame`; y counts from the top.
std::uint32_t Pixel(LONG x, LONG y, int frame, LONG width, LONG height);

}  // namespace fakecamera
