#include "controls/instrument_view.h"

#include <algorithm>

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

OwnedFont CreateInstrumentFont(int height, int width, int weight) {
  return OwnedFont(CreateFontW(std::max(height, 1), std::max(width, 0), 0, 0, weight, FALSE, FALSE, FALSE,
                               DEFAULT_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS, PROOF_QUALITY,
                               VARIABLE_PITCH | FF_SWISS, kInstrumentFont));
}

SIZE TextSize(HDC dc, HFONT font, const std::wstring& text) {
  const SelectedObject selected(dc, font);
  SIZE size{};
  GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
  return size;
}

void DrawTextLine(HDC dc, HFONT font, const std::wstring& text, RECT area, COLORREF color, UINT align) {
  const SelectedObject selected(dc, font);
  const int oldMode = SetBkMode(dc, TRANSPARENT);
  const COLORREF oldColor = SetTextColor(dc, color);
  DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area,
            align | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
  SetTextColor(dc, oldColor);
  SetBkMode(dc, oldMode);
}

OwnedFont CreateFittingFont(HDC dc, const std::wstring& text, int height, int least, int width, int weight) {
  OwnedFont font = CreateInstrumentFont(std::max(height, least), 0, weight);
  while (height > least) {
    const int taken = TextSize(dc, font, text).cx;
    if (taken <= width) break;
    height = std::clamp(MulDiv(height, std::max(width, 1), taken), least, height - 1);
    font = CreateInstrumentFont(height, 0, weight);
  }
  return font;
}

int CaptionFontHeight(int governingSide) {
  return governingSide < 32 ? 9 : 14;
}

void DrawCaption(HDC dc, const RECT& strip, const InstrumentView& view, int fontHeight, UINT align) {
  const OwnedFont font = CreateInstrumentFont(fontHeight, static_cast<int>(fontHeight / 2.5), FW_NORMAL);
  DrawTextLine(dc, font, InstrumentName(view.block), strip,
               GetSysColor(IsDisabled(view) ? COLOR_GRAYTEXT : COLOR_BTNTEXT), align);
}

RECT DrawDisplayWell(HDC dc, RECT area) {
  if (IsRectEmpty(&area)) return area;
  DrawSunkenFrame(dc, &area);
  FillSolid(dc, area, RGB(0, 0, 0));
  return area;
}

}  // namespace kv
