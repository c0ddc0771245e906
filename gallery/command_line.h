// Parses the command line.
#pragma once

#include <windows.h>

#include <string>

#include "kv/framework/language.h"

namespace gallery {

struct StartOptions {
  int page = -1;                       // -1: the page shown last
  int language = kv::kStoredLanguage;  // or an index of the language table
  bool walk = false, help = false;
  std::wstring rejected;  // the first unknown option or value; empty if there is none
};

StartOptions ParseCommandLine(int argc, const wchar_t* const* argv);

// Return the names that --page and --language accept, separated by blanks. A language's code is followed by that of ISO
// 639 where it differs ("GE/de").
std::wstring PageNames();
std::wstring LanguageCodes();

}  // namespace gallery
