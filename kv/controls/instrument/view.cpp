#include "kv/controls/instrument/view.h"

#include <algorithm>
#include <string_view>

#include "kv/controls/instrument/cache.h"
#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument/text.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"

namespace kv {

DialColors ColorsOf(const InstrumentAppearance& appearance) {
  if (IsDisabled(appearance)) {
    return {.rimTop = RGB(206, 208, 211),
            .rimBottom = RGB(140, 143, 147),
            .dialTop = RGB(120, 123, 127),
            .dialBottom = RGB(104, 107, 111),
            .ink = RGB(166, 169, 173),
            .faintInk = RGB(148, 151, 155),
            .window = RGB(98, 101, 105)};
  }
  const bool valid = ReadingOf(appearance.block).valid;
  return {.rimTop = RGB(196, 201, 207),
          .rimBottom = RGB(62, 66, 72),
          .dialTop = RGB(48, 52, 58),
          .dialBottom = RGB(20, 22, 26),
          .ink = valid ? RGB(240, 243, 246) : RGB(128, 133, 139),
          .faintInk = valid ? RGB(166, 173, 181) : RGB(104, 109, 115),
          .window = RGB(8, 9, 11)};
}

COLORREF ShownColor(const InstrumentAppearance& appearance, COLORREF color) {
  color &= kRgbBits;
  if (!IsDisabled(appearance)) return color;
  const int lightness = (GetRValue(color) * 30 + GetGValue(color) * 59 + GetBValue(color) * 11) / 100;
  const int gray = 84 + lightness / 3;
  return RGB(gray, gray, gray);
}

SIZE MeasureText(std::wstring_view text, int height, int weight) {
  HDC dc = InstrumentTools()->dc;
  const SelectedObject selected(dc, InstrumentFont(height, 0, weight));
  SIZE size{};
  GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
  return size;
}

int FittingHeight(std::wstring_view text, int height, int least, int width, int weight) {
  height = std::max(height, least);
  while (height > least) {
    const int taken = MeasureText(text, height, weight).cx;
    if (taken <= width) break;
    height = std::clamp(MulDiv(height, std::max(width, 1), taken), least, height - 1);
  }
  return height;
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

int CaptionFontHeight(int governingSide, DWORD style) {
  constexpr int kSmall = 9, kNormal = 14;
  if (!(style & kInstrumentFitted)) return governingSide < 32 ? kSmall : kNormal;
  // Captions of neighbors of different sizes do not differ as much as their sizes.
  return std::max(kSmall, std::min(governingSide * 3 / 10, 10 + governingSide / 12));
}

void DrawCaption(Canvas& canvas, const RECT& strip, const InstrumentAppearance& appearance, int fontHeight,
                 UINT align) {
  const FixedText name = DecodedName(appearance.block);
  const bool fitted = (appearance.style & kInstrumentFitted) != 0;
  const int height = fitted ? FittingHeight(name, fontHeight, 9, strip.right - strip.left, FW_NORMAL) : fontHeight;
  DrawTextLine(canvas, InstrumentFont(height, fitted ? 0 : static_cast<int>(height / 2.5), FW_NORMAL), name, strip,
               GetSysColor(IsDisabled(appearance) ? COLOR_GRAYTEXT : COLOR_BTNTEXT), fitted ? DT_CENTER : align);
}

void DrawDisplayWell(Canvas& canvas, RECT area) {
  if (IsRectEmpty(&area)) return;
  DrawSunkenFrame(canvas.dc(), &area);
  FillArea(canvas, area, RGB(0, 0, 0));
}

RECT WithinFrame(RECT area) {
  InflateRect(&area, -kSunkenEdge, -kSunkenEdge);
  return area;
}

void FillRounded(Canvas& canvas, const RECT& area, bool vertical, COLORREF edge, COLORREF color) {
  RECT first = area, second = area;
  if (vertical) {
    first.right = second.left = (area.left + area.right) / 2;
  } else {
    first.bottom = second.top = (area.top + area.bottom) / 2;
  }
  const auto fill = vertical ? FillAreaAcross : FillAreaDown;
  fill(canvas, first, edge, color);
  fill(canvas, second, color, edge);
}

Dial DialIn(const RECT& area) {
  const int width = area.right - area.left, height = area.bottom - area.top;
  const PointD center{area.left + width / 2.0, area.top + height / 2.0};
  const double side = std::min(width, height);
  if (side < 4) return {center, 0, 0};
  const double radius = side / 2 - (side < 64 ? 0.5 : 1.0 + side / 200);
  return {center, radius, radius - std::max(1.25, radius * 0.07)};
}

void DrawDialCase(Canvas& canvas, const Dial& dial, const InstrumentAppearance& appearance) {
  FillArea(canvas, appearance.area, GetSysColor(COLOR_BTNFACE));
  if (dial.radius <= 0) return;
  const DialColors colors = ColorsOf(appearance);
  const double rim = dial.radius - dial.innerRadius;
  FillGradientDisc(canvas, dial.center, dial.radius, colors.rimTop, colors.rimBottom);
  // The inner slope of the rim is lit from the opposite side.
  FillGradientDisc(canvas, dial.center, dial.innerRadius + rim * 0.45, colors.rimBottom, colors.rimTop);
  FillDisc(canvas, dial.center, dial.innerRadius + rim * 0.12, RGB(10, 11, 13));
  FillGradientDisc(canvas, dial.center, dial.innerRadius, colors.dialTop, colors.dialBottom);
}

}  // namespace kv
