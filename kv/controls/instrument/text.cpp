#include "kv/controls/instrument/text.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cwchar>
#include <string_view>
#include <utility>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/bounded_format.h"

namespace kv {

namespace {

constexpr UINT kWestern = 1252;
constexpr wchar_t kPadding[] = L"                ";  // 16 blanks before the number, enough for every width
constexpr wchar_t kDashes[] = L"----------------";
constexpr size_t kPointSearch = 32;
constexpr int kMaxDashes = 15, kMaxReadout = 31;  // characters

int DecimalsOf(BYTE format) {
  return format & kFormatDecimals;
}

template <class... Arguments>
FixedText Format(const wchar_t* format, Arguments... arguments) {
  wchar_t text[128];
  FormatPlain(text, sizeof(text), format, arguments...);
  return text;
}

// The number of integer digits, from the block's maximum.
int IntegerDigits(float maximum) {
  const double magnitude = std::log10(std::fabs(static_cast<double>(maximum)));
  return std::isfinite(magnitude) ? static_cast<int>(magnitude + 0.5) : 0;
}

bool HasSign(BYTE format) {
  return (format & kFormatSign) != 0;
}

// The number of decimals with which at least ten values of the range differ, or as many as the format has; more than
// those if no format has enough.
int LeastDecimals(const InstrumentReading& reading, BYTE format) {
  const double least = std::ceil(1 - std::log10(std::fabs(reading.maximum - reading.minimum)));
  if (least > kFormatDecimals) return kFormatDecimals + 1;
  return std::clamp(static_cast<int>(least), 0, DecimalsOf(format));
}

int LongestNumber(const InstrumentReading& reading, int decimals, bool sign) {
  return static_cast<int>(std::max(PlainNumber(reading.minimum, decimals, sign).size(),
                                   PlainNumber(reading.maximum, decimals, sign).size()));
}

long MillisecondsOfDay(const SYSTEMTIME& time) {
  // The owner's time may be invalid.
  const long long seconds = (time.wHour * 60LL + time.wMinute) * 60 + time.wSecond;
  return static_cast<long>(std::min<long long>(seconds * 1000 + time.wMilliseconds, LONG_MAX));
}

FixedText TimeText(const SYSTEMTIME& time, int kind, bool valid) {
  const long hour = time.wHour, minute = time.wMinute, second = time.wSecond, milliseconds = time.wMilliseconds;
  switch (kind) {
    case 1: return valid ? Format(L"%-8.8ld", MillisecondsOfDay(time)) : L"---";
    case 2: return valid ? Format(L"%-2.2ld.%-2.2ld", minute, second) : L"--.--";
    case 3: return valid ? Format(L"%-2.2ld.%-2.2ld", hour, minute) : L"--.--";
    case 4: return valid ? Format(L"%-2.2ld.%-2.2ld.%-2.2ld.%-4.4ld", hour, minute, second, milliseconds) : L"--.--.--";
    default: return valid ? Format(L"%-2.2ld.%-2.2ld.%-2.2ld", hour, minute, second) : L"--.--.--";
  }
}

// Formats with three digits and, if necessary, a power of ten.
FixedText ShortNumber(double value) {
  FixedText text = Format(L"%.3g", value);
  const size_t power = text.view().find(L'e');
  if (power == std::wstring_view::npos) return text;
  // Runtimes write at least two digits of the exponent, some three.
  return FixedText(text.view().substr(0, power + 1)) + Format(L"%ld", wcstol(text.c_str() + power + 1, nullptr, 10));
}

FixedText DateText(const SYSTEMTIME& time, bool valid) {
  if (!valid) return L"--.--.--";
  return Format(L"%-4.4ld.%-2.2ld.%-2.2ld", static_cast<long>(time.wYear), static_cast<long>(time.wMonth),
                static_cast<long>(time.wDay));
}

// The length without an incomplete UTF-8 sequence at the field's end.
int WholeUtf8Length(const char* text, int length) {
  int lead = length - 1;
  while (lead > 0 && lead > length - 4 && (text[lead] & 0xC0) == 0x80) --lead;
  if (lead < 0) return length;
  const BYTE first = static_cast<BYTE>(text[lead]);
  const int needed = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
  return lead + needed > length ? lead : length;
}

bool Decode(UINT codePage, DWORD flags, const char* text, int length, FixedText* wide) {
  wchar_t buffer[64];
  const int count = MultiByteToWideChar(codePage, flags, text, length, buffer, ARRAYSIZE(buffer));
  *wide = std::wstring_view(buffer, count);
  return count > 0;
}

template <size_t Size>
FixedText DecodeField(const char (&field)[Size], UINT otherwise) {
  const int length = static_cast<int>(std::find(field, field + Size, '\0') - field);
  FixedText wide;
  if (length == 0) return wide;
  // Only a full field can end with an incomplete sequence.
  const int whole = length >= static_cast<int>(Size) - 1 ? WholeUtf8Length(field, length) : length;
  if (whole > 0 && Decode(CP_UTF8, MB_ERR_INVALID_CHARS, field, whole, &wide)) return wide;
  Decode(otherwise, 0, field, length, &wide);
  return wide;
}

}  // namespace

FixedText DecodedName(const InstrumentBlock& block) {
  return DecodeField(block.szName, CP_ACP);
}

FixedText DecodedUnit(const InstrumentBlock& block) {
  return DecodeField(block.szUnit, kWestern);
}

FixedText FixedWidthNumber(double value, int width, BYTE format) {
  const int decimals = DecimalsOf(format);
  wchar_t number[32];
  FormatBounded(number, sizeof(number), format & kFormatSign ? L"%%+%ld.%ldf" : L"%%%ld.%ldf",
                static_cast<long>(std::max(0, width - decimals)), static_cast<long>(decimals));
  const FixedText text = Format((FixedText(kPadding) + number).c_str(), value);
  const size_t integerWidth = std::max(1, width - decimals - (decimals > 0 ? 1 : 0));
  const size_t point = std::min({text.view().find(L'.'), text.size(), kPointSearch});
  return text.view().substr(point > integerWidth ? point - integerWidth : 0);
}

FixedText WithoutPadding(std::wstring_view text) {
  return text.substr(std::min(text.find_first_not_of(L' '), text.size()));
}

FixedText PlainNumber(double value, int decimals, bool sign) {
  wchar_t number[32];
  FormatBounded(number, sizeof(number), sign ? L"%%+.%ldf" : L"%%.%ldf", static_cast<long>(decimals));
  const FixedText text = Format(number, value);
  const bool zero = text.view().find_first_not_of(L"+-0.") == std::wstring_view::npos;
  return zero ? FixedText(text.view().substr(text.view().find_first_not_of(L"+-"))) : text;
}

NumberFormList NumberForms(const InstrumentReading& reading, BYTE format) {
  NumberFormList forms;
  for (int i = DecimalsOf(format); i >= LeastDecimals(reading, format); --i) {
    forms.push_back(PlainNumber(reading.value, i, HasSign(format)));
  }
  const FixedText power = ShortNumber(reading.value);
  if (forms.empty() || power.size() < forms.back().size()) forms.push_back(power);
  return forms;
}

FixedText FittedNumber(const InstrumentReading& reading, BYTE format, int most) {
  for (int decimals = DecimalsOf(format); decimals >= LeastDecimals(reading, format); --decimals) {
    const int width = LongestNumber(reading, decimals, HasSign(format));
    if (width > most) continue;
    const FixedText text = PlainNumber(reading.value, decimals, HasSign(format));
    FixedText padded;
    while (padded.size() + text.size() < static_cast<size_t>(width)) padded += L' ';
    return padded + text;
  }
  const FixedText power = ShortNumber(reading.value);
  return static_cast<int>(power.size()) <= most ? power : FixedText();
}

int NumberWidth(const InstrumentBlock& block) {
  const int decimals = DecimalsOf(block.format);
  return decimals + (decimals > 0 ? 1 : 0) + IntegerDigits(block.maximum) + (block.format & kFormatSign ? 1 : 0);
}

FixedText NoValueNumber(const InstrumentBlock& block, DWORD style) {
  const int width =
      style & kInstrumentFitted
          ? std::min(LongestNumber(ReadingOf(block), DecimalsOf(block.format), HasSign(block.format)), kMaxDashes)
          : std::max(1, NumberWidth(block));
  if (DecimalsOf(block.format) == 0) return std::wstring_view(kDashes).substr(0, width);
  FixedText text = std::wstring_view(kDashes).substr(0, width + 1);
  if (static_cast<size_t>(width) <= text.size()) text[width - 1] = L'.';
  return text;
}

FixedText AngleText(double degrees, const char (&hemispheres)[6]) {
  constexpr double kMaxNumber = 999999999;
  const double magnitude = std::isnan(degrees) ? 0 : std::min(std::fabs(degrees), kMaxNumber);
  long whole = static_cast<long>(magnitude);
  double fraction = magnitude - whole;
  long minutes = static_cast<long>(60 * fraction);
  fraction -= minutes / 60.0;
  long seconds = std::max(0L, static_cast<long>(3600 * fraction));
  fraction -= seconds / 3600.0;
  long hundredths = std::max(0L, static_cast<long>(360000 * fraction + 0.5));
  // Rounding may give 100 hundredths; without the carry they would have three digits and move the other fields.
  seconds += hundredths / 100;
  hundredths %= 100;
  minutes += seconds / 60;
  seconds %= 60;
  whole += minutes / 60;
  minutes %= 60;
  const wchar_t hemisphere = static_cast<BYTE>(hemispheres[degrees < 0 ? 1 : 0]);
  FixedText text =
      Format(L"%-3.3ld.%-2.2ld.%-2.2ld.%-2.2ld.%c", whole, minutes, seconds, hundredths, static_cast<int>(hemisphere));
  if (text[0] == L'0') {
    text[0] = L' ';
    if (text[1] == L'0') text[1] = L' ';
  }
  return text;
}

FixedText DigitalText(const InstrumentBlock& block, DWORD style, const SYSTEMTIME& time) {
  const InstrumentReading reading = ReadingOf(block);
  if (style & kInstrumentShowTime) return TimeText(time, DecimalsOf(block.format), reading.valid);
  if (style & kInstrumentShowDate) return DateText(time, reading.valid);
  if (style & kInstrumentShowAngle) {
    if (!reading.valid) return L"--.--.--.--";
    const FixedText angle = AngleText(reading.value, block.szUnit);
    // Without a letter for the hemisphere, a negative angle would look like a positive one.
    const bool needsSign = (style & kInstrumentFitted) && reading.value < 0 && !IsCharAlphaA(block.szUnit[1]);
    return needsSign ? FixedText(L"-") + WithoutPadding(angle) : angle;
  }
  if (!reading.valid) return NoValueNumber(block, style);
  return style & kInstrumentFitted ? FittedNumber(reading, block.format, kMaxReadout)
                                   : FixedWidthNumber(reading.value, NumberWidth(block), block.format);
}

}  // namespace kv
