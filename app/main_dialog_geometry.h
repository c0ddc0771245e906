// Where things are in the main dialog: pure functions from the client size to rectangles. All in pixels of the dialog's
// client area.
#pragma once

#include <windows.h>

#include <array>

namespace kv {

inline constexpr int kStatusPartCount = 5;
inline constexpr int kSmallestWidth = 412, kSmallestHeight = 412;  // of the whole window

// Right edges of the status bar's parts for a client area of this width.
std::array<int, kStatusPartCount> StatusPartEdges(int clientWidth);

// Where status button `index` (0..4) lies over its part of the status bar.
RECT StatusButtonPlace(int index, SIZE client);

// What the painted background is made of.
inline constexpr int kBlendSteps = 8;

struct BackgroundLine {
  int fromX, toX, y;
};

struct BackgroundShape {
  RECT toolbarBand;
  std::array<BackgroundLine, kBlendSteps> topLines;     // below the toolbar; step i of the blend
  std::array<BackgroundLine, kBlendSteps> bottomLines;  // above the status bar
  RECT frame;                                           // around the tab control
  int frameRadius;
  std::array<BackgroundLine, kBlendSteps> shadowLines;  // under the frame
};

// `tab` is the tab control's rectangle; `design` the client size for which the template was drawn. A design that leaves
// no height between toolbar and status bar counts as scale 1.
BackgroundShape ShapeBackground(SIZE client, SIZE design, int toolbarHeight, int statusHeight, const RECT& tab);

}  // namespace kv
