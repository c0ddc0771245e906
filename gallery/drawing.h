// How the gallery writes: one face for its frame and its pages. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "framework/guards.h"

namespace gallery {

// `height` in pixels as CreateFont takes it: of the whole cell, or negative, of the characters alone.
kv::OwnedFont MakeFont(int height, int weight);

// One line of text, vertically centred; what does not fit ends in an ellipsis. The background stays as it is.
void DrawLine(HDC dc, const std::wstring& text, RECT area, int height, int weight, COLORREF color);

}  // namespace gallery
