#include "kv/toolkit/appearance.h"

#include <string>
#include <vector>

#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/text_tips.h"

namespace kv {

namespace {

std::vector<std::wstring>* truncatedTexts = nullptr;

OwnedFont Make(int height, int weight, BYTE pitchAndFamily, const wchar_t* face) {
  return OwnedFont(CreateFontW(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                               CLIP_DEFAULT_PRECIS, PROOF_QUALITY, pitchAndFamily, face));
}

}  // namespace

OwnedFont MakeFont(int height, int weight) {
  return Make(height, weight, VARIABLE_PITCH | FF_SWISS, L"Arial Unicode MS");
}

OwnedFont MakeFixedPitchFont(int height, int weight) {
  return Make(height, weight, FIXED_PITCH | FF_MODERN, L"Courier New");
}

void DrawFitted(HDC dc, const std::wstring& text, RECT area, UINT format) {
  format |= DT_NOPREFIX | (IsRightToLeft() ? DT_RTLREADING : 0u);
  if (truncatedTexts) {
    RECT needed = area;
    DrawTextW(dc, text.c_str(), -1, &needed, format | DT_CALCRECT);
    const bool tooWide = needed.right - needed.left > area.right - area.left;
    if (tooWide || needed.bottom - needed.top > area.bottom - area.top) truncatedTexts->push_back(text);
  }
  DrawTextW(dc, text.c_str(), -1, &area, format | DT_END_ELLIPSIS);
}

void CollectTruncatedTexts(std::vector<std::wstring>* texts) {
  truncatedTexts = texts;
}

COLORREF ListShade(int percent) {
  return MixColors(GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_WINDOWTEXT), percent);
}

}  // namespace kv
