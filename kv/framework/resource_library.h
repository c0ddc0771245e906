// Tests whether a file can be loaded safely for its resources: the Windows loader and the resource functions trust the
// file's contents and may crash on a damaged one. For this folder only.
#pragma once

#include <windows.h>

namespace kv {

// Returns true for a 32-bit library whose headers, sections and directories lie within the file, whose resource
// directory is a tree of types, names and languages with all entries, texts and rows of bitmaps (uncompressed ones
// only) within the file, and that either has no code or an entry point in a code section. The code itself is not
// examined.
bool IsResourceLibrary(const wchar_t* path);

}  // namespace kv
