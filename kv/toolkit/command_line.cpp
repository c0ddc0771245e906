#include "kv/toolkit/command_line.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kv/framework/language.h"
#include "kv/framework/modules.h"
#include "kv/framework/utf8.h"
#include "kv/toolkit/arguments.h"
#include "kv/toolkit/languages.h"

namespace kv {

namespace {

bool ParseLanguage(std::string_view code, int* language) {
  const int found = LanguageOfCode(Wide(code).c_str());
  if (found >= 0) *language = found;
  return found >= 0;
}

std::wstring Usage(const CommandLine& line, std::span<const Option> options) {
  std::string text = line.program;
  if (*line.operands) text += std::string(" ") + line.operands;
  for (const Option& option : options) {
    text += std::string(" [") + option.name + (option.value ? std::string(" ") + option.value : "") + "]";
  }
  return Wide(text);
}

void Show(const CommandLine& line, std::wstring text) {
  const bool isError = line.exitCode != 0;
  text += L"\n";
  if (PrintText(isError ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE, text)) return;
  ShowMessage(nullptr, text, Wide(line.program), isError ? MB_ICONWARNING : MB_ICONINFORMATION);
}

}  // namespace

bool ReadCommandLine(HINSTANCE instance, CommandLine* line, std::span<const std::string> arguments) {
  bool help = false, version = false;
  std::vector<Option> options(line->options.begin(), line->options.end());
  if (line->languageFiles)
    options.push_back({"--language", "CODE", "", ParsedBy<ParseLanguage>(&line->language, "a language")});
  options.push_back({"--help", nullptr, "", &help});
  options.push_back({"--version", nullptr, "", &version});
  std::vector<std::string> words(arguments.begin(), arguments.end());
  for (std::string& word : words) {
    if (word == "/?") word = "--help";
  }
  ArgumentError error;
  const bool isValid = ParseArguments(words, options, line->operands, &line->arguments, &error);
  help = HasArgument(words, "--help");
  if (isValid && !help && !version) return true;
  // Also a language after what is invalid.
  for (size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--language" && i + 1 < words.size()) ParseLanguage(words[i + 1], &line->language);
    if (words[i].starts_with("--language=")) ParseLanguage(words[i].substr(words[i].find('=') + 1), &line->language);
  }
  modules = {.resources = instance, .application = instance};
  if (line->languageFiles) LoadLanguages(line->languageFiles, line->language);
  line->exitCode = isValid || help ? 0 : kExitRejected;
  if (version && !help && isValid) {
    Show(*line, Wide(std::string(line->program) + " " + line->version));
  } else {
    std::wstring text = Usage(*line, options);
    if (line->describe) text += L"\n\n" + line->describe();
    if (line->exitCode)
      text =
          (line->rejected && !error.words.empty() ? TextWith(line->rejected, Wide(error.words)) : Wide(error.reason)) +
          L"\n\n" + text;
    Show(*line, text);
  }
  if (line->languageFiles) UnloadLanguages();
  return false;
}

bool ReadCommandLine(HINSTANCE instance, CommandLine* line) {
  return ReadCommandLine(instance, line, ProcessArguments());
}

std::wstring LanguageCodes() {
  std::wstring codes;
  for (int i = 0; i < kLanguageCount; ++i) {
    // The first of two languages with the same code.
    const wchar_t* own = kLanguages[i].code;
    if (!*own || LanguageOfCode(own) != i) continue;
    if (!codes.empty()) codes += L' ';
    codes += own;
    if (lstrcmpiW(own, IsoCode(i).c_str()) != 0) codes += L"/" + IsoCode(i);
  }
  return codes;
}

}  // namespace kv
