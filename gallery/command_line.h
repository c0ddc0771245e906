// What the command line asks for, and answers to it.
#pragma once

#include <windows.h>

#include <string>

#include "framework/language.h"

namespace gallery {

struct StartOptions {
  int page = -1;                       // -1: the one that was shown last
  int language = kv::kStoredLanguage;  // or one of the table
  bool walk = false, help = false;
  std::wstring rejected;  // the first option or value that there is not; empty when all is well
};

StartOptions ParseCommandLine(int argc, const wchar_t* const* argv);

// All names that --page and --language take, separated by blanks; behind a language's own code that of ISO 639 where it
// differs ("GE/de").
std::wstring PageNames();
std::wstring LanguageCodes();

}  // namespace gallery
