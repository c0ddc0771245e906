#include "kv/toolkit/languages.h"

#include <commctrl.h>

#include <cwchar>
#include <memory>
#include <string>
#include <vector>

#include "kv/framework/bitmaps.h"
#include "kv/framework/dialog_texts.h"
#include "kv/framework/file_path.h"
#include "kv/framework/language.h"
#include "kv/framework/modules.h"
#include "kv/framework/tooltips.h"
#include "kv/framework/utf8.h"
#include "kv/resource.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/mirroring.h"
#include "kv/toolkit/scaled_dialog.h"
#include "kv/toolkit/text_tips.h"

namespace kv {

namespace {

constexpr int kArabic = 15;

// In the order of the languages. Arabic is that of Egypt, which uses the Gregorian calendar.
constexpr WORD kLocales[kLanguageCount] = {
    MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
    MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN),
    MAKELANGID(LANG_FRENCH, SUBLANG_FRENCH),
    MAKELANGID(LANG_SPANISH, SUBLANG_SPANISH_MODERN),
    MAKELANGID(LANG_ITALIAN, SUBLANG_ITALIAN),
    MAKELANGID(LANG_DUTCH, SUBLANG_DUTCH),
    MAKELANGID(LANG_PORTUGUESE, SUBLANG_PORTUGUESE),
    MAKELANGID(LANG_POLISH, SUBLANG_POLISH_POLAND),
    MAKELANGID(LANG_RUSSIAN, SUBLANG_RUSSIAN_RUSSIA),
    MAKELANGID(LANG_GREEK, SUBLANG_GREEK_GREECE),
    MAKELANGID(LANG_BULGARIAN, SUBLANG_BULGARIAN_BULGARIA),
    MAKELANGID(LANG_HINDI, SUBLANG_HINDI_INDIA),
    MAKELANGID(LANG_JAPANESE, SUBLANG_JAPANESE_JAPAN),
    MAKELANGID(LANG_CHINESE, SUBLANG_CHINESE_SIMPLIFIED),
    MAKELANGID(LANG_KOREAN, SUBLANG_KOREAN),
    MAKELANGID(LANG_ARABIC, SUBLANG_ARABIC_EGYPT),
    MAKELANGID(LANG_SWEDISH, SUBLANG_SWEDISH),
    MAKELANGID(LANG_NORWEGIAN, SUBLANG_NORWEGIAN_BOKMAL),
    MAKELANGID(LANG_FINNISH, SUBLANG_FINNISH_FINLAND),
    MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
    MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
    MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
    MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
    MAKELANGID(LANG_SPANISH, SUBLANG_SPANISH_MEXICAN),
};

std::wstring fileStem;  // empty when no languages are loaded
int currentLanguage = 0;

// Sets the language. Returns the previous library, or null.
HMODULE LoadLanguage(int language) {
  const HMODULE former = modules.resources;
  currentLanguage = language;
  modules.resources = LoadLanguageResources(modules.application, fileStem.c_str(), fileStem.c_str(), &currentLanguage);
  return former == modules.application ? nullptr : former;
}

void FreeIfAny(HMODULE library) {
  if (library) FreeLibrary(library);
}

BOOL CALLBACK ShowInOne(HWND window, LPARAM) {
  ShowLanguage(window);
  return TRUE;
}

std::wstring LoadText(HINSTANCE module, UINT id) {
  // With a size of 0, LoadString returns the address of the text, which has no terminator.
  const wchar_t* text = nullptr;
  const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);
  return length > 0 ? std::wstring(text, length) : std::wstring();
}

// The library's string for a control or a menu item; empty if missing, and in English.
std::wstring TextOfItem(UINT id) {
  constexpr UINT kMaxId = 32767;
  return modules.resources == modules.application || id > kMaxId ? std::wstring()
                                                                 : LoadText(modules.resources, KV_TEXT_OF(id));
}

// The key behind the tab of an item in English, for a translation without one: a button may have the same text.
std::wstring KeyOfItem(HMENU menu, int index, const std::wstring& translated) {
  wchar_t english[256] = L"";
  GetMenuStringW(menu, static_cast<UINT>(index), english, ARRAYSIZE(english), MF_BYPOSITION);
  const wchar_t* key = std::wcschr(english, L'\t');
  return key && translated.find(L'\t') == std::wstring::npos ? key : L"";
}

void TranslateMenu(HMENU menu) {
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    MENUITEMINFOW item{.cbSize = sizeof(item), .fMask = MIIM_ID | MIIM_SUBMENU};
    GetMenuItemInfoW(menu, i, TRUE, &item);
    TranslateMenu(item.hSubMenu);
    std::wstring text = TextOfItem(item.wID);
    if (text.empty()) continue;
    text += KeyOfItem(menu, i, text);
    item.fMask = MIIM_STRING;
    item.dwTypeData = text.data();
    SetMenuItemInfoW(menu, i, TRUE, &item);
  }
}

// The language menu is removed from a menu bar before the bar is destroyed.
void SetLanguageMenu(HMENU bar, DialogState& state) {
  const LanguageMenu& menu = state.options.languageMenu;
  if (!state.languageMenu) {
    state.languageMenu = BuildLanguageMenu(currentLanguage, modules.application, menu.firstCommand, menu.firstBitmap,
                                           fileStem.c_str(), state.languageBitmaps.data());
  }
  for (int i = 0; i < kLanguageCount; ++i) {
    CheckMenuItem(state.languageMenu, menu.firstCommand + i, i == currentLanguage ? MF_CHECKED : MF_UNCHECKED);
  }
  MENUITEMINFOW item{.cbSize = sizeof(item), .fMask = MIIM_SUBMENU};
  item.hSubMenu = state.languageMenu;
  SetMenuItemInfoW(bar, menu.item, FALSE, &item);
}

}  // namespace

int LoadLanguages(const wchar_t* stem, int language) {
  if (!IsReadableText(stem)) return 0;
  fileStem = stem;
  FreeIfAny(LoadLanguage(language));
  return currentLanguage;
}

void UnloadLanguages() {
  const HMODULE former = modules.resources;
  modules.resources = modules.application;
  if (former != modules.application) FreeIfAny(former);
  fileStem.clear();
  currentLanguage = 0;
}

int SwitchLanguage(HWND dialog, const wchar_t* templateName, int language) {
  if (fileStem.empty()) return 0;
  const HMODULE former = LoadLanguage(language);
  EnumThreadWindows(GetCurrentThreadId(), ShowInOne, 0);
  if (templateName && !DialogStateOf(dialog)) SetTextsOfLanguage(dialog, templateName);
  FreeIfAny(former);
  return currentLanguage;
}

int CurrentLanguage() {
  return currentLanguage;
}

int LanguageOfCode(const wchar_t* code) {
  for (int i = 0; i < kLanguageCount; ++i) {
    const wchar_t* own = kLanguages[i].code;
    if (*own && (lstrcmpiW(code, own) == 0 || lstrcmpiW(code, IsoCode(i).c_str()) == 0)) return i;
  }
  return -1;
}

std::wstring IsoCode(int language) {
  wchar_t code[16] = L"";
  GetLocaleInfoW(MAKELCID(kLocales[language], SORT_DEFAULT), LOCALE_SISO639LANGNAME, code, ARRAYSIZE(code));
  return code;
}

bool IsRightToLeft() {
  return currentLanguage == kArabic;
}

LCID CurrentLocale() {
  return MAKELCID(kLocales[currentLanguage], SORT_DEFAULT);
}

int ShowMessage(HWND owner, const std::wstring& text, const std::wstring& caption, UINT flags) {
  if (IsRightToLeft()) flags |= MB_RTLREADING | MB_RIGHT;
  return MessageBoxW(owner, text.c_str(), caption.c_str(), flags);
}

bool PrintText(DWORD stream, const std::wstring& text) {
  const std::string bytes = Narrow(text);
  DWORD written = 0;
  return WriteFile(GetStdHandle(stream), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0;
}

std::wstring ResourceText(UINT id) {
  std::wstring text = LoadText(modules.resources, id);
  return text.empty() ? LoadText(modules.application, id) : text;
}

void SetTextsOfLanguage(HWND dialog, const wchar_t* templateName) {
  SetDialogTexts(dialog, modules.application, templateName);
  if (modules.resources == modules.application) return;
  SetDialogTexts(dialog, modules.resources, templateName);
  const bool isMain = !GetParent(dialog);
  const std::wstring caption = isMain ? TextOfItem(0) : std::wstring();
  if (!caption.empty()) SetWindowTextW(dialog, caption.c_str());
  VisitChildren(dialog, [](HWND child) {
    const int id = GetDlgCtrlID(child);
    const std::wstring text = id > 0 ? TextOfItem(static_cast<UINT>(id)) : std::wstring();
    if (!text.empty()) SetWindowTextW(child, text.c_str());
  });
}

void ReplaceMenu(HWND dialog, DialogState& state) {
  if (!state.options.menu) return;
  HMENU bar = LoadMenuW(modules.application, state.options.menu), former = GetMenu(dialog);
  TranslateMenu(bar);
  if (former) RemoveMenu(former, state.options.languageMenu.item, MF_BYCOMMAND);
  if (state.options.languageMenu.item) SetLanguageMenu(bar, state);
  SetMenu(dialog, bar);
  if (former) DestroyMenu(former);
}

// String resources are loaded here, so that missing ones are replaced by English.
void ReplaceTooltips(HWND dialog, DialogState& state) {
  if (state.tips) DestroyWindow(state.tips);
  state.tips = nullptr;
  std::vector<TooltipEntry> entries(state.options.tips.begin(), state.options.tips.end());
  std::vector<std::wstring> texts(entries.size());
  for (size_t i = 0; i < entries.size(); ++i) {
    if (!IS_INTRESOURCE(entries[i].text)) continue;
    texts[i] = ResourceText(entries[i].text ? LOWORD(entries[i].text) : entries[i].id);
    entries[i].text = texts[i].c_str();
  }
  if (!entries.empty()) {
    state.tips = CreateTooltips(modules.resources, dialog, entries.data(), static_cast<int>(entries.size()));
    SendMessageW(state.tips, TTM_SETMAXTIPWIDTH, 0, kMaxTipPx);
  }
}

void ShowLanguage(HWND dialog) {
  const std::shared_ptr<DialogState> state = DialogStateOf(dialog);
  if (!state) return;
  SetTextsOfLanguage(dialog, state->options.templateName);
  if (state->kind != DialogKind::kPage) ReplaceMenu(dialog, *state);
  ReplaceTooltips(dialog, *state);
  const bool turned = MirrorDialog(dialog);
  for (const DialogPage& page : std::vector(state->pages)) ShowLanguage(page.window);
  if (state->options.procedure)
    state->options.procedure(dialog, kLanguageChanged, static_cast<WPARAM>(currentLanguage), 0);
  const SIZE client = ClientSize(dialog);
  if (turned) SendMessageW(dialog, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.cx, client.cy));
  RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace kv
