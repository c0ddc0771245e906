#include "gallery/pages/overview_page.h"

#include "framework/guards.h"
#include "framework/painting.h"
#include "gallery/drawing.h"
#include "gallery/frame.h"
#include "gallery/page.h"
#include "gallery/pages.h"
#include "gallery/pages/overview_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr int kRowHeight = 30, kRowMargin = 12, kTitleWidth = 170, kTextHeight = 16;

void FillIndex(HWND page) {
  const HWND index = GetDlgItem(page, IDC_OVERVIEW_INDEX);
  SendMessageA(index, LB_SETITEMHEIGHT, 0, kRowHeight);
  for (size_t i = 1; i < AllPages().size(); ++i) SendMessageA(index, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
}

// A row: the page's title and, beside it, its description.
INT_PTR OnDrawItem(const DRAWITEMSTRUCT* item) {
  const size_t index = item->itemData;
  if (item->CtlID != IDC_OVERVIEW_INDEX || index >= AllPages().size()) return FALSE;
  const bool isSelected = (item->itemState & ODS_SELECTED) != 0;
  kv::FillSolid(item->hDC, item->rcItem, isSelected ? kv::kDialogBlue : GetSysColor(COLOR_WINDOW));
  const RECT& row = item->rcItem;
  const COLORREF color = isSelected ? RGB(255, 255, 255) : GetSysColor(COLOR_WINDOWTEXT);
  DrawLine(item->hDC, Text(IDS_TITLE_FIRST + index),
           {row.left + kRowMargin, row.top, row.left + kTitleWidth, row.bottom}, kTextHeight, FW_SEMIBOLD, color);
  DrawLine(item->hDC, Text(IDS_DESCRIPTION_FIRST + index),
           {row.left + kTitleWidth + kRowMargin, row.top, row.right - kRowMargin, row.bottom}, kTextHeight, FW_NORMAL,
           color);
  return TRUE;
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
    case WM_MEASUREITEM: reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = kRowHeight; return TRUE;
    case WM_DRAWITEM: return OnDrawItem(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case kTextsChanged: SetPageText(page, IDC_OVERVIEW_TEXT, IDS_OVERVIEW_TEXT); break;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
