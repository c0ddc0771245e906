#include "kv/framework/painting.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "kv/framework/bitmaps.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"

namespace kv {

namespace {

int BlendChannel(int start, int end, int steps, int step) {
  // 64 bits, because the number of steps may be any.
  const long long blended = start + static_cast<long long>(end - start) * step / steps;
  return static_cast<int>(std::llabs(blended) & 0xFF);
}

void FillGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to, ULONG direction) {
  const auto vertex = [](LONG x, LONG y, COLORREF color) {
    const auto channel = [](BYTE value) { return static_cast<COLOR16>(value << 8); };
    return TRIVERTEX{x, y, channel(GetRValue(color)), channel(GetGValue(color)), channel(GetBValue(color)), 0};
  };
  TRIVERTEX corners[] = {vertex(area.left, area.top, from), vertex(area.right, area.bottom, to)};
  GRADIENT_RECT rectangle{0, 1};
  GdiGradientFill(dc, corners, 2, &rectangle, 1, direction);
}

}  // namespace

BOOL BlendColor(COLORREF start, COLORREF end, int steps, int step, COLORREF* result) {
  if (steps == 0 || IsBadWritePtr(result, sizeof(*result))) return FALSE;
  *result = RGB(BlendChannel(GetRValue(start), GetRValue(end), steps, step),
                BlendChannel(GetGValue(start), GetGValue(end), steps, step),
                BlendChannel(GetBValue(start), GetBValue(end), steps, step));
  return TRUE;
}

COLORREF MixColors(COLORREF start, COLORREF end, int percent) {
  COLORREF color = start;
  BlendColor(start, end, 100, percent, &color);
  return color;
}

bool IsHighContrast() {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof(state);
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(state), &state, 0) && state.dwFlags & HCF_HIGHCONTRASTON;
}

COLORREF ShadeColor(COLORREF color, double factor) {
  const auto shade = [factor](BYTE channel) { return std::clamp(ToInt(std::round(channel * factor)), 0, 255); };
  return RGB(shade(GetRValue(color)), shade(GetGValue(color)), shade(GetBValue(color)));
}

COLORREF SeverityColor(double value, double full) {
  double severity = full > 0 ? std::fabs(value) / full : 0.0;
  if (std::isnan(severity)) severity = 0.0;
  const int step = static_cast<int>(std::min(severity, 1.0) * 200);
  const COLORREF green = RGB(0, 208, 0), amber = RGB(255, 191, 0), red = RGB(255, 32, 0);
  COLORREF color = green;
  if (step <= 100) {
    BlendColor(green, amber, 100, step, &color);
  } else {
    BlendColor(amber, red, 100, step - 100, &color);
  }
  return color;
}

void FillSolid(HDC dc, const RECT& area, COLORREF color) {
  const OwnedBrush brush(CreateSolidBrush(color));
  FillRect(dc, &area, brush);
}

void FillHorizontalGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to) {
  FillGradient(dc, area, from, to, GRADIENT_FILL_RECT_H);
}

void FillVerticalGradient(HDC dc, const RECT& area, COLORREF from, COLORREF to) {
  FillGradient(dc, area, from, to, GRADIENT_FILL_RECT_V);
}

void DrawSunkenFrame(HDC dc, RECT* area) {
  RECT edge = *area;
  DrawEdge(dc, &edge, EDGE_SUNKEN, BF_RECT);
  InflateRect(area, -kSunkenEdge, -kSunkenEdge);
  area->right = std::max(area->right, area->left);
  area->bottom = std::max(area->bottom, area->top);
}

void DrawRoundedFrame(HDC dc, const RECT& area, int radius, int width, COLORREF color) {
  const OwnedPen pen(CreatePen(PS_INSIDEFRAME, width, color));
  const SelectedObject selectedPen(dc, pen);
  const SelectedObject hollow(dc, GetStockObject(NULL_BRUSH));
  RoundRect(dc, area.left, area.top, area.right, area.bottom, 2 * radius, 2 * radius);
}

void DrawFocusFrame(HDC dc, const RECT& area) {
  // The dots have the text's colors, whichever the device context has.
  const COLORREF text = SetTextColor(dc, RGB(0, 0, 0)), background = SetBkColor(dc, RGB(255, 255, 255));
  DrawFocusRect(dc, &area);
  SetTextColor(dc, text);
  SetBkColor(dc, background);
}

BOOL ReplaceBitmapColor(HDC dc, HBITMAP bitmap, COLORREF from, COLORREF to) {
  BITMAP shape{};
  if (!GetObjectA(bitmap, sizeof(shape), &shape) || shape.bmWidth <= 0 || shape.bmHeight <= 0) return FALSE;
  BITMAPINFO info = TopDownBitmapInfo(shape.bmWidth, shape.bmHeight);
  constexpr DWORD kColorBits = 0x00FFFFFF;
  std::vector<DWORD> pixels(static_cast<size_t>(shape.bmWidth) * shape.bmHeight);
  if (!GetDIBits(dc, bitmap, 0, shape.bmHeight, pixels.data(), &info, DIB_RGB_COLORS)) return FALSE;
  std::ranges::for_each(pixels, [&](DWORD& pixel) {
    if ((pixel & kColorBits) == PixelOfColor(from)) pixel = PixelOfColor(to);
  });
  return SetDIBits(dc, bitmap, 0, shape.bmHeight, pixels.data(), &info, DIB_RGB_COLORS) != 0;
}

}  // namespace kv
