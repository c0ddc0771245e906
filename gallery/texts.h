// The gallery's texts: string resources of the module that modules.resources names (a language library, or the gallery
// itself), and the gallery's own English ones where that module lacks a text. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

std::wstring Text(UINT id);

}  // namespace gallery
