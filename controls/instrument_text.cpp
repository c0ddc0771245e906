#include "controls/instrument_text.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cwchar>
#include <string>
#include <utility>
#include <vector>

#include "controls/instrument_block.h"
#include "framework/bounded_format.h"

namespace kv {

namespace {

constexpr wchar_t kPadding[] = L"                ";  // 16 blanks before the number, so that cutting always finds some
constexpr wchar_t kDashes[] = L"----------------";
constexpr size_t kPointSearch = 32;

int PlacesOf(BYTE format) {
  return format & kFormatPlaces;
}

template <class... Arguments>
std::wstring Format(const wchar_t* format, Arguments... arguments) {
  wchar_t text[128];
  FormatBounded(text, sizeof(text), format, arguments...);
  return text;
}

// Digits before the point, by the size of the block's maximum.
int IntegerDigits(float maximum) {
  const double magnitude = std::log10(std::fabs(static_cast<double>(maximum)));
  return std::isfinite(magnitude) ? static_cast<int>(magnitude + 0.5) : 0;
}

long MillisecondsOfDay(const SYSTEMTIME& time) {
  // The owner's record may hold anything.
  const long long seconds = (time.wHour * 60LL + time.wMinute) * 60 + time.wSecond;
  return static_cast<long>(std::min<long long>(seconds * 1000 + time.wMilliseconds, LONG_MAX));
}

std::wstring TimeText(const SYSTEMTIME& time, int kind, bool valid) {
  const long hour = time.wHour, minute = time.wMinute, second = time.wSecond, milliseconds = time.wMilliseconds;
  switch (kind) {
    case 1: return valid ? Format(L"%-8.8ld", MillisecondsOfDay(time)) : L"---";
    case 2: return valid ? Format(L"%-2.2ld.%-2.2ld", minute, second) : L"--.--";
    case 3: return valid ? Format(L"%-2.2ld.%-2.2ld", hour, minute) : L"--.--";
    case 4: return valid ? Format(L"%-2.2ld.%-2.2ld.%-2.2ld.%-4.4ld", hour, minute, second, milliseconds) : L"--.--.--";
    default: return valid ? Format(L"%-2.2ld.%-2.2ld.%-2.2ld", hour, minute, second) : L"--.--.--";
  }
}

// To three digits, with a power of ten if need be.
std::wstring ShortNumber(double value) {
  std::wstring text = Format(L"%.3g", value);
  const size_t power = text.find(L'e');
  if (power == std::wstring::npos) return text;
  // The run-time writes at least two digits of the power, some three.
  return text.substr(0, power + 1) + Format(L"%ld", wcstol(text.c_str() + power + 1, nullptr, 10));
}

std::wstring DateText(const SYSTEMTIME& time, bool valid) {
  if (!valid) return L"--.--.--";
  return Format(L"%-4.4ld.%-2.2ld.%-2.2ld", static_cast<long>(time.wYear), static_cast<long>(time.wMonth),
                static_cast<long>(time.wDay));
}

}  // namespace

std::wstring FixedWidthNumber(double value, int width, BYTE format) {
  const int places = PlacesOf(format);
  wchar_t number[32];
  FormatBounded(number, sizeof(number), format & kFormatSign ? L"%%+%ld.%ldf" : L"%%%ld.%ldf",
                static_cast<long>(std::max(0, width - places)), static_cast<long>(places));
  const std::wstring text = Format((kPadding + std::wstring(number)).c_str(), value);
  const size_t integerWidth = std::max(1, width - places - (places > 0 ? 1 : 0));
  const size_t point = std::min({text.find(L'.'), text.size(), kPointSearch});
  return text.substr(point > integerWidth ? point - integerWidth : 0);
}

std::wstring WithoutPadding(const std::wstring& text) {
  return text.substr(std::min(text.find_first_not_of(L' '), text.size()));
}

std::wstring PlainNumber(double value, int places, bool sign) {
  wchar_t number[32];
  FormatBounded(number, sizeof(number), sign ? L"%%+.%ldf" : L"%%.%ldf", static_cast<long>(places));
  const std::wstring text = Format(number, value);
  const bool zero = text.find_first_not_of(L"+-0.") == std::wstring::npos;
  return zero ? text.substr(text.find_first_not_of(L"+-")) : text;
}

std::vector<std::wstring> NumberForms(double value, int places, bool sign) {
  std::vector<std::wstring> forms;
  for (; places >= 0; --places) forms.push_back(PlainNumber(value, places, sign));
  std::wstring power = ShortNumber(value);
  if (power.size() < forms.back().size()) forms.push_back(std::move(power));
  return forms;
}

int NumberWidth(const InstrumentBlock& block) {
  const int places = PlacesOf(block.format);
  return places + (places > 0 ? 1 : 0) + IntegerDigits(block.maximum) + (block.format & kFormatSign ? 1 : 0);
}

std::wstring NoValueNumber(const InstrumentBlock& block) {
  const int width = std::max(1, NumberWidth(block));
  if (PlacesOf(block.format) == 0) return std::wstring(kDashes).substr(0, width);
  std::wstring text = std::wstring(kDashes).substr(0, width + 1);
  if (static_cast<size_t>(width) <= text.size()) text[width - 1] = L'.';
  return text;
}

std::wstring AngleText(double degrees, const char (&hemispheres)[6]) {
  constexpr double kMost = 999999999;
  const double magnitude = std::isnan(degrees) ? 0 : std::min(std::fabs(degrees), kMost);
  long whole = static_cast<long>(magnitude);
  double fraction = magnitude - whole;
  long minutes = static_cast<long>(60 * fraction);
  fraction -= minutes / 60.0;
  long seconds = std::max(0L, static_cast<long>(3600 * fraction));
  fraction -= seconds / 3600.0;
  long hundredths = std::max(0L, static_cast<long>(360000 * fraction + 0.5));
  // Rounding may fill the last field; without the carry it would show three digits and push the others aside.
  seconds += hundredths / 100;
  hundredths %= 100;
  minutes += seconds / 60;
  seconds %= 60;
  whole += minutes / 60;
  minutes %= 60;
  const wchar_t hemisphere = static_cast<BYTE>(hemispheres[degrees < 0 ? 1 : 0]);
  std::wstring text =
      Format(L"%-3.3ld.%-2.2ld.%-2.2ld.%-2.2ld.%c", whole, minutes, seconds, hundredths, static_cast<int>(hemisphere));
  if (text[0] == L'0') {
    text[0] = L' ';
    if (text[1] == L'0') text[1] = L' ';
  }
  return text;
}

std::wstring DigitalText(const InstrumentBlock& block, DWORD style, const SYSTEMTIME& time) {
  const InstrumentReading reading = ReadingOf(block);
  if (style & kInstrumentShowTime) return TimeText(time, PlacesOf(block.format), reading.valid);
  if (style & kInstrumentShowDate) return DateText(time, reading.valid);
  if (style & kInstrumentShowAngle) {
    return reading.valid ? AngleText(reading.value, block.szUnit) : std::wstring(L"--.--.--.--");
  }
  return reading.valid ? FixedWidthNumber(reading.value, NumberWidth(block), block.format) : NoValueNumber(block);
}

}  // namespace kv
