// Texts. Pure, any thread.
#pragma once

#include <string>
#include <string_view>

namespace camera {

// printf's rules, cut at 1,000 characters.
#if defined(__GNUC__) && !defined(__clang__)  // which knows other names for the two forms
__attribute__((format(gnu_printf, 1, 2)))
#endif
std::string
Format(const char* format, ...);

// "1 byte", "0 bytes", "2 bytes".
std::string Counted(unsigned long long count, const char* noun);

// UTF-8 text as a string of JSON, in quotes.
std::string JsonString(std::string_view text);

// Between UTF-8 and the system's texts.
std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

// Text with every byte that does not print, and the backslash, as \xHH.
std::string Printable(std::string_view bytes);

}  // namespace camera
