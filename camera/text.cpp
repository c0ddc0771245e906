#include "camera/text.h"

#include <cstdarg>
#include <cstdio>
#include <string>
#include <string_view>

namespace camera {

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

std::string JsonString(std::string_view text) {
  std::string quoted = "\"";
  for (const char byte : text) {
    const bool isSpecial = byte == '"' || byte == '\\' || static_cast<unsigned char>(byte) < ' ';
    quoted += isSpecial ? Format("\\u%04x", static_cast<unsigned>(byte)) : std::string(1, byte);
  }
  return quoted + "\"";
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

}  // namespace camera
