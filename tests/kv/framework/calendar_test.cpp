#include "kv/framework/calendar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <tuple>
#include <utility>

#include "kv/framework/window_state.h"
#include "tests/support/test_window.h"

namespace {

SYSTEMTIME Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int millisecond = 0) {
  const auto word = [](int value) { return static_cast<WORD>(value); };
  return {word(year), word(month), 0, word(day), word(hour), word(minute), word(second), word(millisecond)};
}

double NumberOf(const SYSTEMTIME& date) {
  return kv::DayNumber(&date);
}

std::string Text(const SYSTEMTIME& time) {
  char text[64];
  sprintf(text, "%d-%d-%d %d:%02d:%02d.%03d", time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
          time.wSecond, time.wMilliseconds);
  return text;
}

std::string DateOf(double day) {
  SYSTEMTIME time{};
  kv::DayNumberToTime(day, &time);
  return Text(time);
}

// All days of the years 1601 to 2400.
TEST(Calendar, DayNumbersRoundTripExceptTwoDaysOfLeapYears) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int leapDays = 0, yearEnds = 0;
  for (int year = 1601; year <= 2400; ++year) {
    for (int month = 1; month <= 12; ++month) {
      const bool leapMonth = month == 2 && kv::IsLeapYear(year);
      for (int day = 1; day <= kLengths[month - 1] + leapMonth; ++day) {
        const SYSTEMTIME date = Date(year, month, day);
        const std::string back = DateOf(NumberOf(date));
        if (back == Text(date)) continue;
        ++(leapMonth ? leapDays : yearEnds);
        EXPECT_EQ(Text(leapMonth ? Date(year, 3, 1) : Date(year + 1, 1, 1)), back);
        EXPECT_EQ(Text(leapMonth ? Date(year, 2, 29) : Date(year, 12, 31)), Text(date));
        EXPECT_TRUE(kv::IsLeapYear(year));
      }
    }
  }
  EXPECT_EQ(194, leapDays);
  EXPECT_EQ(146, yearEnds);
}

TEST(Calendar, DayNumberIsTheProgramsOwnCount) {
  // 2008 x 365.2425 = 733406.94; July 14th is the 196th day of a leap year.
  EXPECT_EQ(733406 + 196, NumberOf(Date(2008, 7, 14, 23, 59)));
  EXPECT_EQ(733406 + 5, NumberOf(Date(2008, 0, 5)));
  EXPECT_EQ(733406 + 334 + 1 + 5, NumberOf(Date(2008, 40, 5)));
  EXPECT_EQ(0, kv::DayNumber(nullptr));

  EXPECT_TRUE(kv::DayOfWeek(0) == 6 && kv::DayOfWeek(1) == 0 && kv::DayOfWeek(7) == 6);
  for (int day = -10; day < 0; ++day) EXPECT_EQ(kv::DayOfWeek(day + 14), kv::DayOfWeek(day));
  SYSTEMTIME time{};
  kv::DayNumberToTime(NumberOf(Date(2026, 11, 24)), &time);
  EXPECT_EQ(2, time.wDayOfWeek);  // equal to the Gregorian calendar in this century
}

TEST(Calendar, TimeOfDayIsTruncatedOrRounded) {
  const double day = NumberOf(Date(2008, 7, 14));
  EXPECT_EQ("2008-7-14 12:00:00.000", DateOf(day + 0.5));
  EXPECT_EQ("2008-7-14 23:59:59.999", DateOf(day + (kv::kMillisecondsPerDay - 0.4) / kv::kMillisecondsPerDay));

  const std::pair<double, const char*> fractions[] = {
      {day + (12345678.6 / kv::kMillisecondsPerDay), "1-2-3 3:25:45.679"},
      {0.9999999999, "1-2-3 24:00:00.000"},
      // -1000 ms rounds to -999, whose magnitude plus one is taken; the exact fraction would come out the same.
      {-1000.25 / kv::kMillisecondsPerDay, "1-2-3 0:00:01.000"}};
  for (const auto& [fraction, rounded] : fractions) {
    SYSTEMTIME time = Date(1, 2, 3);
    EXPECT_TRUE(kv::DayFractionToTime(fraction, &time));
    EXPECT_EQ(rounded, Text(time));
  }
}

TEST(Calendar, Weeks) {
  const auto week = [](int year, int month, int day) { return kv::WeekNumber(NumberOf(Date(year, month, day)) + 0.7); };
  EXPECT_EQ(1, week(2018, 1, 1));  // January 4th is a Thursday
  EXPECT_EQ(1, week(2021, 1, 1));  // before the Monday of week 1
  EXPECT_EQ(1, week(2021, 1, 10));
  EXPECT_EQ(2, week(2021, 1, 11));
  EXPECT_EQ(53, week(2018, 12, 31));  // never week 1 of the next year
}

TEST(Calendar, NormalizeCarriesUpwards) {
  const std::pair<SYSTEMTIME, const char*> samples[] = {
      {Date(2008, 7, 14, 26), "2008-7-17 23:00:00.000"},
      {Date(2008, 12, 31, 23, 59, 59, 1000), "2009-1-1 23:00:00.000"},
      {Date(2008, 2, 29), "2008-2-29 0:00:00.000"},
      {Date(2007, 2, 29), "2007-3-1 0:00:00.000"},
      {Date(2008, 25, 5), "2010-1-5 0:00:00.000"},
      {Date(2009, 0, 40), "2009-2-9 0:00:00.000"},
      {Date(2008, 1, 366 + 31, 0, 0, 60, 1001), "2009-1-31 0:01:01.001"},
      {Date(2026, 11, 24), "2026-11-24 0:00:00.000"}};
  SYSTEMTIME time{};
  for (const auto& [from, normalized] : samples) {
    time = from;
    EXPECT_TRUE(kv::NormalizeTime(&time));
    EXPECT_EQ(normalized, Text(time));
  }
  EXPECT_EQ(2, time.wDayOfWeek);
}

TEST(Calendar, CompareCombineAdd) {
  const SYSTEMTIME morning = Date(2008, 7, 14, 8, 0, 0, 1), later = Date(2008, 7, 14, 8, 0, 1, 0),
                   nextDay = Date(2008, 7, 15), old = Date(1980, 1, 1), future = Date(9000, 1, 1);
  const struct {
    const SYSTEMTIME *a, *b;
    int order;
  } pairs[] = {{&morning, &later, -1}, {&nextDay, &later, 1}, {&later, &later, 0},
               {nullptr, &old, 1},     {&future, nullptr, 1}, {nullptr, nullptr, 0}};
  for (const auto& [a, b, order] : pairs) EXPECT_EQ(order, kv::CompareTimes(a, b));

  SYSTEMTIME result{};
  const SYSTEMTIME span = Date(1, 1, 1, 7);  // day number 366
  EXPECT_TRUE(kv::CombineTimes(&morning, &span, &result));
  EXPECT_EQ("2009-7-14 22:59:59.999", Text(result));  // 366 days later, minus the borrowed one
  EXPECT_TRUE(kv::CombineTimes(&span, &morning, &result));
  EXPECT_EQ("2009-7-15 1:00:00.001", Text(result));

  const std::tuple<SYSTEMTIME, DWORD, const char*> additions[] = {
      {later, 31, "2008-8-14 8:00:01.000"},
      {Date(1995, 12, 31), 1, "1995-12-32 0:00:00.000"},  // dates that do not exist
      {Date(1999, 12, 31), 1, "2000-1-0 0:00:00.000"}};
  for (auto [date, days, sum] : additions) {
    EXPECT_TRUE(kv::AddDays(&date, days, &date));
    EXPECT_EQ(sum, Text(date));
    EXPECT_TRUE(kv::AddDays(&date, 0xFFFFFFFF, &date));
  }
}

TEST(Calendar, BadPointersAndExtremeNumbersAreHarmless) {
  kvtest::GuardedBytes tooShort(sizeof(SYSTEMTIME) - 1);
  auto* bad = tooShort.as<SYSTEMTIME>();
  SYSTEMTIME good = Date(2008, 7, 14);
  EXPECT_EQ(0, kv::DayNumber(bad));
  EXPECT_FALSE(kv::DayNumberToTime(1, bad) || kv::DayFractionToTime(1, bad) || kv::NormalizeTime(bad));
  EXPECT_FALSE(kv::CombineTimes(bad, &good, &good) || kv::CombineTimes(&good, bad, &good));
  EXPECT_FALSE(kv::CombineTimes(&good, &good, bad) || kv::AddDays(bad, 1, &good) || kv::AddDays(&good, 1, bad));
  EXPECT_EQ(Text(Date(2008, 7, 14)), Text(good));

  for (const double wild : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300, -1e300, 1e10, -1e10, -0.25, -400.5}) {
    EXPECT_TRUE(kv::DayNumberToTime(wild, &good) && kv::DayFractionToTime(wild, &good));
    EXPECT_LE(good.wDayOfWeek, 6);
    kv::WeekNumber(wild);
  }
  std::mt19937 random(7);
  for (int i = 0; i < 2000; ++i) {
    SYSTEMTIME times[2], result{};
    for (WORD* field = &times[0].wYear; field < &times[0].wYear + 16; ++field) *field = static_cast<WORD>(random());
    kv::CompareTimes(&times[0], &times[1]);
    EXPECT_TRUE(kv::CombineTimes(&times[0], &times[1], &result));
    EXPECT_TRUE(kv::NormalizeTime(&times[0]));
    EXPECT_TRUE(times[0].wHour <= 23 && times[0].wMonth >= 1 && times[0].wMonth <= 12);
  }
}

TEST(Records, ZeroExactlyTheirSize) {
  kvtest::GuardedBytes record(25);
  char* bytes = record.as<char>();
  std::fill_n(bytes, 25, 'x');
  EXPECT_EQ(bytes + 1, kv::ZeroRecord24(bytes + 1));
  EXPECT_EQ("x" + std::string(24, '\0'), std::string(bytes, 25));
  EXPECT_EQ(nullptr, kv::ZeroRecord24(bytes + 2));
}

}  // namespace
