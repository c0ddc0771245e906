#include "controls/instrument/view.h"

#include <algorithm>
#include <string_view>

#include "controls/instrument_block.h"
#include "controls/instrument/cache.h"
#include "controls/instrument/text.h"
#include "framework/canvas.h"
#include "framework/guards.h"
#include "framework/painting.h"

namespace kv {

DialColors ColorsOf(const InstrumentView& view) {
  if (IsDisabled(view)) {
    return {.rimTop = RGB(206, 208, 211),
            .rimBottom = RGB(140, 143, 147),
            .faceTop = RGB(120, 123, 127),
            .faceBottom = RGB(104, 107, 111),
            .ink = RGB(166, 169, 173),
            .faintInk = RGB(148, 151, 155),
            .window = RGB(98, 101, 105)};
  }
  const bool valid = ReadingOf(view.block).valid;
  return {.rimTop = RGB(196, 201, 207),
          .rimBottom = RGB(62, 66, 72),
          .faceTop = RGB(48, 52, 58),
          .faceBottom = RGB(20, 22, 26),
          .ink = valid ? RGB(240, 243, 246) : RGB(128, 133, 139),
          .faintInk = valid ? RGB(166, 173, 181) : RGB(104, 109, 115),
          .window = RGB(8, 9, 11)};
}

COLORREF ShownColor(const InstrumentView& view, COLORREF color) {
  color &= kRgbBits;
  if (!IsDisabled(view)) return color;
  const int lightness = (GetRValue(color) * 30 + GetGValue(color) * 59 + GetBValue(color) * 11) / 100;
  const int grey = 84 + lightness / 3;
  return RGB(grey, grey, grey);
}

SIZE TextSize(HDC dc, HFONT font, std::wstring_view text) {
  const SelectedObject selected(dc, font);
  SIZE size{};
  GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
  return size;
}

void DrawTextLine(Canvas& canvas, HFONT font, std::wstring_view text, RECT area, COLORREF color, UINT align) {
  if (!(align & DT_NOCLIP) && canvas.Hides(area)) return;
  HDC dc = canvas.dc();
  const SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, color);
  DrawTextW(dc, text.data(), static_cast<int>(text.size()), &area,
            align | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
}

HFONT FittingFont(HDC dc, InstrumentFonts& fonts, std::wstring_view text, int height, int least, int width,
                  int weight) {
  height = std::max(height, least);
  HFONT font = fonts.Get(height, 0, weight);
  while (height > least) {
    const int taken = TextSize(dc, font, text).cx;
    if (taken <= width) break;
    height = std::clamp(MulDiv(height, std::max(width, 1), taken), least, height - 1);
    font = fonts.Get(height, 0, weight);
  }
  return font;
}

DWORD LookOf(std::wstring_view text) {
  return LookOf(text.data(), text.size() * sizeof(wchar_t));
}

int CaptionFontHeight(int governingSide) {
  return governingSide < 32 ? 9 : 14;
}

void DrawCaption(Canvas& canvas, const RECT& strip, const InstrumentView& view, int fontHeight, UINT align) {
  DrawTextLine(canvas, view.keep.fonts.Get(fontHeight, static_cast<int>(fontHeight / 2.5), FW_NORMAL),
               NameOf(view.block), strip, GetSysColor(IsDisabled(view) ? COLOR_GRAYTEXT : COLOR_BTNTEXT), align);
}

RECT DrawDisplayWell(Canvas& canvas, RECT area) {
  if (IsRectEmpty(&area)) return area;
  DrawSunkenFrame(canvas.dc(), &area);
  FillArea(canvas, area, RGB(0, 0, 0));
  return area;
}

}  // namespace kv
