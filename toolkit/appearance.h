// The face and the colours of what a program draws beside the system's controls. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "framework/guards.h"

namespace kv {

// The face of the framework's dialogs in every script. `height` in pixels as CreateFont takes it: of the whole cell, or
// negative, of the characters alone.
OwnedFont MakeFont(int height, int weight);

// The same with all characters of one width.
OwnedFont MakeFixedPitchFont(int height, int weight);

// The text in the font and colour that `dc` has, with a format of DrawText and in the direction of the language that is
// shown. What does not fit ends in an ellipsis; "&" is a letter like others.
void DrawFitted(HDC dc, const std::wstring& text, RECT area, UINT format);

// A colour between the background of lists and the one of their text: `percent` of the latter. In high contrast, too,
// the text reads on a low one.
COLORREF ListShade(int percent);

// Whether the user asked the system for high contrast: then no colours but the system's.
bool IsHighContrast();

}  // namespace kv
