#include "gallery/frame_menu.h"
#include <string>

#include "framework/modules.h"
#include "framework/tool_tips.h"
#include "gallery/languages.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

HWND toolTips = nullptr;

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

}  // namespace

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

}  // namespace gallery
