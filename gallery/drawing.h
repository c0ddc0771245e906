// How the gallery writes in its frame and on its pages. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

struct TextStyle {
  int height;  // of the font, as kv::MakeFont takes it
  int weight;
  COLORREF color;
};

// One line of text, vertically centred; what does not fit ends in an ellipsis. The background stays as it is.
void DrawLine(HDC dc, const std::wstring& text, RECT area, const TextStyle& style);

// The same in as many lines as fit into the area, from its top.
void DrawLines(HDC dc, const std::wstring& text, RECT area, const TextStyle& style);

// Fills the row of an owner-drawn list box in the system's colours, with a mark of the focus; returns the colour for
// its text.
COLORREF DrawRowBackground(const DRAWITEMSTRUCT& item);

}  // namespace gallery
