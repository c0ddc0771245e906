// A point as the camera reports it.
#pragma once

#include <windows.h>

namespace kv {

// Camera coordinates: x 0..1023 to the right, y 0..767 downwards.
struct CameraPoint {
  LONG x, y;
};
static_assert(sizeof(CameraPoint) == 8);

inline constexpr int kPointCount = 4;
inline constexpr int kFieldWidth = 1024;
inline constexpr int kFieldHeight = 768;
// A coordinate of this value stands for "no point".
inline constexpr LONG kNoPoint = 1023;

}  // namespace kv
