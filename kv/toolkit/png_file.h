// Saves bitmaps as PNG files with the system's encoder (GDI+), which is loaded on first use. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Writes the bitmap, which must not be selected into a device context, to `path`, replacing an existing file. Returns
// false, and changes no file, when the system has no encoder or the file cannot be written; GetLastError then returns
// the reason (kv/toolkit/error_text.h).
bool SaveBitmapAsPng(HBITMAP bitmap, const wchar_t* path);

}  // namespace kv
