#include "gallery/frame.h"

#include <algorithm>
#include <cstddef>

#include "framework/control_class.h"
#include "framework/dialog_layout.h"
#include "framework/guards.h"
#include "framework/language.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "framework/window_position.h"
#include "gallery/drawing.h"
#include "gallery/frame_header.h"
#include "gallery/frame_menu.h"
#include "gallery/keyboard.h"
#include "gallery/languages.h"
#include "gallery/mirroring.h"
#include "gallery/page.h"
#include "gallery/pages.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

constexpr char kPositionName[] = "Gallery.Main", kMaximisedName[] = "Gallery.Maximised";
constexpr char kLastPageName[] = "Gallery.LastPage";  // by its place in the list
constexpr int kSmallestWidth = 760, kSmallestHeight = 576;

int selectedPage = -1;
WNDPROC classProcedure = nullptr;

HWND ListOf(HWND frame) {
  return GetDlgItem(frame, IDC_PAGE_LIST);
}

// ---- Layout --------------------------------------------------------------------------------------------------------

RECT PageArea(SIZE client) {
  const FrameLayout layout = LayoutFor(client);
  return {layout.listWidth + 1, layout.headerHeight + 1, client.cx, client.cy};
}

void PlacePage(HWND page, SIZE client) {
  const RECT area = PageArea(client);
  MoveWindow(page, area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
}

INT_PTR OnSize(HWND frame, WPARAM kind) {
  if (kind == SIZE_MINIMIZED) return TRUE;
  const SIZE client = kv::ClientSize(frame);
  const FrameLayout layout = LayoutFor(client);
  SendMessageA(ListOf(frame), LB_SETITEMHEIGHT, 0, layout.rowHeight);
  MoveWindow(ListOf(frame), 0, 0, layout.listWidth, client.cy, TRUE);
  if (HWND page = ShownPage()) PlacePage(page, client);
  InvalidateRect(frame, nullptr, TRUE);
  return TRUE;
}

// ---- Painting ------------------------------------------------------------------------------------------------------

INT_PTR OnPaint(HWND frame) {
  const kv::PaintScope paint(frame);
  const SIZE client = kv::ClientSize(frame);
  const FrameLayout layout = LayoutFor(client);
  kv::FillSolid(paint.dc(), {layout.listWidth, 0, client.cx, client.cy}, PageColor());
  DrawHeader(paint.dc(), {layout.listWidth, 0, client.cx, layout.headerHeight}, layout, selectedPage);
  return TRUE;
}

INT_PTR OnDrawItem(HWND frame, const DRAWITEMSTRUCT* item) {
  if (item->CtlID != IDC_PAGE_LIST || item->itemID >= AllPages().size()) return FALSE;
  const FrameLayout layout = LayoutFor(kv::ClientSize(frame));
  RECT area = item->rcItem;
  const COLORREF color = DrawRowBackground(*item);
  area.left += layout.margin;
  DrawLine(item->hDC, Text(IDS_TITLE_FIRST + item->itemID), area,
           {layout.textPx, item->itemState & ODS_SELECTED ? FW_SEMIBOLD : FW_NORMAL, color});
  return TRUE;
}

INT_PTR OnColorsChanged(HWND frame) {
  for (HWND child = GetWindow(frame, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
  }
  RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  return TRUE;
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

// The place where the user left the window. Where no screen shows that any more, or it has shrunk, the middle of the
// desktop.
void RestorePlace(HWND frame) {
  constexpr char kNothingStored[] = "";
  kv::WindowPosition(frame, kPositionName, kv::kPositionRestore);
  RECT place{};
  GetWindowRect(frame, &place);
  const bool tooSmall = place.right - place.left < kSmallestWidth || place.bottom - place.top < kSmallestHeight;
  if (tooSmall || !MonitorFromWindow(frame, MONITOR_DEFAULTTONULL)) {
    SetWindowPos(frame, nullptr, 0, 0, kSmallestWidth, kSmallestHeight, SWP_NOMOVE | SWP_NOZORDER);
    kv::WindowPosition(frame, kNothingStored, kv::kPositionRestore);
  }
  DWORD maximised = 0;
  kv::WindowNumber(kMaximisedName, &maximised, kv::kPositionRestore);
  if (maximised) ShowWindow(frame, SW_MAXIMIZE);
}

void Remember(HWND frame) {
  DWORD maximised = IsZoomed(frame), page = static_cast<DWORD>(selectedPage);
  kv::WindowPosition(frame, kPositionName, kv::kPositionSave);
  kv::WindowNumber(kMaximisedName, &maximised, kv::kPositionSave);
  kv::WindowNumber(kLastPageName, &page, kv::kPositionSave);
}

int FirstPage(int wanted) {
  DWORD last = 0;
  if (wanted < 0) kv::WindowNumber(kLastPageName, &last, kv::kPositionRestore);
  return wanted >= 0 ? wanted : last < AllPages().size() ? static_cast<int>(last) : 0;
}

INT_PTR OnInit(HWND frame, int firstPage) {
  classProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongW(frame, GWL_WNDPROC, reinterpret_cast<LONG>(WideCaptionProcedure)));
  HWND list = ListOf(frame);
  for (size_t i = 0; i < AllPages().size(); ++i) SendMessageA(list, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
  RefreshTexts(frame);
  RestorePlace(frame);
  OnSize(frame, SIZE_RESTORED);
  SelectPage(frame, FirstPage(firstPage));
  SetFocus(list);
  return FALSE;
}

INT_PTR OnClose(HWND frame) {
  // Under an open dialog or message box the frame must not go away: the code that opened it still stands on the stack.
  if (!IsWindowEnabled(frame)) {
    SetForegroundWindow(GetLastActivePopup(frame));
    return TRUE;
  }
  Remember(frame);
  DestroyWindow(frame);
  return TRUE;
}

INT_PTR OnDestroy() {
  PostQuitMessage(0);
  return TRUE;
}

INT_PTR OnHelp(HWND frame) {
  return OpenGalleryHelp(frame, AllPages()[std::max(selectedPage, 0)].name);
}

INT_PTR OnCommand(HWND frame, UINT command, UINT code) {
  switch (command) {
    case IDC_PAGE_LIST:
      if (code == LBN_SELCHANGE) SelectPage(frame, SendDlgItemMessageA(frame, IDC_PAGE_LIST, LB_GETCURSEL, 0, 0));
      if (code == LBN_DBLCLK) FocusPage(ShownPage());
      return TRUE;
    case IDM_GALLERY_EXIT: return PostMessageA(frame, WM_CLOSE, 0, 0);
    case IDM_GALLERY_ABOUT:
      ShowMessage(frame, Text(IDS_ABOUT_TEXT), IDS_ABOUT_CAPTION, MB_ICONINFORMATION);
      return TRUE;
    case IDM_GALLERY_HELP: return OnHelp(frame);
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
    case WM_DRAWITEM: return OnDrawItem(frame, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_SYSCOLORCHANGE: return OnColorsChanged(frame);
    case WM_COMMAND: return OnCommand(frame, LOWORD(wParam), HIWORD(wParam));
    case WM_HELP: return OnHelp(frame);
    case WM_SIZING:
      return kv::LimitSizing(static_cast<UINT>(wParam), reinterpret_cast<RECT*>(lParam), kSmallestWidth,
                             kSmallestHeight);
    case WM_CLOSE: return OnClose(frame);
    case WM_DESTROY: return OnDestroy();
    default: return FALSE;
  }
}

HWND ShownPage() {
  return selectedPage < 0 ? nullptr : ExistingPageWindow(selectedPage);
}

void SelectPage(HWND frame, int index) {
  if (index < 0 || index >= static_cast<int>(AllPages().size()) || index == selectedPage) return;
  const auto show = [](HWND page, bool shown) {
    ShowWindow(page, shown ? SW_SHOW : SW_HIDE);
    SendMessageA(page, kPageShown, shown, 0);
  };
  const HWND previous = ShownPage();
  // A hidden page must not keep the focus; it goes to the one that comes.
  const bool hadFocus = previous && IsChild(previous, GetFocus());
  if (hadFocus) SetFocus(ListOf(frame));
  if (previous) show(previous, false);
  selectedPage = index;
  SendMessageA(ListOf(frame), LB_SETCURSEL, index, 0);
  if (HWND page = PageWindow(frame, index)) {
    PlacePage(page, kv::ClientSize(frame));
    show(page, true);
    if (hadFocus) FocusPage(page);
  }
  kv::RepaintNow(frame);
}

void RefreshTexts(HWND frame) {
  ReplaceMenu(frame);
  ReplaceToolTips(frame);
  SetWindowTextW(frame, Text(IDS_GALLERY_CAPTION).c_str());
  SetWindowTextW(ListOf(frame), Text(IDS_LIST_TIP).c_str());  // its name, for a screen reader
  MirrorWindow(ListOf(frame));
  const bool turned = MirrorWindow(frame);
  for (size_t i = 0; i < AllPages().size(); ++i) {
    if (HWND page = ExistingPageWindow(static_cast<int>(i))) SendMessageA(page, kTextsChanged, 0, 0);
  }
  if (turned) OnSize(frame, SIZE_RESTORED);
  RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace gallery
