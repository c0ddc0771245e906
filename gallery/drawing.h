// How the gallery writes and in which colours: one face for its frame and its pages, the system's colours for what is
// read. Main thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "framework/guards.h"

namespace gallery {

// `height` in pixels as CreateFont takes it: of the whole cell, or negative, of the characters alone.
kv::OwnedFont MakeFont(int height, int weight);

struct TextStyle {
  int height;  // of the font, as above
  int weight;
  COLORREF color;
};

// One line of text, vertically centred; what does not fit ends in an ellipsis. The background stays as it is.
void DrawLine(HDC dc, const std::wstring& text, RECT area, const TextStyle& style);

// The same in as many lines as fit into the area, from its top.
void DrawLines(HDC dc, const std::wstring& text, RECT area, const TextStyle& style);

// The text in the font and colour that `dc` has, with a format of DrawText; what does not fit ends in an ellipsis.
void DrawFitted(HDC dc, const std::wstring& text, RECT area, UINT format);

// Fills the row of an owner-drawn list box in the system's colours, with a mark of the focus; returns the colour for
// its text.
COLORREF DrawRowBackground(const DRAWITEMSTRUCT& item);

// From now on the texts that the three above cut are added to `texts`; with null no longer. For whoever looks for texts
// that are too long.
void CollectCutTexts(std::vector<std::wstring>* texts);

// A colour between the system's for the background of lists and the one for their text: `percent` of the latter.
COLORREF ListShade(int percent);

// Whether the user asked the system for high contrast: then no colours but the system's.
bool IsHighContrast();

}  // namespace gallery
