// Helpers of the toolkit's typed functions: find a control of a dialog, store text in structs. Private to the toolkit.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "kv/framework/control_class.h"

namespace kv {

// The control with that id and class, or null.
inline HWND ControlOfClass(HWND dialog, int id, const char* className) {
  HWND control = GetDlgItem(dialog, id);
  return IsOfClass(control, className) ? control : nullptr;
}

// Sets kInstrumentFitted if the control is a display instrument: without it, numbers lose digits.
void FitInstrument(HWND control);

// Stores the text as UTF-8, truncated to whole characters, and fills the rest of the field with zeros.
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
