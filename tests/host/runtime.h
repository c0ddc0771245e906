// For the build with sanitizers only: the non-standard functions of the Windows runtime's <locale.h>, <stdio.h> and
// <wchar.h> that this tree uses. Included before every file of that build; programs do not use it.
#pragma once

#include <locale.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <windows.h>
#undef small  // a macro of Wine's headers

using _locale_t = locale_t;

_locale_t _create_locale(int category, const char* name);
int _vsnprintf_l(char* buffer, size_t count, const char* format, _locale_t locale, va_list arguments);
int _vsnwprintf_l(wchar_t* buffer, size_t count, const wchar_t* format, _locale_t locale, va_list arguments);
inline constexpr auto _snprintf = snprintf;
