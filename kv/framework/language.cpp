#include "kv/framework/language.h"

#include <array>
#include <cstring>

#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/modules.h"
#include "kv/framework/resource_library.h"
#include "kv/framework/window_position.h"

namespace kv {

namespace {

constexpr int kFreedBitmaps = 32;
constexpr wchar_t kLanguageValue[] = L"LanguageCode";
// Handles below this number are error codes.
constexpr UINT_PTR kFirstModule = 32;

bool IsLanguage(int language) {
  return language >= 0 && language < kLanguageCount;
}

// Returns false, with the path truncated, when it does not fit.
bool FormatLanguageFile(wchar_t (&path)[kPathCharacters], const wchar_t* directory, const wchar_t* stem, int language,
                        const wchar_t* extension) {
  // The limits keep the formatter within the text that was tested.
  return FormatBounded(path, sizeof(path), L"%s%.260s%s%.260s", directory, stem, kLanguages[language].code,
                       extension) == kFormatDone;
}

bool FileExists(const wchar_t* path) {
  WIN32_FIND_DATAW data;
  const HANDLE search = FindFirstFileW(path, &data);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return true;
}

struct ConfigurationPath {
  wchar_t text[2 * kPathCharacters];
};

ConfigurationPath PathOf(const wchar_t* application) {
  ConfigurationPath path;
  if (!IsReadableText(application)) application = L"CommonLanguage";
  FormatBounded(path.text, sizeof(path.text), L"%.200hs\\Configuration\\%.260s", SettingsKey(), application);
  return path;
}

// Returns the stored language; kStoredLanguage when nothing is stored or the value is not a number.
int ReadStoredLanguage(const ConfigurationPath& path) {
  const RegistryKey key = RegistryKey::Open(path.text);
  DWORD type = REG_NONE, size = sizeof(DWORD), stored = 0;
  if (!key ||
      RegQueryValueExW(key, kLanguageValue, nullptr, &type, reinterpret_cast<BYTE*>(&stored), &size) != ERROR_SUCCESS) {
    return kStoredLanguage;
  }
  return type == REG_DWORD && size == sizeof(stored) ? static_cast<int>(stored) : kStoredLanguage;
}

void StoreLanguage(const ConfigurationPath& path, DWORD language) {
  const RegistryKey key = RegistryKey::Create(path.text);
  if (key) {
    RegSetValueExW(key, kLanguageValue, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&language), sizeof(language));
  }
}

// Returns null when the library is missing or damaged or cannot be loaded.
HMODULE LoadLanguageLibrary(int language, const wchar_t* stem) {
  wchar_t path[kPathCharacters];
  if (FindLanguageFile(language, stem, L".dll", path, FALSE) == kLanguageFileNone) return nullptr;
  if (!IsResourceLibrary(path)) return nullptr;
  // Prevents the system's message box about a damaged library; English is used instead.
  const UINT mode = GetErrorMode();
  SetErrorMode(mode | SEM_FAILCRITICALERRORS);
  const HMODULE library = LoadLibraryW(path);
  SetErrorMode(mode);
  return reinterpret_cast<UINT_PTR>(library) < kFirstModule ? nullptr : library;
}

}  // namespace

int FindLanguageFileIn(const wchar_t* directory, int language, const wchar_t* stem, const wchar_t* extension,
                       wchar_t* path, BOOL mustExist) {
  if (!IsLanguage(language) || !IsReadableText(stem)) return kLanguageFileNone;
  if (!IsReadableText(extension)) extension = L".dll";

  wchar_t candidate[kPathCharacters];
  const auto exists = [&](int index) {
    return FormatLanguageFile(candidate, directory, stem, index, extension) && FileExists(candidate);
  };
  int result = kLanguageFileNone;
  if (language == 0) {
    FormatLanguageFile(candidate, directory, stem, 0, extension);
    result = kLanguageFileOwn;
  } else if (exists(language)) {
    result = kLanguageFileOwn;
  } else if (!mustExist) {
    for (int index = 0; index < kLanguageCount && result == kLanguageFileNone; ++index) {
      if (exists(index)) result = kLanguageFileOther;
    }
  }
  if (result != kLanguageFileNone && !IsBadWritePtr(path, sizeof(candidate))) lstrcpyW(path, candidate);
  return result;
}

int FindLanguageFile(int language, const wchar_t* stem, const wchar_t* extension, wchar_t* path, BOOL mustExist) {
  wchar_t directory[kPathCharacters] = L"";
  ProgramDirectory(directory);
  return FindLanguageFileIn(directory, language, stem, extension, path, mustExist);
}

HMODULE LoadLanguageResources(HMODULE ownModule, const wchar_t* stem, const wchar_t* application, int* language) {
  const ConfigurationPath configuration = PathOf(application);
  int index = IsBadReadPtr(language, sizeof(*language)) ? 0 : *language;
  if (index < 0) index = ReadStoredLanguage(configuration);
  if (!IsLanguage(index)) index = 0;

  HMODULE module = index == 0 ? ownModule : LoadLanguageLibrary(index, stem);
  if (!module) {
    module = ownModule;
    index = 0;
  }
  StoreLanguage(configuration, index);
  if (!IsBadWritePtr(language, sizeof(*language))) *language = index;
  return module;
}

HMENU BuildLanguageMenu(int current, HINSTANCE instance, UINT firstCommand, UINT firstBitmap, const wchar_t* stem,
                        HBITMAP* handles) {
  const HMENU menu = CreatePopupMenu();
  if (!IsReadableText(stem)) return menu;

  std::array<HBITMAP, kLanguageBitmapCount> bitmaps;
  for (int i = 0; i < kLanguageBitmapCount; ++i) bitmaps[i] = LoadBitmapA(instance, MAKEINTRESOURCEA(firstBitmap + i));
  for (int i = 0; i < kLanguageCount; ++i) {
    if (i != 0 && FindLanguageFile(i, stem, L".dll", nullptr, TRUE) == kLanguageFileNone) continue;
    AppendMenuW(menu, MF_STRING | (i == current ? MF_CHECKED : MF_UNCHECKED), firstCommand + i, kLanguages[i].menuName);
    SetMenuItemBitmaps(menu, firstCommand + i, MF_BYCOMMAND, bitmaps[i], bitmaps[kLanguageCount + i]);
  }
  static_assert(sizeof(bitmaps) <= kLanguageBitmapArea);
  if (!IsBadWritePtr(handles, kLanguageBitmapArea)) std::memcpy(handles, bitmaps.data(), sizeof(bitmaps));
  return menu;
}

BOOL FreeLanguageMenuBitmaps(const HBITMAP* handles) {
  for (int i = 0; i < kFreedBitmaps; ++i) {
    if (!IsBadReadPtr(handles + i, sizeof(*handles)) && handles[i]) DeleteObject(handles[i]);
  }
  return TRUE;
}

namespace {

constexpr WORD kHtmlHelpOrdinal = 15;  // HtmlHelpW, exported by ordinal only

// Never unloaded, because help windows use it.
HtmlHelpCall LoadHtmlHelp() {
  wchar_t system[kPathCharacters] = L"", library[kPathCharacters];
  GetSystemDirectoryW(system, kPathCharacters);
  // By its full path, so that a file in the program's folder is not loaded instead.
  FormatBounded(library, sizeof(library), L"%s\\hhctrl.ocx", system);
  HtmlHelpCall call;
  FindProcedure(LoadLibraryW(library), MAKEINTRESOURCEA(kHtmlHelpOrdinal), &call);
  return call;
}

HWND WINAPI CallSystemHelp(HWND caller, const wchar_t* file, UINT command, DWORD_PTR data) {
  static const HtmlHelpCall systemHelp = LoadHtmlHelp();
  return systemHelp ? systemHelp(caller, file, command, data) : nullptr;
}

}  // namespace

HtmlHelpCall htmlHelp = CallSystemHelp;

BOOL OpenHelp(HWND window, int language, const wchar_t* stem, UINT command, DWORD_PTR data) {
  wchar_t file[kPathCharacters];
  if (FindLanguageFile(language, stem, L".chm", file, FALSE) != kLanguageFileNone) {
    htmlHelp(window, file, command, data);
  }
  // A null window would mean every window of the desktop.
  if (IsWindow(window)) RepaintNow(window);
  return TRUE;
}

}  // namespace kv
