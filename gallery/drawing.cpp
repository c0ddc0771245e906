#include "gallery/drawing.h"
#include <string>
#include <vector>

#include "framework/guards.h"
#include "framework/painting.h"
#include "gallery/languages.h"

namespace gallery {

namespace {

std::vector<std::wstring>* cutTexts = nullptr;

void Draw(HDC dc, const std::wstring& text, const RECT& area, const TextStyle& style, UINT format) {
  const kv::OwnedFont font = MakeFont(style.height, style.weight);
  const kv::SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, style.color);
  DrawFitted(dc, text, area, format);
}

}  // namespace

kv::OwnedFont MakeFont(int height, int weight) {
  return kv::OwnedFont(CreateFontW(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, PROOF_QUALITY, VARIABLE_PITCH | FF_SWISS, L"Arial Unicode MS"));
}

void DrawLine(HDC dc, const std::wstring& text, RECT area, const TextStyle& style) {
  Draw(dc, text, area, style, DT_SINGLELINE | DT_VCENTER);
}

void DrawLines(HDC dc, const std::wstring& text, RECT area, const TextStyle& style) {
  Draw(dc, text, area, style, DT_WORDBREAK | DT_EDITCONTROL);
}

void DrawFitted(HDC dc, const std::wstring& text, RECT area, UINT format) {
  format |= DT_NOPREFIX | (IsRightToLeft() ? DT_RTLREADING : 0u);
  if (cutTexts) {
    RECT needed = area;
    DrawTextW(dc, text.c_str(), -1, &needed, format | DT_CALCRECT);
    const bool tooWide = needed.right - needed.left > area.right - area.left;
    if (tooWide || needed.bottom - needed.top > area.bottom - area.top) cutTexts->push_back(text);
  }
  DrawTextW(dc, text.c_str(), -1, &area, format | DT_END_ELLIPSIS);
}

COLORREF DrawRowBackground(const DRAWITEMSTRUCT& item) {
  const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
  kv::FillSolid(item.hDC, item.rcItem, GetSysColor(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  if (item.itemState & ODS_FOCUS) DrawFocusRect(item.hDC, &item.rcItem);
  return GetSysColor(isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
}

void CollectCutTexts(std::vector<std::wstring>* texts) {
  cutTexts = texts;
}

COLORREF ListShade(int percent) {
  COLORREF shade = GetSysColor(COLOR_WINDOW);
  kv::BlendColor(shade, GetSysColor(COLOR_WINDOWTEXT), 100, percent, &shade);
  return shade;
}

bool IsHighContrast() {
  HIGHCONTRASTW state{};
  state.cbSize = sizeof(state);
  return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(state), &state, 0) && state.dwFlags & HCF_HIGHCONTRASTON;
}

}  // namespace gallery
