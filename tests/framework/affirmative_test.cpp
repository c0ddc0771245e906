#include "framework/affirmative.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <string>

#include "tests/support/test_window.h"

namespace kv {
namespace {

struct Sample {
  int language;
  std::wstring text;
  BOOL affirms;
};

TEST(Affirmative, KnowsFirstWordsSignsAndTheTrapsOfTheVocabulary) {
  const Sample samples[] = {
      {0, L"Yes please", TRUE},
      {0, L"true\tand more", TRUE},
      {0, L"no", FALSE},
      {0, L"please: yes", FALSE},  // the first word alone counts
      {0, L"ye", FALSE},
      {0, L"on1y", TRUE},  // signs count anywhere in it ...
      {0, L"10", TRUE},
      {0, L"C++", TRUE},
      {0, L"EYESORE", TRUE},
      {99, L"yes", TRUE},  // ... in whatever language
      {99, L"ja", FALSE},
      {-2, L"ja", FALSE},
      {0, L"", TRUE},  // whoever only presses Enter agrees
      {0, L" no", TRUE},
      {22, L"\nno", TRUE},
      {kEveryLanguage, L"", TRUE},
      {99, L"", FALSE},
      {0, L"ja", FALSE},
      {1, L"JA", TRUE},
      {kEveryLanguage, L"Wahr", TRUE},
      {2, L"qui", TRUE},  // our users' French
      {2, L"oui", FALSE},
      {4, L"disattivato", TRUE},
      {9, L"ΑΛΗΘΕΙΑ", TRUE},
      {11, L"नहीं", TRUE},
      {12, L"〜の上に", TRUE},
      {17, L"av", TRUE},  // Norwegian and Finnish when asked for only
      {kEveryLanguage, L"av", FALSE},
      {18, L"kyllä", TRUE},
      {kEveryLanguage, L"kyllä", FALSE},
      {kEveryLanguage, L"sant", TRUE},
      {21, L"enabled", TRUE},
      {23, L"cierto", TRUE},
      {24, L"cierto", FALSE},
  };
  for (const Sample& sample : samples) {
    EXPECT_EQ(sample.affirms, IsAffirmative(sample.language, sample.text.c_str()))
        << sample.language << " " << testing::PrintToString(sample.text);
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
