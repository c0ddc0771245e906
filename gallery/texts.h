// The gallery's texts: string resources of the module that modules.resources names (a language library, or the gallery
// itself), and the gallery's own English ones where that module lacks a text. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

std::wstring Text(UINT id);

// The text with one or two values put in, as FormatBounded does it; cut at 1,000 characters.
std::wstring TextWith(UINT id, const wchar_t* value, int number = 0);

}  // namespace gallery
