#include "app/main_dialog_background.h"

#include <algorithm>
#include <array>

#include "app/main_dialog_geometry.h"
#include "framework/guards.h"
#include "framework/painting.h"

namespace kv {

namespace {

// Line i in the colour at step i of the blend from `start` to the dialog's blue.
void DrawBlendedLines(HDC dc, const std::array<BackgroundLine, kBlendSteps>& lines, COLORREF start) {
  for (int i = 0; i < kBlendSteps; ++i) {
    COLORREF color = start;
    BlendColor(start, kDialogBlue, kBlendSteps, i, &color);
    const OwnedPen pen(CreatePen(PS_SOLID, 1, color));
    const SelectedObject selected(dc, pen);
    MoveToEx(dc, lines[i].fromX, lines[i].y, nullptr);
    LineTo(dc, lines[i].toX, lines[i].y);
  }
}

void DrawPanel(HDC dc, const RECT& frame, int radius, COLORREF face) {
  constexpr int kFrameWidth = 2;
  RECT outline = frame;
  InflateRect(&outline, kFrameWidth, kFrameWidth);
  DrawRoundedFrame(dc, outline, radius, kFrameWidth, RGB(255, 255, 255));
  HBRUSH fill = CreateSolidBrush(face);
  {
    const SelectedObject selectedFill(dc, fill);
    const SelectedObject noOutline(dc, GetStockObject(NULL_PEN));
    // Rounded like the inside of the frame, so that no corner pokes through it; without a pen the shape is a pixel
    // short.
    const int innerDiameter = 2 * std::max(radius - kFrameWidth, 0);
    RoundRect(dc, frame.left, frame.top, frame.right + 1, frame.bottom + 1, innerDiameter, innerDiameter);
  }
  DeleteObject(fill);
  // Quirk: a second delete, which Windows rejects without effect.
  DeleteObject(fill);
}

}  // namespace

void PaintMainBackground(HDC dc, SIZE client, const BackgroundShape& shape) {
  const COLORREF face = GetSysColor(COLOR_BTNFACE);
  const RECT all{0, 0, client.cx, client.cy};
  FillSolid(dc, all, kDialogBlue);
  FillSolid(dc, shape.toolbarBand, face);
  DrawBlendedLines(dc, shape.topLines, face);
  DrawBlendedLines(dc, shape.bottomLines, face);
  DrawBlendedLines(dc, shape.shadowLines, 0x0F0F0F);
  DrawPanel(dc, shape.frame, shape.frameRadius, face);
}

}  // namespace kv
