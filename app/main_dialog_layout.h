// Layout and background of the main dialog. The background is blue, with gradients at toolbar and status bar, and a
// panel with a rounded frame and a shadow below the tab control. All coordinates are pixels of the client area. Main
// thread only.
#pragma once

#include <windows.h>

#include <array>

#include "app/app_context.h"

namespace kv {

// ---- Geometry: pure functions ---------------------------------------------------------------------------------------

inline constexpr int kStatusPartCount = 5;
inline constexpr int kMinWidth = 412, kMinHeight = 412;  // of the whole window

// Returns the right edges of the status bar's parts for a client area of this width.
std::array<int, kStatusPartCount> StatusPartEdges(int clientWidth);

// Returns the rectangle of status button `index` (0..4), which covers its part of the status bar.
RECT StatusButtonRect(int index, SIZE client);

// The parts of the background.
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

// `tab` is the tab control's rectangle; `design` the client size of the template. A design without height between
// toolbar and status bar counts as scale 1.
BackgroundShape ShapeBackground(SIZE client, SIZE design, int toolbarHeight, int statusHeight, const RECT& tab);

// ---- Windows --------------------------------------------------------------------------------------------------------

// Return the heights of toolbar and status bar in pixels.
int ToolbarHeight(const MainControls& controls);
int StatusHeight(const MainControls& controls);

// Places the toolbar at the top left and the status bar and its buttons at the bottom, scales the controls between
// them, and repaints the dialog.
void LayOutMainDialog(HWND dialog, AppContext* context);

void PaintMainBackground(HDC dc, SIZE client, const BackgroundShape& shape);

}  // namespace kv
