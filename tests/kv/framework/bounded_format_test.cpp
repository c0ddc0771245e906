#include "kv/framework/bounded_format.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/test_window.h"

namespace {

TEST(BoundedFormat, FitsOrTruncatesAtTheSize) {
  const kvtest::GuardedBytes twelve(12);
  auto* wide = twelve.as<wchar_t>();
  EXPECT_EQ(kv::kFormatDone, kv::FormatBounded(wide, 12, L"%s%d", L"abc", 42));
  EXPECT_STREQ(L"abc42", wide);
  EXPECT_EQ(kv::kFormatTruncated, kv::FormatBounded(wide, 12, L"%040d", 7));
  EXPECT_STREQ(L"00000", wide);
  EXPECT_EQ(static_cast<HRESULT>(0x8007007A), kv::FormatBounded(wide, 11, L"abcde"));  // an odd byte
  EXPECT_STREQ(L"abcd", wide);
  for (const size_t none : {0, 1}) EXPECT_EQ(static_cast<HRESULT>(0x80070057), kv::FormatBounded(wide, none, L"x"));
  EXPECT_STREQ(L"abcd", wide);
  EXPECT_EQ(kv::kFormatTruncated, kv::FormatBounded(wide, 2, L"x"));
  EXPECT_STREQ(L"", wide);
  EXPECT_EQ(kv::kFormatDone, kv::FormatBounded(wide, 2, L""));

  auto* bytes = twelve.as<char>() + 7;
  EXPECT_EQ(kv::kFormatDone, kv::FormatBoundedA(bytes, 5, "%s%d", "ab", 34));
  EXPECT_STREQ("ab34", bytes);
  EXPECT_EQ(kv::kFormatTruncated, kv::FormatBoundedA(bytes, 5, "%d", 123456));
  EXPECT_EQ(kv::kFormatInvalid, kv::FormatBoundedA(bytes, 0, "no"));
  EXPECT_STREQ("1234", bytes);
}

TEST(BoundedFormat, RejectsBadPointers) {
  kvtest::GuardedBytes memory(8);
  auto *wide = memory.as<wchar_t>(), *noWide = static_cast<wchar_t*>(nullptr);
  auto *bytes = memory.as<char>(), *noBytes = static_cast<char*>(nullptr);
  std::memset(memory.data(), 'a', 8);  // not a format: no terminator
  for (const size_t size : {size_t{64}, ~size_t{0}}) {
    EXPECT_EQ(kv::kFormatInvalid, kv::FormatBounded(noWide, size, L"x"));
    EXPECT_EQ(kv::kFormatInvalid, kv::FormatBounded(wide, size, L"x"));
    EXPECT_EQ(kv::kFormatInvalid, kv::FormatBoundedV(wide, size, L"x", {}));
    EXPECT_EQ(kv::kFormatInvalid, kv::FormatBoundedA(noBytes, size, "x"));
  }
  wchar_t text[8] = L"kept";
  char textA[8] = "kept";
  for (const auto* format : {noWide, wide}) EXPECT_EQ(kv::kFormatInvalid, kv::FormatBounded(text, 16, format));
  for (const auto* format : {noBytes, bytes}) EXPECT_EQ(kv::kFormatInvalid, kv::FormatBoundedA(textA, 8, format));
  EXPECT_STREQ(L"kept", text);
  EXPECT_STREQ("kept", textA);
  EXPECT_EQ(0, std::memcmp(bytes, "aaaaaaaa", 8));
}

}  // namespace
