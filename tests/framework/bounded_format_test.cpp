#include "framework/bounded_format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

constexpr wchar_t kUntouched = 0xCCCC;

// A buffer that shows what was written.
struct Buffer {
  std::array<wchar_t, 48> text;
  Buffer() { text.fill(kUntouched); }
  // The first character from which on nothing was written.
  size_t Written() const {
    return std::find_if(text.rbegin(), text.rend(), [](wchar_t c) { return c != kUntouched; }).base() - text.begin();
  }
};

TEST(BoundedFormat, FitsOrCutsAtTheSizeInBytes) {
  Buffer fits;
  EXPECT_EQ(kv::kFormatDone, kv::FormatBounded(fits.text.data(), 12, L"%s%d", L"abc", 42));
  EXPECT_STREQ(L"abc42", fits.text.data());
  EXPECT_EQ(6u, fits.Written());

  Buffer cut;
  EXPECT_EQ(kv::kFormatCut, kv::FormatBounded(cut.text.data(), 12, L"%s%d", L"abc", 423));
  EXPECT_STREQ(L"abc42", cut.text.data());
  EXPECT_EQ(6u, cut.Written());

  Buffer odd;
  EXPECT_EQ(kv::kFormatCut, kv::FormatBounded(odd.text.data(), 11, L"abcde"));
  EXPECT_STREQ(L"abcd", odd.text.data());

  Buffer longText;
  EXPECT_EQ(kv::kFormatCut, kv::FormatBounded(longText.text.data(), 64, L"%040d", 7));
  EXPECT_EQ(std::wstring(31, L'0'), longText.text.data());
}

TEST(BoundedFormat, SmallestSizes) {
  Buffer none;
  EXPECT_EQ(static_cast<HRESULT>(0x80070057), kv::FormatBounded(none.text.data(), 0, L"a"));
  EXPECT_EQ(static_cast<HRESULT>(0x80070057), kv::FormatBounded(none.text.data(), 1, L"a"));
  EXPECT_EQ(0u, none.Written());

  Buffer one;
  EXPECT_EQ(kv::kFormatDone, kv::FormatBounded(one.text.data(), 2, L""));
  EXPECT_EQ(static_cast<HRESULT>(0x8007007A), kv::FormatBounded(one.text.data(), 2, L"a"));
  EXPECT_EQ(L'\0', one.text[0]);
  EXPECT_EQ(1u, one.Written());
}

}  // namespace
