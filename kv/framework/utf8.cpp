#include "kv/framework/utf8.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace kv {

std::wstring Wide(std::string_view text) {
  const int bytes = static_cast<int>(text.size());
  std::wstring wide(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string Narrow(std::wstring_view text) {
  const int characters = static_cast<int>(text.size());
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), characters, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), characters, narrow.data(), bytes, nullptr, nullptr);
  return narrow;
}

}  // namespace kv
