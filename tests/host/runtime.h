// For the build with sanitizers only: what the Windows run-time's <locale.h>, <stdio.h> and <wchar.h> declare beyond
// the standard and this tree uses. Read before every file of that build; programs never see it.
#pragma once

#include <locale.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <windows.h>
#undef small  // which Wine's headers make a word of their own

using _locale_t = locale_t;

_locale_t _create_locale(int category, const char* name);
int _vsnprintf_l(char* buffer, size_t count, const char* format, _locale_t locale, va_list arguments);
int _vsnwprintf_l(wchar_t* buffer, size_t count, const wchar_t* format, _locale_t locale, va_list arguments);
inline constexpr auto _snprintf = snprintf;
