// Texts of camtool. Pure, any thread.
#pragma once

#include <string>
#include <string_view>

namespace camtool {

// printf's rules, cut at 1,000 characters.
#if defined(__GNUC__) && !defined(__clang__)  // which knows other names for the two forms
__attribute__((format(gnu_printf, 1, 2)))
#endif
std::string
Format(const char* format, ...);

// "1 byte", "0 bytes", "2 bytes".
std::string Counted(unsigned long long count, const char* noun);

// Text with every byte that does not print, and the backslash, as \xHH.
std::string Printable(std::string_view bytes);

}  // namespace camtool
