#include "gallery/pages.h"

#include <algorithm>
#include <cstddef>

#include "gallery/drawing.h"
#include "gallery/frame.h"
#include "gallery/resource_ids.h"
#include "kv/framework/bitmaps.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr int kMarginPx = 12;
constexpr int kDescriptionPercent = 65;  // of the text's color

void FillIndex(HWND page) {
  const HWND index = GetDlgItem(page, IDC_OVERVIEW_INDEX);
  for (size_t i = 1; i < AllPages().size(); ++i) SendMessageA(index, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  SendMessageA(index, LB_SETCURSEL, 0, 0);
}

// Draws a row: the page's title and its description below.
INT_PTR OnDrawItem(HWND page, const DRAWITEMSTRUCT* item) {
  const size_t index = item->itemData;
  if (item->CtlID != IDC_OVERVIEW_INDEX || index >= AllPages().size()) return FALSE;
  const COLORREF color = DrawRowBackground(*item);
  const int textPx = kv::TextHeightOf(page);
  RECT row = item->rcItem;
  InflateRect(&row, -kMarginPx, 0);
  const int middle = (row.top + row.bottom) / 2;
  const bool isSelected = (item->itemState & ODS_SELECTED) != 0;
  DrawLine(item->hDC, kv::ResourceText(IDS_TITLE_FIRST + index), {row.left, middle - textPx - 2, row.right, middle},
           {textPx, FW_SEMIBOLD, color});
  DrawLine(item->hDC, kv::ResourceText(IDS_DESCRIPTION_FIRST + index),
           {row.left, middle, row.right, middle + textPx + 2},
           {textPx, FW_NORMAL, isSelected ? color : kv::ListShade(kDescriptionPercent)});
  return TRUE;
}

// All rows share the list's height; if it is too small for two lines each, the list scrolls.
INT_PTR OnSize(HWND page) {
  const HWND index = GetDlgItem(page, IDC_OVERVIEW_INDEX);
  const int share = kv::ClientSize(index).cy / static_cast<int>(AllPages().size() - 1);
  SendMessageA(index, LB_SETITEMHEIGHT, 0, std::max(share, 3 * kv::TextHeightOf(page) + 2));
  return TRUE;
}

void OnTextsChanged(HWND page) {
  kv::SetControlText(page, IDC_OVERVIEW_TEXT, IDS_OVERVIEW_TEXT);
  kv::SetControlText(page, IDC_OVERVIEW_INDEX, IDS_TITLE_FIRST + PAGE_INDEX_OVERVIEW);  // its name for screen readers
}

INT_PTR OnCommand(HWND page, UINT command, UINT code) {
  if (command != IDC_OVERVIEW_INDEX || code != LBN_DBLCLK) return FALSE;
  const LRESULT row = SendDlgItemMessageA(page, IDC_OVERVIEW_INDEX, LB_GETCURSEL, 0, 0);
  SelectPage(GetParent(page), static_cast<int>(row) + 1);
  return TRUE;
}

}  // namespace

INT_PTR CALLBACK OverviewPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: FillIndex(page); break;
    case WM_SIZE: return OnSize(page);
    case WM_DRAWITEM: return OnDrawItem(page, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case kv::kLanguageChanged: OnTextsChanged(page); break;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
