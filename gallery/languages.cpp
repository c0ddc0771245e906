#include "gallery/languages.h"

#include "framework/help.h"
#include "framework/language.h"
#include "framework/modules.h"
#include "gallery/frame.h"
#include "gallery/resource_ids.h"

namespace gallery {

namespace {

constexpr wchar_t kApplication[] = L"kvGallery";
constexpr UINT kDisplayTopic = 0;  // HH_DISPLAY_TOPIC; without a topic, the first page

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

void BeginWithStoredLanguage() {
  UseLanguage(kv::kStoredLanguage);
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

HMENU LanguageMenu() {
  if (!menu) {
    menu = kv::BuildLanguageMenu(current, kv::modules.application, IDM_LANGUAGE_FIRST, IDB_LANGUAGE_FIRST, kFileStem,
                                 menuBitmaps);
  }
  return menu;
}

BOOL OpenGalleryHelp(HWND frame) {
  return kv::OpenHelp(frame, current, kFileStem, kDisplayTopic, 0);
}

void EndLanguages() {
  kv::FreeLanguageMenuBitmaps(menuBitmaps);
  if (kv::modules.resources != kv::modules.application) FreeLibrary(kv::modules.resources);
  kv::modules.resources = kv::modules.application;
}

}  // namespace gallery
