// Calendar: conversions between SYSTEMTIME and a floating-point day number, whose integer part counts days and whose
// fraction is the time of day. Any thread; no state.
//
// Quirk: the day numbers are not those of the proleptic Gregorian calendar. Stored numbers depend on this count. Two
// days of a leap year do not survive a round trip: February 29th comes back as March 1st, and December 31st as January
// 1st of the next year, in those leap years whose next year begins 365 counted days later (about three in four).
// Weekdays follow the count.
//
// Some numbers stand for dates that do not exist. A year of 365 days whose next year begins 366 counted days later (144
// of the years 1601 to 2400) has a December 32nd: one day after 1995-12-31 is 1995-12-32. The years 2000 and 2400 have
// a January 0th: one day after 1999-12-31 is 2000-01-00. NormalizeTime turns a December 32nd into January 1st and does
// not change a day 0.
//
// Every function returns 0 and writes nothing when a SYSTEMTIME that it requires cannot be read or written
// (CompareTimes differs, see below). A result may be the same struct as an argument. Numbers beyond the range of the
// 16-bit fields are stored modulo 65536.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr int kMillisecondsPerDay = 86400000;

// Returns the value truncated toward zero.
double Truncate(double value);

BOOL IsLeapYear(int year);

// Writes hour, minute, second and millisecond of the day number's fraction, rounded to the millisecond; the date fields
// do not change. Half a millisecond before midnight rounds to hour 24. For a negative number, the magnitude of the
// fraction is used, and less than 1.5 milliseconds is 0.
BOOL DayFractionToTime(double day, SYSTEMTIME* time);

// Returns the day number of a date; the time of day is ignored. A month outside 1..12 is clamped.
double DayNumber(const SYSTEMTIME* time);

// Returns the weekday, 0 (Sunday) to 6, of a day number, which may be negative.
int DayOfWeek(int day);

// Writes date, weekday and time of day (truncated to the millisecond) of a day number. `time` must be writable,
// although only its readability is tested.
BOOL DayNumberToTime(double day, SYSTEMTIME* time);

// Returns the week of the year. Week 1 begins on the Monday on or before January 4th and includes the days of the year
// before that Monday. A week never belongs to a neighboring year, so a year may end with week 53.
int WeekNumber(double day);

// Carries values that are out of range into the next field, up to the year, and recomputes the weekday. Each hour above
// 23 counts as a day: hour 26 becomes hour 23, three days later.
BOOL NormalizeTime(SYSTEMTIME* time);

// Returns -1, 0 or 1 if `a` is before, at or after `b`, to the millisecond. An argument that cannot be read is replaced
// by the current local time.
int CompareTimes(const SYSTEMTIME* a, const SYSTEMTIME* b);

// Adds the day numbers of both dates. The time of day is b's minus a's, and borrows a day if that is negative.
BOOL CombineTimes(const SYSTEMTIME* a, const SYSTEMTIME* b, SYSTEMTIME* result);

// Adds `days` counted days and leaves the time of day. The result may be a date that does not exist (see above).
BOOL AddDays(const SYSTEMTIME* time, DWORD days, SYSTEMTIME* result);

}  // namespace kv
