#include "camtool/text.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <string_view>

namespace camtool {

std::string Format(const char* format, ...) {
  char text[1001];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof(text), format, arguments);
  va_end(arguments);
  return text;
}

std::string Counted(unsigned long long count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string Printable(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    const bool prints = code >= ' ' && code < 0x7F && code != '\\';
    text += prints ? std::string(1, byte) : Format("\\x%02X", code);
  }
  return text;
}

}  // namespace camtool
