// Where things are in the main dialog, and the background that is painted around them: blue with bands that fade from
// the toolbar and the status bar, and a panel with a rounded frame and a shadow on which the tab control lies. All in
// pixels of the dialog's client area. Main thread only.
#pragma once

#include <windows.h>

#include <array>

#include "app/app_context.h"

namespace kv {

// ---- Geometry: pure functions ---------------------------------------------------------------------------------------

inline constexpr int kStatusPartCount = 5;
inline constexpr int kMinWidth = 412, kMinHeight = 412;  // of the whole window

// Right edges of the status bar's parts for a client area of this width.
std::array<int, kStatusPartCount> StatusPartEdges(int clientWidth);

// Where status button `index` (0..4) lies over its part of the status bar.
RECT StatusButtonRect(int index, SIZE client);

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

// ---- Windows --------------------------------------------------------------------------------------------------------

// Heights in pixels of the bands that the toolbar and the status bar take.
int ToolbarHeight(const MainControls& controls);
int StatusHeight(const MainControls& controls);

// Toolbar to the top left, status bar and its buttons to the bottom, all controls of the scaled range in proportion
// between them; the dialog is then repainted.
void LayOutMainDialog(HWND dialog, AppContext* context);

void PaintMainBackground(HDC dc, SIZE client, const BackgroundShape& shape);

}  // namespace kv
