#include "gallery/texts.h"
#include <string>

#include "framework/modules.h"
#include "gallery/languages.h"

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

int ShowMessage(HWND owner, const std::wstring& text, UINT captionId, UINT flags) {
  if (IsRightToLeft()) flags |= MB_RTLREADING | MB_RIGHT;
  return MessageBoxW(owner, text.c_str(), Text(captionId).c_str(), flags);
}

}  // namespace gallery
