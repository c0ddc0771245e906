#include "kv/framework/calendar.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "kv/framework/numbers.h"

namespace kv {

namespace {

constexpr double kDaysPerYear = 365.2425;
constexpr double kYearsPerDay = 0.002737907006988508;

// Indexed by month 1..13.
constexpr std::array<int, 14> kDaysBeforeMonth{0, 0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
constexpr std::array<int, 13> kMonthLengths{0, 31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

static_assert(sizeof(SYSTEMTIME) == 16);

bool IsReadable(const SYSTEMTIME* time) {
  return !IsBadReadPtr(time, sizeof(*time));
}

bool IsWritable(SYSTEMTIME* time) {
  return !IsBadWritePtr(time, sizeof(*time));
}

// `month` may be 0, which has no days.
int MonthLength(int year, int month) {
  if (month == 2) return IsLeapYear(year) ? 29 : 28;
  return kMonthLengths[month];
}

// 64 bits, because the fields of an unnormalized time reach 2^16.
long long MillisecondOfDay(const SYSTEMTIME& time) {
  return ((time.wHour * 60LL + time.wMinute) * 60 + time.wSecond) * 1000 + time.wMilliseconds;
}

void SetTimeOfDay(SYSTEMTIME* time, long long milliseconds) {
  time->wHour = static_cast<WORD>(milliseconds / 3600000);
  time->wMinute = static_cast<WORD>(milliseconds % 3600000 / 60000);
  time->wSecond = static_cast<WORD>(milliseconds % 60000 / 1000);
  time->wMilliseconds = static_cast<WORD>(milliseconds % 1000);
}

// Returns the day number before January 1st.
double YearStart(double year) {
  return Truncate(year * kDaysPerYear);
}

SYSTEMTIME LocalTime() {
  SYSTEMTIME now;
  GetLocalTime(&now);
  return now;
}

}  // namespace

double Truncate(double value) {
  return std::trunc(value);
}

BOOL IsLeapYear(int year) {
  return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
}

BOOL DayFractionToTime(double day, SYSTEMTIME* time) {
  if (!IsWritable(time)) return FALSE;
  int milliseconds = ToInt((day - Truncate(day)) * kMillisecondsPerDay + 0.5);
  if (milliseconds < 0) milliseconds = 1 - milliseconds;
  SetTimeOfDay(time, milliseconds);
  return TRUE;
}

double DayNumber(const SYSTEMTIME* time) {
  if (!IsReadable(time)) return 0;
  const int month = std::clamp<int>(time->wMonth, 1, 12);
  const int leapDay = time->wMonth > 2 && IsLeapYear(time->wYear) ? 1 : 0;
  return YearStart(time->wYear) + kDaysBeforeMonth[month] + leapDay + time->wDay;
}

int DayOfWeek(int day) {
  constexpr int kSaturday = 6;
  const int weekday = (day % 7 + 7) % 7 - 1;
  return weekday < 0 ? kSaturday : weekday;
}

BOOL DayNumberToTime(double day, SYSTEMTIME* time) {
  if (!IsReadable(time)) return FALSE;
  const double whole = Truncate(day);
  const double year = Truncate(whole * kYearsPerDay);
  int dayOfYear = ToInt(whole - YearStart(year));
  if (IsLeapYear(ToInt(year)) && dayOfYear >= 61) --dayOfYear;
  int month = 1;
  while (month < 12 && kDaysBeforeMonth[month + 1] < dayOfYear) ++month;
  time->wYear = static_cast<WORD>(ToInt(year));
  time->wMonth = static_cast<WORD>(month);
  time->wDay = static_cast<WORD>(dayOfYear - kDaysBeforeMonth[month]);
  time->wDayOfWeek = static_cast<WORD>(DayOfWeek(ToInt(whole)));
  SetTimeOfDay(time, ToInt((day - whole) * kMillisecondsPerDay));
  return TRUE;
}

int WeekNumber(double day) {
  SYSTEMTIME january4{};
  DayNumberToTime(day, &january4);
  january4.wMonth = 1;
  january4.wDay = 4;
  constexpr int kMonday = 1;
  int monday = ToInt(DayNumber(&january4));
  while (DayOfWeek(monday) != kMonday) --monday;
  return ToInt(Truncate((Truncate(day) - monday) / 7) + 1);
}

BOOL NormalizeTime(SYSTEMTIME* time) {
  if (!IsWritable(time)) return FALSE;
  // In wider variables than the fields, whose largest values carry beyond 16 bits.
  const int seconds = time->wSecond + time->wMilliseconds / 1000;
  const int minutes = time->wMinute + seconds / 60;
  const int hours = time->wHour + minutes / 60;
  const int hour = std::min(hours, 23);
  int day = time->wDay + (hours - hour);
  int year = time->wYear;
  int month = time->wMonth;
  for (; month > 12; month -= 12) ++year;
  for (int length; day > (length = MonthLength(year, month));) {
    day -= length;
    if (++month > 12) {
      month = 1;
      ++year;
    }
  }
  time->wYear = static_cast<WORD>(year);
  time->wMonth = static_cast<WORD>(month);
  time->wDay = static_cast<WORD>(day);
  time->wHour = static_cast<WORD>(hour);
  time->wMinute = static_cast<WORD>(minutes % 60);
  time->wSecond = static_cast<WORD>(seconds % 60);
  time->wMilliseconds %= 1000;
  time->wDayOfWeek = static_cast<WORD>(DayOfWeek(ToInt(DayNumber(time))));
  return TRUE;
}

int CompareTimes(const SYSTEMTIME* a, const SYSTEMTIME* b) {
  const SYSTEMTIME now = LocalTime();
  if (!IsReadable(a)) a = &now;
  if (!IsReadable(b)) b = &now;
  const double days = DayNumber(a) - DayNumber(b);
  if (days != 0) return days < 0 ? -1 : 1;
  const long long milliseconds = MillisecondOfDay(*a) - MillisecondOfDay(*b);
  return (milliseconds > 0) - (milliseconds < 0);
}

BOOL CombineTimes(const SYSTEMTIME* a, const SYSTEMTIME* b, SYSTEMTIME* result) {
  if (!IsReadable(a) || !IsReadable(b) || !IsWritable(result)) return FALSE;
  double days = DayNumber(a) + DayNumber(b);
  long long span = MillisecondOfDay(*b) - MillisecondOfDay(*a);
  if (span < 0) {
    span += kMillisecondsPerDay;
    days -= 1;
  }
  DayNumberToTime(days, result);
  SetTimeOfDay(result, span);
  return TRUE;
}

BOOL AddDays(const SYSTEMTIME* time, DWORD days, SYSTEMTIME* result) {
  if (!IsReadable(time) || !IsWritable(result)) return FALSE;
  const SYSTEMTIME source = *time;
  DayNumberToTime(DayNumber(&source) + days, result);
  result->wHour = source.wHour;
  result->wMinute = source.wMinute;
  result->wSecond = source.wSecond;
  result->wMilliseconds = source.wMilliseconds;
  return TRUE;
}

}  // namespace kv
