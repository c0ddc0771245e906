#include "gallery/languages.h"

#include <string>

#include "framework/help.h"
#include "framework/language.h"
#include "framework/modules.h"
#include "gallery/frame.h"
#include "gallery/resource_ids.h"

namespace gallery {

namespace {

constexpr wchar_t kApplication[] = L"kvGallery";
constexpr UINT kDisplayTopic = 0;  // HH_DISPLAY_TOPIC

constexpr int kArabic = 15;

// In the order of the languages. Arabic is Egypt's, which counts years as the others do.
constexpr WORD kLocales[kv::kLanguageCount] = {
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

int current = 0;
HMENU menu = nullptr;
HBITMAP menuBitmaps[kv::kLanguageBitmapArea / sizeof(HBITMAP)];

void UseLanguage(int language) {
  const HMODULE previous = kv::modules.resources;
  current = language;
  kv::modules.resources = kv::LoadLanguageResources(kv::modules.application, kFileStem, kApplication, &current);
  if (previous != kv::modules.application) FreeLibrary(previous);
}

}  // namespace

void BeginLanguages(int language) {
  UseLanguage(language);
}

void ChooseLanguage(HWND frame, int language) {
  UseLanguage(language);
  for (int i = 0; i < kv::kLanguageCount; ++i) {
    CheckMenuItem(menu, IDM_LANGUAGE_FIRST + i, i == current ? MF_CHECKED : MF_UNCHECKED);
  }
  RefreshTexts(frame);
}

int CurrentLanguage() {
  return current;
}

int LanguageOfCode(const wchar_t* code) {
  for (int i = 0; i < kv::kLanguageCount; ++i) {
    const wchar_t* own = kv::kLanguages[i].code;
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
  return current == kArabic;
}

LCID CurrentLocale() {
  return MAKELCID(kLocales[current], SORT_DEFAULT);
}

HMENU LanguageMenu() {
  if (!menu) {
    menu = kv::BuildLanguageMenu(current, kv::modules.application, IDM_LANGUAGE_FIRST, IDB_LANGUAGE_FIRST, kFileStem,
                                 menuBitmaps);
  }
  return menu;
}

BOOL OpenGalleryHelp(HWND frame, const char* page) {
  const std::wstring topic = std::wstring(page, page + lstrlenA(page)) + L".html";
  return kv::OpenHelp(frame, current, kFileStem, kDisplayTopic, reinterpret_cast<DWORD_PTR>(topic.c_str()));
}

void EndLanguages() {
  kv::FreeLanguageMenuBitmaps(menuBitmaps);
  if (kv::modules.resources != kv::modules.application) FreeLibrary(kv::modules.resources);
  kv::modules.resources = kv::modules.application;
}

}  // namespace gallery
