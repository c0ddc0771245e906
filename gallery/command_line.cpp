#include "gallery/command_line.h"

#include <windows.h>

#include <string>

#include "framework/language.h"
#include "gallery/pages.h"
#include "toolkit/languages.h"

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
    // Of two languages with one code the first is taken.
    const wchar_t* own = kv::kLanguages[i].code;
    if (!*own || kv::LanguageOfCode(own) != i) continue;
    codes += own;
    if (lstrcmpiW(own, kv::IsoCode(i).c_str()) != 0) codes += L"/" + kv::IsoCode(i);
    codes += L' ';
  }
  codes.pop_back();
  return codes;
}

bool Print(DWORD stream, const std::wstring& text) {
  const int characters = static_cast<int>(text.size());
  std::string bytes(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), characters, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), characters, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                      nullptr);
  DWORD written = 0;
  return WriteFile(GetStdHandle(stream), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0;
}

}  // namespace gallery
