#include <algorithm>
#include <utility>

#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/framework/per_thread.h"

namespace kv {

namespace {

// A buffer that all buttons of a thread share and that grows to the largest. Creating one for each of the hundred or so
// paints a second would cost more than the drawing.
struct ButtonBuffer {
  MemoryDc dc{nullptr};
  Surface surface;

  // Returns false when allocation fails.
  bool Reserve(SIZE size) {
    const SIZE had = surface.size();
    if (size.cx <= had.cx && size.cy <= had.cy) return true;
    return surface.Create({std::max(size.cx, had.cx), std::max(size.cy, had.cy)});
  }
};

COLORREF SchemeColor(int scheme) {
  switch (scheme) {
    case kSchemeAmber: return 0x009FDF;
    case kSchemeGreen: return 0x00EF00;
    case kSchemeBlue: return 0xFF7F4F;
    default: return GetSysColor(COLOR_BTNSHADOW);
  }
}

struct ButtonColors {
  COLORREF top, bottom, rim;
};

// The top is lighter than the scheme's color, but dark enough for white text.
ButtonColors ButtonColorsOf(int scheme, UINT flags, bool pressed) {
  const bool lit = (flags & kButtonLit) != 0;
  const COLORREF color = ShadeColor(SchemeColor(scheme), lit ? 1.0 : 0.8);
  ButtonColors colors{color, color, ShadeColor(color, 0.3)};
  if (flags & kButtonGradient) {
    BlendColor(color, RGB(255, 255, 255), 100, lit ? 30 : 8, &colors.top);
    colors.bottom = ShadeColor(color, lit ? 0.85 : 0.65);
    if (pressed) std::swap(colors.top, colors.bottom);
  }
  return colors;
}

// A focused button has a dark edge instead of a raised one, so that the white focus frame is visible.
void DrawButtonFace(const Surface& buffer, SIZE size, const ButtonColors& colors, bool pressed, bool focused) {
  const DWORD light =
      focused ? PixelOfColor(colors.rim) : PixelOfColor(GetSysColor(pressed ? COLOR_BTNSHADOW : COLOR_BTNHIGHLIGHT));
  const DWORD dark =
      focused ? PixelOfColor(colors.rim) : PixelOfColor(GetSysColor(pressed ? COLOR_BTNHIGHLIGHT : COLOR_BTNSHADOW));
  for (int y = 0; y < size.cy; ++y) {
    DWORD* row = buffer.Row(y);
    COLORREF face = colors.top;
    BlendColor(colors.top, colors.bottom, std::max<int>(size.cy - 1, 1), y, &face);
    std::fill(row, row + size.cx, y == 0 ? light : y == size.cy - 1 ? dark : PixelOfColor(face));
    row[0] = y == size.cy - 1 ? dark : light;
    row[size.cx - 1] = dark;
  }
}

// Draws the button's text in white in the middle of `area` and returns its columns. Faster than DrawText, which reads
// the font's metrics several times.
RECT WriteText(HDC dc, const RECT& area, HWND button) {
  wchar_t text[256] = L"";
  const int length = GetWindowTextW(button, text, ARRAYSIZE(text));
  const auto font = reinterpret_cast<HFONT>(SendMessageA(button, WM_GETFONT, 0, 0));
  const SelectedObject selectedFont(dc, font ? font : GetStockObject(SYSTEM_FONT));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, RGB(255, 255, 255));
  SIZE size{};
  GetTextExtentPoint32W(dc, text, length, &size);
  const LONG left = area.left + (area.right - area.left - size.cx) / 2;
  const LONG top = area.top + (area.bottom - area.top - size.cy) / 2;
  ExtTextOutW(dc, left, top, ETO_CLIPPED, &area, text, static_cast<UINT>(length), nullptr);
  // Slanted characters may extend beyond the text's box.
  const LONG lean = size.cy / 2;
  return {std::max(left - lean, area.left), area.top, std::min(left + size.cx + lean, area.right), area.bottom};
}

// Draws text, focus frame and pause mark in white on black. Returns the area that may contain white.
RECT DrawShapes(HDC dc, const RECT& area, HWND button, bool paused, bool focused) {
  FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  const auto white = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
  const RECT text = WriteText(dc, area, button);
  if (paused) {
    const LONG right = area.right - 6, top = area.top + 4, bottom = area.bottom - 4;
    for (const RECT& bar : {RECT{right - 7, top, right - 5, bottom}, RECT{right - 2, top, right, bottom}}) {
      FillRect(dc, &bar, white);
    }
  }
  if (focused) {
    RECT frame = area;
    InflateRect(&frame, -1, -1);
    FrameRect(dc, &frame, white);
  }
  return paused || focused ? area : text;
}

// Returns the coverage of a pixel by the shapes, 0 to 255.
int Coverage(DWORD pixel) {
  return static_cast<int>(pixel >> 8 & 0xFF);
}

DWORD Mixed(DWORD from, DWORD to, int share) {
  if (share == 0) return from;
  DWORD mixed = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    const int start = static_cast<int>(from >> shift & 0xFF), end = static_cast<int>(to >> shift & 0xFF);
    mixed |= static_cast<DWORD>(start + (end - start) * share / 255) << shift;
  }
  return mixed;
}

// Composites the shapes onto the button's face in white with a dark rim of one pixel, which makes them readable on any
// background. The shapes are in the same bitmap, `size.cy` rows below the face, between the columns `left` and `right`.
// The edge of the face is not changed.
void CompositeShapes(const Surface& buffer, SIZE size, LONG left, LONG right, COLORREF rimColor) {
  const DWORD rimPixel = PixelOfColor(rimColor);
  constexpr DWORD kWhite = 0xFFFFFF;
  for (int y = 1; y < size.cy - 1; ++y) {
    DWORD* face = buffer.Row(y);
    const DWORD* rows[] = {buffer.Row(size.cy + y - 1), buffer.Row(size.cy + y), buffer.Row(size.cy + y + 1)};
    for (LONG x = std::max(left - 1, 1L); x < std::min(right, size.cx - 2) + 1; ++x) {
      int rim = 0;
      for (const DWORD* row : rows) {
        rim = std::max({rim, Coverage(row[x - 1]), Coverage(row[x]), Coverage(row[x + 1])});
      }
      face[x] = Mixed(Mixed(face[x], rimPixel, rim), kWhite, Coverage(rows[1][x]));
    }
  }
}

}  // namespace

void DrawStatusButton(const DRAWITEMSTRUCT& item, int scheme, UINT flags) {
  auto* reserved = OfThread<ButtonBuffer>();
  const RECT& area = item.rcItem;
  const SIZE size{area.right - area.left, area.bottom - area.top};
  if (size.cx <= 0 || size.cy <= 0 || !reserved || !reserved->Reserve({size.cx, 2 * size.cy})) return;
  ButtonBuffer& buffer = *reserved;
  const bool pressed = (item.itemState & ODS_SELECTED) != 0;
  const bool focused = (item.itemState & ODS_FOCUS) && !(item.itemState & ODS_NOFOCUSRECT);
  const ButtonColors colors = ButtonColorsOf(scheme, flags, pressed);
  const SelectedObject selected(buffer.dc, buffer.surface.bitmap());
  const RECT shapes =
      DrawShapes(buffer.dc, {0, size.cy, size.cx, 2 * size.cy}, item.hwndItem, (flags & kButtonPaused) != 0, focused);
  GdiFlush();
  DrawButtonFace(buffer.surface, size, colors, pressed, focused);
  CompositeShapes(buffer.surface, size, shapes.left, shapes.right, colors.rim);
  BitBlt(item.hDC, area.left, area.top, size.cx, size.cy, buffer.dc, 0, 0, SRCCOPY);
}

}  // namespace kv
