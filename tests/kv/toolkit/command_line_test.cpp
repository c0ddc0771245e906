#include "kv/toolkit/command_line.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "kv/framework/language.h"
#include "kv/toolkit/arguments.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "tests/kv/toolkit/ids.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"

namespace kv {
namespace {

// Collects what the program prints to a standard stream.
class StandardStream {
 public:
  explicit StandardStream(DWORD stream)
      : stream_(stream),
        path_(std::filesystem::temp_directory_path() / (L"stream " + std::to_wstring(stream))),
        file_(CreateFileW(path_.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr)),
        former_(GetStdHandle(stream)) {
    SetStdHandle(stream, file_);
  }
  ~StandardStream() {
    SetStdHandle(stream_, former_);
    CloseHandle(file_);
    std::filesystem::remove(path_);
  }
  StandardStream(const StandardStream&) = delete;
  StandardStream& operator=(const StandardStream&) = delete;

  std::string Text() const { return kvtest::BytesOf(path_); }

 private:
  DWORD stream_;
  std::filesystem::path path_;
  HANDLE file_, former_;
};

bool ParseColor(std::string_view name, int* color) {
  *color = name == "red" ? 4 : 0;
  return *color != 0;
}

struct Outcome {
  bool starts;
  CommandLine line;
  int color;
  std::string output, errors;
};

Outcome Read(std::vector<std::string> arguments) {
  const StandardStream output(STD_OUTPUT_HANDLE), errors(STD_ERROR_HANDLE);
  Outcome outcome{};
  const Option options[] = {{"--color", "NAME", "", ParsedBy<ParseColor>(&outcome.color, "a color")}};
  outcome.line = {.program = "plot",
                  .version = "1.2",
                  .operands = "[FILE]",
                  .options = options,
                  .languageFiles = L"test_toolkit",
                  .describe = [] { return ResourceText(IDS_BOTH); },
                  .rejected = IDS_REJECTED};
  outcome.starts = ReadCommandLine(GetModuleHandleA(nullptr), &outcome.line, arguments);
  outcome.output = output.Text();
  outcome.errors = errors.Text();
  return outcome;
}

TEST(CommandLines, AreReadOrAnsweredInTheChosenLanguage) {
  const Outcome all = Read({"a.dat", "--color=red", "--language", "DE"});
  EXPECT_TRUE(all.starts);
  EXPECT_EQ(4, all.color);
  EXPECT_EQ(1, all.line.language);
  EXPECT_EQ(std::vector<std::string>{"a.dat"}, all.line.arguments);
  const std::string usage = "plot [FILE] [--color NAME] [--language CODE] [--help] [--version]\n\n";
  for (const std::vector<std::string>& help : {std::vector<std::string>{"--help", "--language", "de"},
                                               {"--language=de", "/?"},
                                               {"--odd", "--help", "--language=GE"}}) {
    const Outcome outcome = Read(help);
    EXPECT_FALSE(outcome.starts);
    EXPECT_EQ(0, outcome.line.exitCode);
    EXPECT_EQ(usage + "ja\n", outcome.output) << help.back();
    EXPECT_EQ("", outcome.errors);
  }
  EXPECT_EQ("plot 1.2\n", Read({"--version"}).output);
  const struct {
    std::vector<std::string> arguments;
    const char* words;
  } rejected[] = {{{"--odd", "--language", "de"}, "--odd"},
                  {{"--color", "blue", "--language", "de"}, "--color blue"},
                  {{"a.dat", "b.dat", "--language", "de"}, "b.dat"}};
  for (const auto& [arguments, words] : rejected) {
    const Outcome outcome = Read(arguments);
    EXPECT_FALSE(outcome.starts);
    EXPECT_EQ(kExitRejected, outcome.line.exitCode);
    EXPECT_EQ("nicht: " + std::string(words) + "\n\n" + usage + "ja\n", outcome.errors);
  }
  EXPECT_NE(std::string::npos, Read({"--language", "xx"}).errors.find("--language xx"));
  EXPECT_EQ(kStoredLanguage, Read({}).line.language);
  EXPECT_NE(std::wstring::npos, LanguageCodes().find(L"GE/de FR "));
}

TEST(NumberTexts, FollowTheLanguageInEveryLocale) {
  const kvtest::CommaLocale comma;  // the host's, which is not the language
  EXPECT_EQ(L"1,234,567.5", NumberText(1234567.5, 1));
  EXPECT_EQ(L"0.0", NumberText(-0.04, 1));
}

TEST(CommandLines, HaveNumbersWithAPointInEveryLocale) {
  const kvtest::CommaLocale comma;
  double number = 0;
  EXPECT_TRUE(ParseNumber("2.5", &number) && number == 2.5);
  EXPECT_FALSE(ParseNumber("2,5", &number) || ParseNumber(" 2", &number) || ParseNumber("inf", &number));
}

}  // namespace
}  // namespace kv
