// Conversion between UTF-8 and UTF-16. Malformed text is converted to replacement characters. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace kv {

std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

}  // namespace kv
