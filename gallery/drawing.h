// Text in the gallery's frame and pages. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

struct TextStyle {
  int height;  // of the font, as in kv::MakeFont
  int weight;
  COLORREF color;
};

// Draws a line of text, vertically centered; text that does not fit ends in an ellipsis. The background is not painted.
void DrawLine(HDC dc, const std::wstring& text, RECT area, const TextStyle& style);

// Draws text in as many lines as fit into the area, from its top.
void DrawLines(HDC dc, const std::wstring& text, RECT area, const TextStyle& style);

// Fills the row of an owner-drawn list box in the system's colors, with a focus mark, and returns the color for its
// text.
COLORREF DrawRowBackground(const DRAWITEMSTRUCT& item);

}  // namespace gallery
