// The gallery's texts: string resources of the module that modules.resources names (a language library, or the gallery
// itself), and the gallery's own English ones where that module lacks a text. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "framework/bounded_format.h"

namespace gallery {

std::wstring Text(UINT id);

// The text with values put in, as FormatBounded does it; cut at 1,000 characters.
template <class... Values>
std::wstring TextWith(UINT id, Values... values) {
  wchar_t text[1000];
  kv::FormatBounded(text, sizeof(text), Text(id).c_str(), values...);
  return text;
}

// A message box in the direction of the language; returns what MessageBoxW returns.
int ShowMessage(HWND owner, const std::wstring& text, UINT captionId, UINT flags);

}  // namespace gallery
