#include "framework/help.h"

#include "framework/bounded_format.h"
#include "framework/control_class.h"
#include "framework/file_path.h"
#include "framework/language.h"
#include "framework/modules.h"

namespace kv {

namespace {

constexpr WORD kHtmlHelpOrdinal = 15;  // the wide form; the library exports it by number only

// Stays loaded: help windows live in it.
HtmlHelpCall LoadHtmlHelp() {
  wchar_t system[kPathCharacters] = L"", library[kPathCharacters];
  GetSystemDirectoryW(system, kPathCharacters);
  // By its whole path, so that nothing that lies beside the program can take its place.
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
  // No window would mean every window of the desktop.
  if (IsWindow(window)) RepaintNow(window);
  return TRUE;
}

}  // namespace kv
