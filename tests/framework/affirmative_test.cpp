#include "framework/affirmative.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/test_window.h"

namespace kv {
namespace {

TEST(Affirmative, KnowsFirstWordsSignsAndTheTrapsOfTheVocabulary) {
  // The first word alone counts. Signs count anywhere in it, in whatever language. Who only presses Enter agrees. Our
  // users' French is "qui". Norwegian and Finnish count when asked for only.
  const std::pair<int, std::vector<const wchar_t*>> affirming[] = {
      {0, {L"Yes please", L"true\tand more", L"on1y", L"10", L"C++", L"EYESORE", L"", L" no"}},
      {kEveryLanguage, {L"", L"Wahr", L"sant"}},
      {1, {L"JA"}},
      {2, {L"qui"}},
      {4, {L"disattivato"}},
      {9, {L"ΑΛΗΘΕΙΑ"}},
      {11, {L"नहीं"}},
      {12, {L"〜の上に"}},
      {17, {L"av"}},
      {18, {L"kyllä"}},
      {21, {L"enabled"}},
      {22, {L"\nno"}},
      {23, {L"cierto"}},
      {99, {L"yes"}},
  };
  const std::pair<int, std::vector<const wchar_t*>> others[] = {
      {0, {L"no", L"please: yes", L"ye", L"ja"}},
      {kEveryLanguage, {L"av", L"kyllä"}},
      {-2, {L"ja"}},
      {2, {L"oui"}},
      {24, {L"cierto"}},
      {99, {L"ja", L""}},
  };
  for (const auto& [language, words] : affirming) {
    for (const wchar_t* word : words) EXPECT_TRUE(IsAffirmative(language, word)) << language << " " << word;
  }
  for (const auto& [language, words] : others) {
    for (const wchar_t* word : words) EXPECT_FALSE(IsAffirmative(language, word)) << language << " " << word;
  }
}

TEST(Affirmative, ReadsNoFurtherThan256Characters) {
  EXPECT_FALSE(IsAffirmative(0, nullptr));
  EXPECT_TRUE(IsAffirmative(0, (std::wstring(255, L'x') + L"1").c_str()));
  EXPECT_FALSE(IsAffirmative(0, (std::wstring(256, L'x') + L"1").c_str()));

  // No terminator in reach: 256 characters are enough for an answer, 255 are no text.
  kvtest::GuardedBytes long256(256 * sizeof(wchar_t)), short255(255 * sizeof(wchar_t));
  std::wmemset(long256.as<wchar_t>(), L'+', 256);
  std::wmemset(short255.as<wchar_t>(), L'+', 255);
  EXPECT_TRUE(IsAffirmative(kEveryLanguage, long256.as<wchar_t>()));
  EXPECT_FALSE(IsAffirmative(kEveryLanguage, short255.as<wchar_t>()));
}

}  // namespace
}  // namespace kv
