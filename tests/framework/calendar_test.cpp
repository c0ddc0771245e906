#include "framework/calendar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "framework/records.h"
#include "tests/support/test_window.h"

namespace {

SYSTEMTIME Date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int millisecond = 0) {
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(year);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  time.wMilliseconds = static_cast<WORD>(millisecond);
  return time;
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

// The dates of all days of the years 1601 to 2400 that do not come back from their day number.
TEST(Calendar, DayNumbersRoundTripButForTwoDaysOfLeapYears) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  int leapYears = 0, leapDays = 0, yearEnds = 0;
  for (int year = 1601; year <= 2400; ++year) {
    leapYears += kv::IsLeapYear(year);
    for (int month = 1; month <= 12; ++month) {
      const int length = kLengths[month - 1] + (month == 2 ? kv::IsLeapYear(year) : 0);
      for (int day = 1; day <= length; ++day) {
        const SYSTEMTIME date = Date(year, month, day);
        const std::string back = DateOf(kv::DayNumber(&date));
        if (back == Text(date)) continue;
        if (month == 2 && day == 29) {
          ++leapDays;
          EXPECT_EQ(Text(Date(year, 3, 1)), back);
        } else {
          ++yearEnds;
          EXPECT_TRUE(kv::IsLeapYear(year));
          EXPECT_EQ(Text(Date(year, 12, 31)), Text(date));
          EXPECT_EQ(Text(Date(year + 1, 1, 1)), back);
        }
      }
    }
  }
  EXPECT_EQ(194, leapYears);
  EXPECT_EQ(194, leapDays);
  EXPECT_EQ(146, yearEnds);
}

TEST(Calendar, DayNumberIsTheProgramsOwnCount) {
  // 2008 x 365.2425 = 733406.94; July 14th is the 196th day of a leap year.
  const SYSTEMTIME release = Date(2008, 7, 14, 23, 59);
  EXPECT_EQ(733406 + 196, kv::DayNumber(&release));
  const SYSTEMTIME noMonth = Date(2008, 0, 5), lateMonth = Date(2008, 40, 5);
  EXPECT_EQ(733406 + 5, kv::DayNumber(&noMonth));
  EXPECT_EQ(733406 + 334 + 1 + 5, kv::DayNumber(&lateMonth));
  EXPECT_EQ(0, kv::DayNumber(nullptr));
}

TEST(Calendar, Weekdays) {
  EXPECT_EQ(6, kv::DayOfWeek(0));
  EXPECT_EQ(0, kv::DayOfWeek(1));
  EXPECT_EQ(6, kv::DayOfWeek(7));
  for (int day = -10; day < 0; ++day) EXPECT_EQ(kv::DayOfWeek(day + 14), kv::DayOfWeek(day));
  SYSTEMTIME time = Date(2026, 11, 24);
  kv::DayNumberToTime(kv::DayNumber(&time), &time);
  EXPECT_EQ(2, time.wDayOfWeek);  // the count agrees with the world in this century
}

TEST(Calendar, TimeOfDayIsCutOrRounded) {
  const SYSTEMTIME noon = Date(2008, 7, 14);
  const double day = kv::DayNumber(&noon);
  EXPECT_EQ("2008-7-14 12:00:00.000", DateOf(day + 0.5));
  EXPECT_EQ("2008-7-14 23:59:59.999", DateOf(day + (kv::kMillisecondsPerDay - 0.4) / kv::kMillisecondsPerDay));

  SYSTEMTIME time = Date(1, 2, 3);
  EXPECT_TRUE(kv::DayFractionToTime(day + (12345678.6 / kv::kMillisecondsPerDay), &time));
  EXPECT_EQ("1-2-3 3:25:45.679", Text(time));
  kv::DayFractionToTime(0.9999999999, &time);
  EXPECT_EQ("1-2-3 24:00:00.000", Text(time));
  // -1000 ms rounds to -999, whose magnitude plus one is taken; the exact fraction would come out the same.
  kv::DayFractionToTime(-1000.25 / kv::kMillisecondsPerDay, &time);
  EXPECT_EQ("1-2-3 0:00:01.000", Text(time));
}

TEST(Calendar, Weeks) {
  const auto week = [](int year, int month, int day) {
    const SYSTEMTIME time = Date(year, month, day);
    return kv::WeekNumber(kv::DayNumber(&time) + 0.7);
  };
  EXPECT_EQ(1, week(2018, 1, 1));  // January 4th is a Thursday
  EXPECT_EQ(1, week(2021, 1, 1));  // before the Monday of week 1
  EXPECT_EQ(1, week(2021, 1, 10));
  EXPECT_EQ(2, week(2021, 1, 11));
  EXPECT_EQ(29, week(2008, 7, 14));
  EXPECT_EQ(53, week(2018, 12, 31));  // never week 1 of the next year
}

TEST(Calendar, NormalizeCarriesUpwards) {
  const auto normalized = [](SYSTEMTIME time) {
    EXPECT_TRUE(kv::NormalizeTime(&time));
    return Text(time);
  };
  EXPECT_EQ("2008-7-17 23:00:00.000", normalized(Date(2008, 7, 14, 26)));
  EXPECT_EQ("2009-1-1 23:00:00.000", normalized(Date(2008, 12, 31, 23, 59, 59, 1000)));
  EXPECT_EQ("2008-2-29 0:00:00.000", normalized(Date(2008, 2, 29)));
  EXPECT_EQ("2007-3-1 0:00:00.000", normalized(Date(2007, 2, 29)));
  EXPECT_EQ("2010-1-5 0:00:00.000", normalized(Date(2008, 25, 5)));
  EXPECT_EQ("2009-2-9 0:00:00.000", normalized(Date(2009, 0, 40)));
  EXPECT_EQ("2009-1-31 0:01:01.001", normalized(Date(2008, 1, 366 + 31, 0, 0, 60, 1001)));
  SYSTEMTIME weekday = Date(2026, 11, 24);
  weekday.wDayOfWeek = 77;
  kv::NormalizeTime(&weekday);
  EXPECT_EQ(2, weekday.wDayOfWeek);
}

TEST(Calendar, CompareCombineAdd) {
  const SYSTEMTIME morning = Date(2008, 7, 14, 8, 0, 0, 1), later = Date(2008, 7, 14, 8, 0, 1, 0),
                   nextDay = Date(2008, 7, 15), old = Date(1980, 1, 1), future = Date(9000, 1, 1);
  EXPECT_EQ(-1, kv::CompareTimes(&morning, &later));
  EXPECT_EQ(1, kv::CompareTimes(&nextDay, &later));
  EXPECT_EQ(0, kv::CompareTimes(&later, &later));
  EXPECT_EQ(1, kv::CompareTimes(nullptr, &old));
  EXPECT_EQ(1, kv::CompareTimes(&future, nullptr));
  EXPECT_EQ(0, kv::CompareTimes(nullptr, nullptr));

  SYSTEMTIME result{};
  const SYSTEMTIME span = Date(1, 1, 1, 7);  // day number 366
  EXPECT_TRUE(kv::CombineTimes(&morning, &span, &result));
  EXPECT_EQ("2009-7-14 22:59:59.999", Text(result));  // 366 days on, less the borrowed one
  EXPECT_TRUE(kv::CombineTimes(&span, &morning, &result));
  EXPECT_EQ("2009-7-15 1:00:00.001", Text(result));

  SYSTEMTIME date = later;
  EXPECT_TRUE(kv::AddDays(&date, 31, &date));
  EXPECT_EQ("2008-8-14 8:00:01.000", Text(date));
  EXPECT_TRUE(kv::AddDays(&date, 0xFFFFFFFF, &date));
}

TEST(Calendar, BadPointersAndWildNumbersAreHarmless) {
  kvtest::GuardedBytes tooShort(sizeof(SYSTEMTIME) - 1);
  auto* bad = tooShort.as<SYSTEMTIME>();
  SYSTEMTIME good = Date(2008, 7, 14);
  EXPECT_EQ(0, kv::DayNumber(bad));
  EXPECT_FALSE(kv::DayNumberToTime(1, bad) || kv::DayFractionToTime(1, bad) || kv::NormalizeTime(bad));
  EXPECT_FALSE(kv::CombineTimes(bad, &good, &good) || kv::CombineTimes(&good, bad, &good));
  EXPECT_FALSE(kv::CombineTimes(&good, &good, bad) || kv::AddDays(bad, 1, &good) || kv::AddDays(&good, 1, bad));
  EXPECT_EQ(Text(Date(2008, 7, 14)), Text(good));

  const double kInfinity = std::numeric_limits<double>::infinity();
  for (const double wild : {std::nan(""), kInfinity, -kInfinity, 1e300, -1e300, 1e10, -1e10, -0.25, -400.5}) {
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
    EXPECT_LE(times[0].wHour, 23);
    EXPECT_GE(times[0].wMonth, 1);
    EXPECT_LE(times[0].wMonth, 12);
  }
}

TEST(Records, ZeroExactlyTheirSize) {
  kvtest::GuardedBytes record(25);
  std::fill_n(record.as<char>(), 25, 'x');
  EXPECT_EQ(record.as<char>() + 1, kv::ZeroRecord24(record.as<char>() + 1));
  EXPECT_EQ('x', record.as<char>()[0]);
  EXPECT_EQ(std::string(24, '\0'), std::string(record.as<char>() + 1, 24));
  EXPECT_EQ(nullptr, kv::ZeroRecord24(record.as<char>() + 2));

  CRITICAL_SECTION lock;
  EXPECT_EQ(0, kv::InitLock(&lock));
  EXPECT_TRUE(TryEnterCriticalSection(&lock));
  LeaveCriticalSection(&lock);
  DeleteCriticalSection(&lock);
  EXPECT_EQ(0, kv::InitLock(nullptr));
}

}  // namespace
