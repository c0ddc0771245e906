#include "framework/language.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <initializer_list>
#include <string>

#include "tests/support/test_window.h"

namespace kv {
namespace {

TEST(Affirmative, KnowsFirstWordsSignsAndTheTrapsOfTheVocabulary) {
  const auto expect = [](BOOL affirms, int language, std::initializer_list<const wchar_t*> words) {
    for (const wchar_t* word : words) EXPECT_EQ(affirms, IsAffirmative(language, word)) << language << " " << word;
  };
  // The first word alone counts; signs count anywhere in it, in whatever language; who only presses Enter agrees.
  expect(TRUE, 0, {L"Yes please", L"true\tand more", L"on1y", L"C++", L"EYESORE", L"", L" no"});
  expect(FALSE, 0, {L"no", L"please: yes", L"ye", L"ja"});
  expect(TRUE, 1, {L"JA"});
  expect(FALSE, 8, {L"ДА"});  // only plain letters count without their case
  expect(TRUE, 2, {L"qui"});  // not a slip of ours to be mended
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
  expect(FALSE, kEveryLanguage, {L"av", L"kyllä"});  // Norwegian and Finnish count when asked for only
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
