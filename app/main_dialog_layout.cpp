#include "app/main_dialog_layout.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "app/app_context.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/dialog_layout.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

double Ratio(int now, int design) {
  return design > 0 ? static_cast<double>(now) / design : 1.0;
}

}  // namespace

std::array<int, kStatusPartCount> StatusPartEdges(int clientWidth) {
  const double width = clientWidth - 16;
  const auto edge = [width](double share) { return static_cast<int>(width * share + 2); };
  return {edge(0.2), edge(0.4), edge(0.6), edge(0.8), clientWidth - 14};
}

RECT StatusButtonRect(int index, SIZE client) {
  constexpr int kHeight = 16, kFromBottom = 17;
  const auto edges = StatusPartEdges(client.cx);
  const int left = index == 0 ? 2 : edges[index - 1];
  const int inset = index == 0 ? 1 : 4;
  const int top = client.cy - kFromBottom;
  // The right edge minus 2 is the width of the part without the inset.
  return {left + inset, top, edges[index] - 2, top + kHeight};
}

BackgroundShape ShapeBackground(SIZE client, SIZE design, int toolbarHeight, int statusHeight, const RECT& tab) {
  const double scaleX = Ratio(client.cx, design.cx);
  const double scaleY = Ratio(client.cy - statusHeight - toolbarHeight, design.cy - statusHeight - toolbarHeight);
  const double scale = (scaleX + scaleY) / 2;

  BackgroundShape shape{};
  shape.toolbarBand = {0, 0, client.cx, toolbarHeight};
  shape.frame = {tab.left - Round(scaleX * 10), tab.top - Round(scaleX * 8), client.cx + 8,
                 tab.bottom + Round(8 * scaleY)};
  shape.frameRadius = Round(scale * 6 + 0.5);
  for (int i = 0; i < kBlendSteps; ++i) {
    shape.topLines[i] = {-1, client.cx + 1, toolbarHeight + i - 2};
    shape.bottomLines[i] = {-1, client.cx + 1, client.cy - statusHeight - i + 2};
    shape.shadowLines[i] = {shape.frame.right + 1, shape.frame.left + Round(i * scale + 8 * scale),
                            shape.frame.bottom + Round(i * std::max(scaleY, 1.0))};
  }
  return shape;
}

// ---- Windows --------------------------------------------------------------------------------------------------------

namespace {

void LayOutStatusBar(const MainControls& controls, SIZE client) {
  const int height = StatusHeight(controls);
  MoveWindow(controls.statusBar, 0, client.cy - height, client.cx, height, TRUE);
  auto edges = StatusPartEdges(client.cx);
  SendMessageA(controls.statusBar, SB_SETPARTS, kStatusPartCount, reinterpret_cast<LPARAM>(edges.data()));
  for (int i = 0; i < kStatusPartCount; ++i) {
    const RECT rect = StatusButtonRect(i, client);
    MoveWindow(controls.statusButtons[i], rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
  }
}

}  // namespace

int ToolbarHeight(const MainControls& controls) {
  RECT rect{};
  GetWindowRect(controls.toolbar, &rect);
  return rect.bottom - rect.top;
}

int StatusHeight(const MainControls& controls) {
  return ClientSize(controls.statusBar).cy;
}

void LayOutMainDialog(HWND dialog, AppContext* context) {
  const SIZE client = ClientSize(dialog);
  const MainControls& controls = context->controls;
  RECT lastButton{};
  SendMessageA(controls.toolbar, TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&lastButton));
  const int toolbarHeight = ToolbarHeight(controls);
  MoveWindow(controls.toolbar, -8, -2, lastButton.right + 4, toolbarHeight, TRUE);
  LayOutStatusBar(controls, client);
  ApplyLayout(dialog, StatusHeight(controls), 0, toolbarHeight, kScaledIdFirst, kScaledIdLast, context->layout,
              &context->fScaleX, &context->fScaleY, FALSE);
  InvalidateRect(dialog, nullptr, TRUE);
}

// ---- Background -----------------------------------------------------------------------------------------------------

namespace {

// Draws line i in the color of step i of the gradient from `start` to the dialog's blue.
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
    // Rounded like the inside of the frame, so that corners do not show outside; without a pen the shape is one pixel
    // smaller.
    const int innerDiameter = 2 * std::max(radius - kFrameWidth, 0);
    RoundRect(dc, frame.left, frame.top, frame.right + 1, frame.bottom + 1, innerDiameter, innerDiameter);
  }
  DeleteObject(fill);
  // Quirk: a second delete, which Windows rejects.
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
