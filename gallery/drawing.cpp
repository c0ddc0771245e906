#include "gallery/drawing.h"

#include <string>

#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/appearance.h"

namespace gallery {

namespace {

void Draw(HDC dc, const std::wstring& text, const RECT& area, const TextStyle& style, UINT format) {
  const kv::OwnedFont font = kv::MakeFont(style.height, style.weight);
  const kv::SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, style.color);
  kv::DrawFitted(dc, text, area, format);
}

}  // namespace

void DrawLine(HDC dc, const std::wstring& text, RECT area, const TextStyle& style) {
  Draw(dc, text, area, style, DT_SINGLELINE | DT_VCENTER);
}

void DrawLines(HDC dc, const std::wstring& text, RECT area, const TextStyle& style) {
  Draw(dc, text, area, style, DT_WORDBREAK | DT_EDITCONTROL);
}

COLORREF DrawRowBackground(const DRAWITEMSTRUCT& item) {
  const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
  kv::FillSolid(item.hDC, item.rcItem, GetSysColor(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  if (item.itemState & ODS_FOCUS) DrawFocusRect(item.hDC, &item.rcItem);
  return GetSysColor(isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
}

}  // namespace gallery
