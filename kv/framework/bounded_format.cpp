#include "kv/framework/bounded_format.h"

#include <climits>
#include <clocale>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cwchar>

namespace kv {

namespace {

// The C runtime's formatters use the locale set with setlocale for this value.
constexpr _locale_t kHostLocale = nullptr;

_locale_t PlainLocale() {
  static const _locale_t locale = _create_locale(LC_ALL, "C");
  return locale;
}

bool IsBadFormat(const char* format) {
  return IsBadStringPtrA(format, UINT_MAX);
}

bool IsBadFormat(const wchar_t* format) {
  return IsBadStringPtrW(format, UINT_MAX);
}

// The C runtime's own functions, not the standard ones: only their wide "%s" expects wide text with every toolchain.
int Print(char* buffer, size_t capacity, const char* format, _locale_t locale, va_list arguments) {
  return _vsnprintf_l(buffer, capacity, format, locale, arguments);
}

int Print(wchar_t* buffer, size_t capacity, const wchar_t* format, _locale_t locale, va_list arguments) {
  return _vsnwprintf_l(buffer, capacity, format, locale, arguments);
}

template <class Character>
HRESULT Format(Character* buffer, size_t size, const Character* format, _locale_t locale, va_list arguments) {
  if (size == 0 || size > SIZE_MAX / sizeof(Character) || IsBadWritePtr(buffer, size * sizeof(Character)) ||
      IsBadFormat(format)) {
    return kFormatInvalid;
  }
  const size_t capacity = size - 1;
  const int length = Print(buffer, capacity, format, locale, arguments);
  // They return -1 when the text is longer than `capacity` or cannot be formatted, and do not terminate a text of
  // exactly `capacity` characters.
  const bool fits = length >= 0 && static_cast<size_t>(length) <= capacity;
  if (!fits || static_cast<size_t>(length) == capacity) buffer[capacity] = 0;
  return fits ? kFormatDone : kFormatTruncated;
}

}  // namespace

HRESULT FormatBounded(wchar_t* buffer, size_t sizeBytes, const wchar_t* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const HRESULT result = FormatBoundedV(buffer, sizeBytes / sizeof(wchar_t), format, arguments);
  va_end(arguments);
  return result;
}

HRESULT FormatBoundedV(wchar_t* buffer, size_t sizeCharacters, const wchar_t* format, va_list arguments) {
  return Format(buffer, sizeCharacters, format, kHostLocale, arguments);
}

HRESULT FormatPlain(wchar_t* buffer, size_t sizeBytes, const wchar_t* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const HRESULT result = FormatPlainV(buffer, sizeBytes / sizeof(wchar_t), format, arguments);
  va_end(arguments);
  return result;
}

HRESULT FormatPlainV(wchar_t* buffer, size_t sizeCharacters, const wchar_t* format, va_list arguments) {
  return Format(buffer, sizeCharacters, format, PlainLocale(), arguments);
}

HRESULT FormatBoundedA(char* buffer, size_t sizeBytes, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const HRESULT result = Format(buffer, sizeBytes, format, PlainLocale(), arguments);
  va_end(arguments);
  return result;
}

}  // namespace kv
