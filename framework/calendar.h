// The program's own calendar: conversions between SYSTEMTIME and a floating day number, whose integer part counts days
// and whose fraction is the time of day. Any thread; no state.
//
// The count is our own, not the proleptic Gregorian one: both directions of the conversion are made for it, and a
// number that a host has stored would mean another day if it changed. Two days of a leap year do not come back from
// their number: February 29th returns as March 1st, and December 31st returns as January 1st of the next year in those
// leap years whose next year begins 365 counted days later (about three in four). Weekdays follow the count as well.
//
// Some numbers are those of dates that do not exist. A year whose next year begins 366 counted days later although it
// has 365 (144 of the years 1601 to 2400) has a December 32nd: 1995-12-31 and one day is 1995-12-32. 2000 and 2400 have
// a January 0th: 1999-12-31 and one day is 2000-01-00. NormalizeTime makes January 1st of a December 32nd and leaves a
// day 0.
//
// Every function returns 0 and writes nothing when a SYSTEMTIME it needs cannot be read or written (CompareTimes is the
// exception it describes). Results may be the same record as an argument. Numbers beyond what the 16-bit fields hold
// are stored by their low 16 bits.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr int kMillisecondsPerDay = 86400000;

// The value without its fraction, towards zero.
double Truncate(double value);

BOOL IsLeapYear(int year);

// Writes hour, minute, second and millisecond of the day number's fraction, rounded to the millisecond; the date fields
// stay. Half a millisecond before midnight rounds to hour 24. Of a negative number, the magnitude of the fraction
// counts, and less than 1.5 milliseconds counts as 0.
BOOL DayFractionToTime(double day, SYSTEMTIME* time);

// The day number of a date; the time of day does not count. A month outside 1..12 counts as the nearest one.
double DayNumber(const SYSTEMTIME* time);

// The weekday, 0..6 from Sunday, also for a negative day.
int DayOfWeek(int day);

// Date, weekday and time of day (cut to the millisecond) of a day number. `time` needs to be writable although only its
// readability is tested.
BOOL DayNumberToTime(double day, SYSTEMTIME* time);

// The week of the year: week 1 begins on the Monday on or before January 4th and also takes the days before it. A week
// never belongs to the neighbouring year, so a year may end with week 53.
int WeekNumber(double day);

// Carries what is out of range into the next field, up to the year, and recomputes the weekday. Each hour above 23 is
// worth a day: hour 26 becomes hour 23, three days later.
BOOL NormalizeTime(SYSTEMTIME* time);

// -1, 0 or 1 as `a` is before, at or after `b`, to the millisecond. A record that cannot be read stands for the current
// local time.
int CompareTimes(const SYSTEMTIME* a, const SYSTEMTIME* b);

// The date is that of both day numbers added; the time of day is b's minus a's, borrowing a day when that is negative.
BOOL CombineTimes(const SYSTEMTIME* a, const SYSTEMTIME* b, SYSTEMTIME* result);

// The date that many counted days later, at the same time of day: possibly one that does not exist (see above).
BOOL AddDays(const SYSTEMTIME* time, DWORD days, SYSTEMTIME* result);

}  // namespace kv
