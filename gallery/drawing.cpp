#include "gallery/drawing.h"

namespace gallery {

kv::OwnedFont MakeFont(int height, int weight) {
  return kv::OwnedFont(CreateFontW(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, PROOF_QUALITY, VARIABLE_PITCH | FF_SWISS, L"Arial Unicode MS"));
}

void DrawLine(HDC dc, const std::wstring& text, RECT area, int height, int weight, COLORREF color) {
  const kv::OwnedFont font = MakeFont(height, weight);
  const kv::SelectedObject selected(dc, font);
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, color);
  DrawTextW(dc, text.c_str(), -1, &area, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

}  // namespace gallery
