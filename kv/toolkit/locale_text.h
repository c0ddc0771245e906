// Formats numbers, dates and times for the current language. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// A number with digit grouping and up to 9 decimals.
std::wstring NumberText(double value, int decimals = 0);

// The decimal separator.
std::wstring DecimalSign();

// The short date with a four-digit year. An invalid date is formatted as year-month-day.
std::wstring DateText(const SYSTEMTIME& time);

// Hours, minutes and optionally seconds.
std::wstring TimeText(const SYSTEMTIME& time, bool withSeconds);

}  // namespace kv
