#include "toolkit/switch_language.h"
#include <string>

#include "framework/dialog_texts.h"
#include "framework/file_path.h"
#include "framework/language.h"
#include "framework/modules.h"
#include "toolkit/dialog_record.h"

namespace kv {

namespace {

std::wstring fileStem;  // empty while no languages have begun
int currentLanguage = 0;

// Returns the library that is no longer needed, or null.
HMODULE TakeLanguage(int language) {
  const HMODULE former = modules.resources;
  currentLanguage = language;
  modules.resources = LoadLanguageResources(modules.application, fileStem.c_str(), fileStem.c_str(), &currentLanguage);
  return former == modules.application ? nullptr : former;
}

void FreeIfAny(HMODULE library) {
  if (library) FreeLibrary(library);
}

BOOL CALLBACK ShowInOne(HWND window, LPARAM) {
  if (DialogRecord* record = DialogRecordOf(window)) ShowLanguage(window, *record);
  return TRUE;
}

std::wstring LoadText(HINSTANCE module, UINT id) {
  // With a size of 0 the call gives the address of the text itself, which has no terminator.
  const wchar_t* text = nullptr;
  const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);
  return length > 0 ? std::wstring(text, length) : std::wstring();
}

}  // namespace

int BeginLanguages(const wchar_t* stem) {
  if (!IsReadableText(stem)) return 0;
  fileStem = stem;
  FreeIfAny(TakeLanguage(kStoredLanguage));
  return currentLanguage;
}

void EndLanguages() {
  const HMODULE former = modules.resources;
  modules.resources = modules.application;
  if (former != modules.application) FreeIfAny(former);
  fileStem.clear();
  currentLanguage = 0;
}

int SwitchLanguage(HWND dialog, const wchar_t* templateName, int language) {
  if (fileStem.empty()) return 0;
  const HMODULE former = TakeLanguage(language);
  EnumThreadWindows(GetCurrentThreadId(), ShowInOne, 0);
  if (templateName) SetTextsOfLanguage(dialog, templateName);
  FreeIfAny(former);
  return currentLanguage;
}

int CurrentLanguage() {
  return currentLanguage;
}

std::wstring ResourceText(UINT id) {
  std::wstring text = LoadText(modules.resources, id);
  return text.empty() ? LoadText(modules.application, id) : text;
}

void SetTextsOfLanguage(HWND dialog, const wchar_t* templateName) {
  SetDialogTexts(dialog, modules.application, templateName);
  if (modules.resources != modules.application) SetDialogTexts(dialog, modules.resources, templateName);
}

}  // namespace kv
