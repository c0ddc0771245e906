#include "kv/export/nmea.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <string>

#include "tests/support/comma_locale.h"
#include "tests/support/test_window.h"

namespace {

using kvtest::GuardedBytes;

constexpr SYSTEMTIME kTime{2008, 5, 5, 9, 7, 3, 42, 987};

std::string SentenceOf(const kv::GprmcFix& fix, const SYSTEMTIME& time = kTime) {
  char text[kv::kSentenceSize];
  const size_t length = kv::FormatGprmcSentence(time, fix, text);
  EXPECT_EQ(length, strlen(text));
  return text;
}

TEST(Nmea, FormatsEveryField) {
  const kvtest::CommaLocale commas;
  EXPECT_EQ("$GPRMC,070342.09,A,4830.0000,N,1115.0000,W,5.3,123.5,090308,0.0,E,*",
            SentenceOf({48.5, -11.25, 5.25001, 123.46}));
  // Seconds are truncated, not rounded; zero is north and east; 100 degrees and more lengthen the sentence.
  EXPECT_EQ("$GPRMC,070342.09,A,0059.0059,S,12330.0000,E,0.0,-1.0,090308,0.0,E,*",
            SentenceOf({-0.999999, 123.5, 0, -1}));
  SYSTEMTIME early{.wYear = 1999, .wDay = 31, .wMilliseconds = 99};
  EXPECT_EQ("$GPRMC,000000.00,A,0000.0000,N,0000.0000,E,0.0,0.0,3100-01,0.0,E,*", SentenceOf({}, early));
}

TEST(Nmea, SurvivesInvalidPositions) {
  const std::string huge = SentenceOf({-DBL_MAX, INFINITY, DBL_MAX, -DBL_MAX});
  EXPECT_TRUE(huge.starts_with("$GPRMC,070342.09,A,2147483647") && huge.find(",S,") != std::string::npos);
  EXPECT_TRUE(huge.ends_with(",0.0,E,*"));  // the longest numbers fit
  const std::string none = SentenceOf({NAN, NAN, NAN, INFINITY});
  EXPECT_NE(std::string::npos, none.find(",A,0000.0000,N,0000.0000,E,"));
}

TEST(Nmea, StoresTheSentenceWithoutTheStarIfItFits) {
  // The local clock determines everything except the length, so two positions of equal length fit the same buffer.
  const size_t length = SentenceOf({1, 2}).size();
  GuardedBytes exact(length);
  memset(exact.data(), 'x', length);
  EXPECT_EQ(1, kv::formatGprmc(exact.as<char>(), 48.5, -11.25, 9, 9, 0, 0, 9, 9, 9));
  const std::string stored(exact.as<char>());
  EXPECT_TRUE(stored.size() == length - 1 && stored.ends_with(",0.0,E,"));
  EXPECT_NE(std::string::npos, stored.find(",A,4830.0000,N,1115.0000,W,0.0,0.0,"));

  memset(exact.data(), 'x', length);
  EXPECT_EQ(1, kv::formatGprmc(exact.as<char>() + 1, 48.5, -11.25, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(std::string(length, 'x'), std::string(exact.as<char>(), length));
  EXPECT_EQ(1, kv::formatGprmc(nullptr, 48.5, -11.25, 0, 0, 0, 0, 0, 0, 0));
}

}  // namespace
