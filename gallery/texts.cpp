#include "gallery/texts.h"
#include <string>

#include "framework/bounded_format.h"
#include "framework/modules.h"

namespace gallery {

namespace {

std::wstring Load(HINSTANCE module, UINT id) {
  // With a size of 0 the call gives the address of the text itself, which has no terminator.
  const wchar_t* text = nullptr;
  const int length = LoadStringW(module, id, reinterpret_cast<LPWSTR>(&text), 0);
  return length > 0 ? std::wstring(text, length) : std::wstring();
}

}  // namespace

std::wstring Text(UINT id) {
  std::wstring text = Load(kv::modules.resources, id);
  return text.empty() ? Load(kv::modules.application, id) : text;
}

std::wstring TextWith(UINT id, const wchar_t* value, int number) {
  wchar_t text[1000];
  kv::FormatBounded(text, sizeof(text), Text(id).c_str(), value, number);
  return text;
}

}  // namespace gallery
