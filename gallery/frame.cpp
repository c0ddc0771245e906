#include "gallery/frame.h"

#include "framework/control_class.h"
#include "framework/dialog.h"
#include "framework/dialog_layout.h"
#include "framework/guards.h"
#include "framework/language.h"
#include "framework/modules.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "framework/tool_tips.h"
#include "framework/window_position.h"
#include "gallery/drawing.h"
#include "gallery/languages.h"
#include "gallery/page.h"
#include "gallery/pages.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr char kPositionName[] = "Gallery.Main";
constexpr int kListWidth = 196, kHeaderHeight = 64, kRowHeight = 28, kMargin = 16;
constexpr int kSmallestWidth = 760, kSmallestHeight = 560;

int selectedPage = -1;
HWND toolTips = nullptr;
WNDPROC classProcedure = nullptr;

HWND ListOf(HWND frame) {
  return GetDlgItem(frame, IDC_PAGE_LIST);
}

RECT HeaderArea(SIZE client) {
  return {kListWidth, 0, client.cx, kHeaderHeight};
}

RECT PageArea(SIZE client) {
  return {kListWidth + 1, kHeaderHeight + 1, client.cx, client.cy};
}

// ---- Layout and painting -------------------------------------------------------------------------------------------

void PlacePage(HWND page, SIZE client) {
  const RECT area = PageArea(client);
  MoveWindow(page, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
}

INT_PTR OnSize(HWND frame, WPARAM kind) {
  if (kind == SIZE_MINIMIZED) return TRUE;
  const SIZE client = kv::ClientSize(frame);
  MoveWindow(ListOf(frame), 0, 0, kListWidth, client.cy, TRUE);
  if (HWND page = selectedPage < 0 ? nullptr : ExistingPageWindow(selectedPage)) PlacePage(page, client);
  const RECT header = HeaderArea(client);
  InvalidateRect(frame, &header, TRUE);
  return TRUE;
}

INT_PTR OnPaint(HWND frame) {
  const kv::PaintScope paint(frame);
  const SIZE client = kv::ClientSize(frame);
  const RECT header = HeaderArea(client);
  kv::FillSolid(paint.dc(), {kListWidth, 0, client.cx, client.cy}, PageColor());
  kv::FillHorizontalGradient(paint.dc(), header, kv::kDialogBlue, RGB(0x78, 0x78, 0xFF));
  if (selectedPage < 0) return TRUE;
  DrawLine(paint.dc(), Text(IDS_TITLE_FIRST + selectedPage), {header.left + kMargin, 6, header.right - kMargin, 36}, 24,
           FW_SEMIBOLD, RGB(255, 255, 255));
  DrawLine(paint.dc(), Text(IDS_DESCRIPTION_FIRST + selectedPage),
           {header.left + kMargin, 36, header.right - kMargin, 58}, 16, FW_NORMAL, RGB(0xE8, 0xE8, 0xFF));
  return TRUE;
}

INT_PTR OnDrawItem(const DRAWITEMSTRUCT* item) {
  if (item->CtlID != IDC_PAGE_LIST || item->itemID >= AllPages().size()) return FALSE;
  const bool isSelected = (item->itemState & ODS_SELECTED) != 0;
  kv::FillSolid(item->hDC, item->rcItem, isSelected ? kv::kDialogBlue : GetSysColor(COLOR_WINDOW));
  RECT area = item->rcItem;
  area.left += kMargin;
  DrawLine(item->hDC, Text(IDS_TITLE_FIRST + item->itemID), area, 16, isSelected ? FW_SEMIBOLD : FW_NORMAL,
           isSelected ? RGB(255, 255, 255) : GetSysColor(COLOR_WINDOWTEXT));
  return TRUE;
}

// ---- Texts ---------------------------------------------------------------------------------------------------------

void TranslateMenu(HMENU menu) {
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    MENUITEMINFOW item{};
    item.cbSize = sizeof(item);
    item.fMask = MIIM_ID | MIIM_SUBMENU;
    GetMenuItemInfoW(menu, i, TRUE, &item);
    TranslateMenu(item.hSubMenu);
    std::wstring text = Text(TEXT_OF(item.wID));
    if (text.empty()) continue;
    item.fMask = MIIM_STRING;
    item.dwTypeData = text.data();
    SetMenuItemInfoW(menu, i, TRUE, &item);
  }
}

// The language menu outlives the menu bars that it is in.
void SetLanguageMenu(HMENU bar, HMENU languageMenu) {
  MENUITEMINFOW item{};
  item.cbSize = sizeof(item);
  item.fMask = MIIM_SUBMENU;
  item.hSubMenu = languageMenu;
  SetMenuItemInfoW(bar, IDM_GALLERY_LANGUAGE_MENU, FALSE, &item);
}

void ReplaceMenu(HWND frame) {
  HMENU menu = LoadMenuW(kv::modules.application, L"MENU_GALLERY");
  TranslateMenu(menu);
  HMENU previous = GetMenu(frame);
  if (previous) RemoveMenu(previous, IDM_GALLERY_LANGUAGE_MENU, MF_BYCOMMAND);
  SetLanguageMenu(menu, LanguageMenu());
  SetMenu(frame, menu);
  if (previous) DestroyMenu(previous);
}

void ReplaceToolTips(HWND frame) {
  if (toolTips) DestroyWindow(toolTips);
  const std::wstring tip = Text(IDS_LIST_TIP);
  const kv::ToolTipEntry tips[] = {{IDC_PAGE_LIST, tip.c_str()}};
  toolTips = kv::CreateToolTips(kv::modules.application, frame, tips, ARRAYSIZE(tips));
}

// Windows of the dialog class speak the code page, where a caption in another script ends as question marks: what
// concerns the caption goes past the class.
LRESULT CALLBACK WideCaptionProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SETTEXT:
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH: return DefWindowProcW(frame, message, wParam, lParam);
    default: return CallWindowProcW(classProcedure, frame, message, wParam, lParam);
  }
}

// ---- Life ----------------------------------------------------------------------------------------------------------

INT_PTR OnInit(HWND frame, int firstPage) {
  classProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongW(frame, GWL_WNDPROC, reinterpret_cast<LONG>(WideCaptionProcedure)));
  HWND list = ListOf(frame);
  SendMessageA(list, LB_SETITEMHEIGHT, 0, kRowHeight);
  for (size_t i = 0; i < AllPages().size(); ++i) SendMessageA(list, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  RefreshTexts(frame);
  kv::WindowPosition(frame, kPositionName, kv::kPositionRestore);
  kv::ModelessDialogs(frame, nullptr, kv::kModelessAdd);
  OnSize(frame, SIZE_RESTORED);
  SelectPage(frame, firstPage);
  SetFocus(list);
  return FALSE;
}

INT_PTR OnClose(HWND frame) {
  kv::WindowPosition(frame, kPositionName, kv::kPositionSave);
  kv::ModelessDialogs(frame, nullptr, kv::kModelessRemove);
  DestroyWindow(frame);
  return TRUE;
}

INT_PTR OnDestroy() {
  PostQuitMessage(0);
  return TRUE;
}

INT_PTR OnCommand(HWND frame, UINT command, UINT code) {
  switch (command) {
    case IDC_PAGE_LIST:
      if (code == LBN_SELCHANGE) SelectPage(frame, SendDlgItemMessageA(frame, IDC_PAGE_LIST, LB_GETCURSEL, 0, 0));
      return TRUE;
    case IDM_GALLERY_EXIT: return PostMessageA(frame, WM_CLOSE, 0, 0);
    case IDM_GALLERY_ABOUT:
      MessageBoxW(frame, Text(IDS_ABOUT_TEXT).c_str(), Text(IDS_ABOUT_CAPTION).c_str(), MB_ICONINFORMATION);
      return TRUE;
    case IDM_GALLERY_HELP: return OpenGalleryHelp(frame);
    default:
      if (command < IDM_LANGUAGE_FIRST || command >= IDM_LANGUAGE_FIRST + kv::kLanguageCount) return FALSE;
      ChooseLanguage(frame, static_cast<int>(command) - IDM_LANGUAGE_FIRST);
      return TRUE;
  }
}

}  // namespace

INT_PTR CALLBACK FrameProcedure(HWND frame, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(frame, static_cast<int>(lParam));
    case WM_SIZE: return OnSize(frame, wParam);
    case WM_PAINT: return OnPaint(frame);
    case WM_MEASUREITEM: reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = kRowHeight; return TRUE;
    case WM_DRAWITEM: return OnDrawItem(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_COMMAND: return OnCommand(frame, LOWORD(wParam), HIWORD(wParam));
    case WM_HELP: return OpenGalleryHelp(frame);
    case WM_SIZING:
      return kv::LimitSizing(static_cast<UINT>(wParam), reinterpret_cast<RECT*>(lParam), kSmallestWidth,
                             kSmallestHeight);
    case WM_CLOSE: return OnClose(frame);
    case WM_DESTROY: return OnDestroy();
    default: return FALSE;
  }
}

void SelectPage(HWND frame, int index) {
  if (index < 0 || index >= static_cast<int>(AllPages().size()) || index == selectedPage) return;
  const auto show = [](HWND page, bool shown) {
    ShowWindow(page, shown ? SW_SHOW : SW_HIDE);
    SendMessageA(page, kPageShown, shown, 0);
  };
  if (HWND previous = selectedPage < 0 ? nullptr : ExistingPageWindow(selectedPage)) show(previous, false);
  selectedPage = index;
  SendMessageA(ListOf(frame), LB_SETCURSEL, index, 0);
  if (HWND page = PageWindow(frame, index)) {
    PlacePage(page, kv::ClientSize(frame));
    show(page, true);
  }
  kv::RepaintNow(frame);
}

void RefreshTexts(HWND frame) {
  ReplaceMenu(frame);
  ReplaceToolTips(frame);
  SetWindowTextW(frame, Text(IDS_GALLERY_CAPTION).c_str());
  for (size_t i = 0; i < AllPages().size(); ++i) {
    if (HWND page = ExistingPageWindow(static_cast<int>(i))) SendMessageA(page, kTextsChanged, 0, 0);
  }
  RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace gallery
