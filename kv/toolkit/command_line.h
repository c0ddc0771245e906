// The command line of a windowed program. Every program has the options --help (also /?) and --version, and one with
// languages has --language CODE. Help and errors are in the language of the command line, or the stored one; they are
// printed, or shown in a box if there is nothing to print to. Main thread only.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

#include "kv/framework/language.h"
#include "kv/toolkit/arguments.h"

namespace kv {

struct CommandLine {
  const char* program;                     // "plot"
  const char* version;                     // "1.2"
  const char* operands = "";               // "[FILE]", as in kv/toolkit/arguments.h
  std::span<const Option> options = {};    // further ones
  const wchar_t* languageFiles = nullptr;  // as in ScaledDialog
  std::wstring (*describe)() = nullptr;    // returns text for the help, in the current language
  UINT rejected = 0;  // string resource with %s for an invalid argument: "Unknown option or value: %s"

  // Set by ReadCommandLine.
  std::vector<std::string> arguments;  // those that are not options
  int language = kStoredLanguage;
  int exitCode = 0;  // when ReadCommandLine returns false: 0, or kExitRejected
};

inline constexpr int kExitRejected = 2;

// Parses the command line of the process. Returns false after it has shown the help, the version, or that an argument
// is invalid; the program should then end with `exitCode`.
bool ReadCommandLine(HINSTANCE instance, CommandLine* line);
// The same for other arguments.
bool ReadCommandLine(HINSTANCE instance, CommandLine* line, std::span<const std::string> arguments);

// The codes that --language accepts, separated by blanks. A language's code is followed by that of ISO 639 where it
// differs ("GE/de").
std::wstring LanguageCodes();

}  // namespace kv
