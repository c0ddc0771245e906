#include "camview/context_menu.h"

#include <windows.h>
#include <windowsx.h>

#include <algorithm>
#include <iterator>

#include "camview/resource_ids.h"

namespace camview {

namespace {

constexpr UINT kSeparator = 0, kEnd = 1;

struct ContextMenu {
  int control;
  UINT items[16];  // commands and menus of the menu bar, until kEnd
};

const ContextMenu kMenus[] = {
    {IDC_FIELD,
     {IDM_COPY, IDM_COPY_IMAGE, IDM_SAVE_IMAGE, kSeparator, IDM_PLAY, IDM_TRAIL_MENU, kSeparator, IDM_LEFT_FIRST,
      IDM_LEFT_FIRST + 1, kEnd}},
    {IDC_CHART_X,
     {IDM_COPY, IDM_COPY_IMAGE, IDM_SAVE_IMAGE, kSeparator, IDM_SPAN_MENU, IDM_FIT_VALUES, IDM_CURSOR_B, kSeparator,
      IDM_SELECT_SHOWN, IDM_REMOVE_SELECTION, IDM_EXPORT, kSeparator, IDM_RIGHT_FIRST, IDM_RIGHT_FIRST + 1,
      IDM_RIGHT_FIRST + 2, kEnd}},
    {IDC_TIMELINE,
     {IDM_PLAY, IDM_GO_TO, IDM_EVENT_BACK, IDM_EVENT_FORWARD, kSeparator, IDM_SPAN_MENU, kSeparator, IDM_SELECT_SHOWN,
      IDM_REMOVE_SELECTION, IDM_EXPORT, kEnd}},
    {IDC_STATISTICS, {IDM_SHOW_STATISTICS, IDM_SHOW_EVENTS, kSeparator, IDM_SELECT_SHOWN, IDM_EXPORT, kEnd}},
    {IDC_EVENTS,
     {IDM_COPY, IDM_EXPORT_EVENTS, kSeparator, IDM_EVENT_BACK, IDM_EVENT_FORWARD, kSeparator, IDM_SHOW_STATISTICS,
      IDM_SHOW_EVENTS, kEnd}},
};

const ContextMenu* MenuOf(int control) {
  switch (control) {
    case IDC_SCATTER: control = IDC_FIELD; break;
    case IDC_CHART_Y:
    case IDC_HISTOGRAM_X:
    case IDC_HISTOGRAM_Y:
    case IDC_INTERVALS: control = IDC_CHART_X; break;
    default: break;
  }
  const auto* found = std::ranges::find(kMenus, control, &ContextMenu::control);
  return found == std::end(kMenus) ? nullptr : found;
}

// Copies an item of the menu bar; of a menu, its items as well.
void CopyItem(HMENU bar, UINT id, HMENU target) {
  if (id == kSeparator) {
    AppendMenuW(target, MF_SEPARATOR, 0, nullptr);
    return;
  }
  wchar_t text[256] = L"";
  MENUITEMINFOW item{.cbSize = sizeof(item),
                     .fMask = MIIM_ID | MIIM_STRING | MIIM_SUBMENU | MIIM_STATE,
                     .dwTypeData = text,
                     .cch = ARRAYSIZE(text)};
  if (!GetMenuItemInfoW(bar, id, FALSE, &item)) return;
  const HMENU source = item.hSubMenu;
  if (source) {
    item.hSubMenu = CreatePopupMenu();
    for (int i = 0; i < GetMenuItemCount(source); ++i) CopyItem(source, GetMenuItemID(source, i), item.hSubMenu);
  }
  InsertMenuItemW(target, static_cast<UINT>(GetMenuItemCount(target)), TRUE, &item);
}

}  // namespace

bool ShowContextMenu(HWND window, HWND control, LPARAM position) {
  const ContextMenu* shown = GetParent(control) == window ? MenuOf(GetDlgCtrlID(control)) : nullptr;
  if (!shown) return false;
  const HMENU menu = CreatePopupMenu();
  for (const UINT* id = shown->items; *id != kEnd; ++id) CopyItem(GetMenu(window), *id, menu);
  POINT at{GET_X_LPARAM(position), GET_Y_LPARAM(position)};
  // By keyboard: at the control's middle.
  if (position == -1) {
    RECT rect{};
    GetWindowRect(control, &rect);
    at = {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
  }
  // The commands act on the control with the focus.
  SetFocus(control);
  TrackPopupMenu(menu, TPM_RIGHTBUTTON, at.x, at.y, 0, window, nullptr);
  DestroyMenu(menu);
  return true;
}

}  // namespace camview
