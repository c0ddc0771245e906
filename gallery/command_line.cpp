#include "gallery/command_line.h"

#include <windows.h>

#include <string>

#include "gallery/pages.h"
#include "kv/framework/language.h"
#include "kv/toolkit/languages.h"

namespace gallery {

StartOptions ParseCommandLine(int argc, const wchar_t* const* argv) {
  StartOptions options;
  for (int i = 1; i < argc && options.rejected.empty(); ++i) {
    const std::wstring option = argv[i];
    const auto choose = [&](int* choice, int (*find)(const wchar_t* name)) {
      *choice = i + 1 < argc ? find(argv[i + 1]) : -1;
      if (*choice < 0) options.rejected = i + 1 < argc ? option + L" " + argv[i + 1] : option;
      ++i;
    };
    if (option == L"--page") {
      choose(&options.page, PageIndex);
    } else if (option == L"--language") {
      choose(&options.language, kv::LanguageOfCode);
    } else if (option == L"--walk") {
      options.walk = true;
    } else if (option == L"--help" || option == L"/?") {
      options.help = true;
    } else {
      options.rejected = option;
    }
  }
  return options;
}

std::wstring PageNames() {
  std::wstring names;
  for (const Page& page : AllPages()) names += std::wstring(page.name, page.name + lstrlenA(page.name)) + L' ';
  names.pop_back();
  return names;
}

std::wstring LanguageCodes() {
  std::wstring codes;
  for (int i = 0; i < kv::kLanguageCount; ++i) {
    // The first of two languages with the same code.
    const wchar_t* own = kv::kLanguages[i].code;
    if (!*own || kv::LanguageOfCode(own) != i) continue;
    codes += own;
    if (lstrcmpiW(own, kv::IsoCode(i).c_str()) != 0) codes += L"/" + kv::IsoCode(i);
    codes += L' ';
  }
  codes.pop_back();
  return codes;
}

}  // namespace gallery
