// What the fake camera shows: colour bars that wander to the left, and a counter of the frames in a strip below them.
#pragma once

#include <windows.h>

#include <cstdint>

namespace fakecamera {

// The colour 0xRRGGBB that frame number `frame` has at a place; y counts from the top.
std::uint32_t Pixel(LONG x, LONG y, int frame, LONG width, LONG height);

}  // namespace fakecamera
