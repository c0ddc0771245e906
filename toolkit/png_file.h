// A bitmap as a PNG file, written by the system's own encoder (GDI+), which is loaded when it is first needed. Main
// thread only.
#pragma once

#include <windows.h>

namespace kv {

// Writes the bitmap, which is selected into no device context, to `path`, replacing a file that is there. Returns 0,
// with no file left behind and one that was there unchanged, when the system has no encoder, or the file cannot be
// created or written whole.
BOOL SaveBitmapAsPng(HBITMAP bitmap, const wchar_t* path);

}  // namespace kv
