#include "gallery/pages.h"

#include <cstddef>

#include "framework/bitmaps.h"
#include "gallery/drawing.h"
#include "gallery/frame.h"
#include "gallery/resource_ids.h"
#include "toolkit/languages.h"
#include "toolkit/scaled_dialog.h"

namespace gallery {

namespace {

// In parts of the design's page height.
constexpr int kDesignHeight = 450, kRowHeight = 42, kTextHeight = 16, kDescriptionHeight = 14, kRowMargin = 12;

int Scaled(HWND page, int length) {
  return MulDiv(length, kv::ClientSize(page).cy, kDesignHeight);
}

void FillIndex(HWND page) {
  const HWND index = GetDlgItem(page, IDC_OVERVIEW_INDEX);
  for (size_t i = 1; i < AllPages().size(); ++i) SendMessageA(index, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  SendMessageA(index, LB_SETCURSEL, 0, 0);
}

// A row: the page's title and, below it, its description.
INT_PTR OnDrawItem(HWND page, const DRAWITEMSTRUCT* item) {
  const size_t index = item->itemData;
  if (item->CtlID != IDC_OVERVIEW_INDEX || index >= AllPages().size()) return FALSE;
  const COLORREF color = DrawRowBackground(*item);
  const int textPx = Scaled(page, kTextHeight), margin = Scaled(page, kRowMargin);
  RECT row = item->rcItem;
  InflateRect(&row, -margin, 0);
  const int middle = (row.top + row.bottom) / 2;
  DrawLine(item->hDC, kv::ResourceText(IDS_TITLE_FIRST + index), {row.left, middle - textPx - 2, row.right, middle},
           {textPx, FW_SEMIBOLD, color});
  DrawLine(item->hDC, kv::ResourceText(IDS_DESCRIPTION_FIRST + index),
           {row.left, middle, row.right, middle + textPx + 2}, {Scaled(page, kDescriptionHeight), FW_NORMAL, color});
  return TRUE;
}

INT_PTR OnSize(HWND page) {
  SendDlgItemMessageA(page, IDC_OVERVIEW_INDEX, LB_SETITEMHEIGHT, 0, Scaled(page, kRowHeight));
  return TRUE;
}

void OnTextsChanged(HWND page) {
  SetPageText(page, IDC_OVERVIEW_TEXT, IDS_OVERVIEW_TEXT);
  SetPageText(page, IDC_OVERVIEW_INDEX, IDS_TITLE_FIRST + PAGE_INDEX_OVERVIEW);  // its name, for a screen reader
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
