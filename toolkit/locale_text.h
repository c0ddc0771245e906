// Numbers, dates and times as the language that is shown writes them. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// With the digits in groups, and that many behind the decimal sign (at most 9).
std::wstring NumberText(double value, int decimals = 0);

// The sign between a number's whole part and its fraction.
std::wstring DecimalSign();

// The date in short form, with four digits of the year. A date that the calendar does not have is written as
// year-month-day.
std::wstring DateText(const SYSTEMTIME& time);

// Hours, minutes and, if wanted, seconds.
std::wstring TimeText(const SYSTEMTIME& time, bool withSeconds);

}  // namespace kv
