// Fonts and colors for owner-drawn content that matches the system's controls. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "kv/framework/guards.h"

namespace kv {

// Creates the font of the framework's dialogs, for every script. `height` is in pixels as in CreateFont: of the whole
// cell if positive, of the characters if negative.
OwnedFont MakeFont(int height, int weight);

// The same with a fixed pitch.
OwnedFont MakeFixedPitchFont(int height, int weight);

// Draws text with the font and color of `dc`, a DrawText format and the direction of the current language. Text that
// does not fit ends in an ellipsis; "&" has no special meaning.
void DrawFitted(HDC dc, const std::wstring& text, RECT area, UINT format);

// Blends the background color of lists with `percent` of their text color. With a low percentage, text on it is
// readable in high contrast, too.
COLORREF ListShade(int percent);

}  // namespace kv
