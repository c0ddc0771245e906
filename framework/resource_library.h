// Whether a file can be loaded for its resources without harm: Windows' loader, and whoever reads resources, follow
// what the file says and do not survive every file. For the files of this folder only.
#pragma once

#include <windows.h>

namespace kv {

// True for a 32-bit library whose headers, sections and directories lie within it, whose resource directory is a tree
// of types, names and languages with all entries and texts within it, and that is either without code or begins in a
// section of code. What the code of a library with code does is not looked at.
bool IsResourceLibrary(const wchar_t* path);

}  // namespace kv
