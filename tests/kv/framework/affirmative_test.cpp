#include "kv/framework/language.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <initializer_list>
#include <string>

#include "tests/support/test_window.h"

namespace kv {
namespace {

TEST(Affirmative, RecognizesFirstWordsSignsAndQuirksOfTheVocabulary) {
  const auto expect = [](BOOL affirms, int language, std::initializer_list<const wchar_t*> words) {
    for (const wchar_t* word : words) EXPECT_EQ(affirms, IsAffirmative(language, word)) << language << " " << word;
  };
  // Only the first word counts; signs count anywhere in it, in every language; an empty answer is affirmative.
  expect(TRUE, 0, {L"Yes please", L"true\tand more", L"on1y", L"C++", L"EYESORE", L"", L" no"});
  expect(FALSE, 0, {L"no", L"please: yes", L"ye", L"ja"});
  expect(TRUE, 1, {L"JA"});
  expect(FALSE, 8, {L"ДА"});  // only ASCII letters are compared without case
  expect(TRUE, 2, {L"qui"});  // intended
  expect(FALSE, 2, {L"oui"});
  expect(TRUE, 12, {L"〜の上に"});
  expect(TRUE, 17, {L"av"});
  expect(TRUE, 18, {L"kyllä"});
  expect(TRUE, 22, {L"\nno"});
  expect(TRUE, 23, {L"cierto"});
  expect(TRUE, 99, {L"yes"});
  for (const int none : {-2, 24, 99}) expect(FALSE, none, {L"ja", L"cierto"});
  expect(FALSE, 99, {L""});
  expect(TRUE, kEveryLanguage, {L"", L"Wahr", L"sant", L"ΑΛΗΘΕΙΑ", L"नहीं"});
  expect(FALSE, kEveryLanguage, {L"av", L"kyllä"});  // Norwegian and Finnish count only when named
}

TEST(Affirmative, ReadsNoFurtherThan256Characters) {
  EXPECT_FALSE(IsAffirmative(0, nullptr));
  EXPECT_TRUE(IsAffirmative(0, (std::wstring(255, L'x') + L"1").c_str()));
  EXPECT_FALSE(IsAffirmative(0, (std::wstring(256, L'x') + L"1").c_str()));

  // Without a terminator, 256 readable characters are an answer; 255 are not a text.
  kvtest::GuardedBytes long256(256 * sizeof(wchar_t)), short255(255 * sizeof(wchar_t));
  std::wmemset(long256.as<wchar_t>(), L'+', 256);
  std::wmemset(short255.as<wchar_t>(), L'+', 255);
  EXPECT_TRUE(IsAffirmative(kEveryLanguage, long256.as<wchar_t>()));
  EXPECT_FALSE(IsAffirmative(kEveryLanguage, short255.as<wchar_t>()));
}

}  // namespace
}  // namespace kv
