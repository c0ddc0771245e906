// Text functions. Pure, any thread.
#pragma once

#include <string>
#include <string_view>

#include "kv/framework/utf8.h"

namespace camera {

// Formats by printf's rules, truncated to 1,000 characters.
#if defined(__GNUC__) && !defined(__clang__)  // which knows other names for the two forms
__attribute__((format(gnu_printf, 1, 2)))
#endif
std::string
Format(const char* format, ...);

// "1 byte", "0 bytes", "2 bytes".
std::string Counted(unsigned long long count, const char* noun);

// Converts UTF-8 text to a quoted JSON string.
std::string JsonString(std::string_view text);

using kv::Narrow;
using kv::Wide;

// Replaces each byte that is not printable, and the backslash, by \xHH.
std::string Printable(std::string_view bytes);

}  // namespace camera
