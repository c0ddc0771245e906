#include "kv/framework/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <utility>

#include "tests/support/comma_locale.h"

namespace kv {
namespace {

std::string Ours(double value, int decimals) {
  char text[kFixedNumberCapacity];
  return {text, FormatFixed(text, value, decimals)};
}

std::string Runtimes(double value, int decimals) {
  char text[kFixedNumberCapacity + 1];
  _snprintf(text, sizeof(text), "%.*f", decimals, value);
  return text;
}

TEST(FixedNumber, HasAPointInEveryLocale) {
  const kvtest::CommaLocale commas;
  EXPECT_EQ("8.5417000000", Ours(8.5417, 10));
  EXPECT_EQ("1000000000.0", Ours(999999999.99, 1));  // the carry exceeds the fast path's range
  EXPECT_EQ("0.5", Ours(0.45000000000000001, 1));    // by the runtime's rounding
}

TEST(Headings, AreNever360OrMinusZero) {
  const std::pair<double, double> headings[] = {{-90, 270}, {360, 0}, {-1e-20, 0}, {NAN, 0}, {INFINITY, 0}};
  for (const auto& [given, normal] : headings) EXPECT_DOUBLE_EQ(normal, NormalHeading(given));
  for (const double north : {359.6, -0.2, 0.4, -0.0, 720.0}) {
    EXPECT_EQ(0, RoundedHeading(north, 0)) << north;
    EXPECT_FALSE(std::signbit(RoundedHeading(north, 0)));
  }
  EXPECT_EQ(359.6, RoundedHeading(359.6, 1));
  for (const double zero : {-0.04, -0.0, 0.04}) EXPECT_FALSE(std::signbit(WithoutMinusZero(zero, 1))) << zero;
  EXPECT_EQ(-0.06, WithoutMinusZero(-0.06, 1));
}

TEST(FixedNumber, EqualsTheRuntime) {
  for (const double hard :
       {0.0,      -0.0,      0.25,        10.35,  0.05,    1 / 2048.,    3 / 2048., 1000.0,           999.96,
        1e9,      1e9 - .1,  1e22 / 3,    5e-324, -1e-300, 4294967296.5, 1 / 3.,    -179.99999999996, -DBL_MAX,
        HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    for (int decimals = 1; decimals <= kMaxFixedDecimals; ++decimals) {
      EXPECT_EQ(Runtimes(hard, decimals), Ours(hard, decimals)) << decimals;
    }
  }
  // A third each: random values, values a few bits beside the middle between two texts, random bits.
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> anywhere(-1200, 1200);
  for (int i = 0; i < 60000; ++i) {
    const int decimals = i % 2 ? 10 : 1;
    const double unit = std::pow(10.0, -decimals);
    double value = anywhere(random);
    const double middle = (std::floor(value / unit) + 0.5) * unit;
    if (i % 3 == 1) value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(middle) + random() % 9 - 4);
    if (i % 3 == 2) value = std::bit_cast<double>(random());
    ASSERT_EQ(Runtimes(value, decimals), Ours(value, decimals));
  }
}

}  // namespace
}  // namespace kv
