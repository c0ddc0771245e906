#include "kv/toolkit/locale_text.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "kv/framework/bounded_format.h"
#include "kv/framework/numbers.h"
#include "kv/toolkit/languages.h"

namespace kv {

namespace {

std::wstring LocaleText(LCTYPE what) {
  wchar_t text[80] = L"";
  GetLocaleInfoW(CurrentLocale(), what, text, ARRAYSIZE(text));
  return text;
}

// "3;0" is groups of three, "3;2;0" a first group of three, then groups of two; GetNumberFormatW expects 3 and 32.
UINT Grouping() {
  UINT grouping = 0;
  for (const wchar_t character : LocaleText(LOCALE_SGROUPING)) {
    if (character >= L'1' && character <= L'9') grouping = grouping * 10 + (character - L'0');
  }
  return grouping;
}

}  // namespace

std::wstring NumberText(double value, int decimals) {
  decimals = std::clamp(decimals, 0, 9);
  wchar_t plain[400], text[800];
  FormatPlain(plain, sizeof(plain), L"%.*f", decimals, WithoutMinusZero(value, decimals));
  std::wstring decimal = DecimalSign(), thousand = LocaleText(LOCALE_STHOUSAND);
  const NUMBERFMTW format{
      .NumDigits = static_cast<UINT>(decimals),
      .LeadingZero = 1,
      .Grouping = Grouping(),
      .lpDecimalSep = decimal.data(),
      .lpThousandSep = thousand.data(),
      .NegativeOrder = 1,
  };
  return GetNumberFormatW(CurrentLocale(), 0, plain, &format, text, ARRAYSIZE(text)) ? text : plain;
}

std::wstring DecimalSign() {
  return LocaleText(LOCALE_SDECIMAL);
}

std::wstring DateText(const SYSTEMTIME& time) {
  // The short date of some locales has a two-digit year, which is ambiguous.
  std::wstring form = LocaleText(LOCALE_SSHORTDATE);
  // Direction marks would reverse the date in a readout, which is not mirrored.
  std::erase_if(form, [](wchar_t character) { return character == L'\u200E' || character == L'\u200F'; });
  const size_t year = form.find(L'y');
  if (year != std::wstring::npos && form.find(L"yyyy") == std::wstring::npos) {
    form.replace(year, form.find_last_of(L'y') - year + 1, L"yyyy");
  }
  wchar_t text[80];
  if (GetDateFormatW(CurrentLocale(), 0, &time, form.c_str(), text, ARRAYSIZE(text))) return text;
  FormatBounded(text, sizeof(text), L"%04u-%02u-%02u", time.wYear, time.wMonth, time.wDay);
  return text;
}

std::wstring TimeText(const SYSTEMTIME& time, bool withSeconds) {
  wchar_t text[80] = L"";
  // 24 hours, as in the instruments.
  const DWORD flags = TIME_FORCE24HOURFORMAT | TIME_NOTIMEMARKER | (withSeconds ? 0 : TIME_NOSECONDS);
  GetTimeFormatW(CurrentLocale(), flags, &time, nullptr, text, ARRAYSIZE(text));
  return text;
}

}  // namespace kv
