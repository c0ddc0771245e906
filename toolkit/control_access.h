// How the toolkit's typed calls find a control of a dialog and write the texts of its records. Private to the toolkit.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstring>

namespace kv {

// Null when the dialog has no control of that id and class.
inline HWND ControlOfClass(HWND dialog, int id, const char* className) {
  HWND control = GetDlgItem(dialog, id);
  char name[64] = "";
  GetClassNameA(control, name, ARRAYSIZE(name));
  return lstrcmpiA(name, className) == 0 ? control : nullptr;
}

// As much of the text as fits whole, in UTF-8.
template <size_t size>
void StoreText(char (&field)[size], const wchar_t* text) {
  int characters = std::min(lstrlenW(text), static_cast<int>(size) - 1), bytes = 0;
  const auto isHalf = [&] { return characters > 0 && IS_HIGH_SURROGATE(text[characters - 1]); };
  const auto needed = [&] { return WideCharToMultiByte(CP_UTF8, 0, text, characters, nullptr, 0, nullptr, nullptr); };
  while (characters > 0 && (isHalf() || needed() >= static_cast<int>(size))) --characters;
  if (characters > 0) {
    bytes = WideCharToMultiByte(CP_UTF8, 0, text, characters, field, static_cast<int>(size), nullptr, nullptr);
  }
  std::memset(field + bytes, 0, size - static_cast<size_t>(bytes));
}

}  // namespace kv
