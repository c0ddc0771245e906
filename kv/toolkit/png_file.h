// Saves bitmaps as PNG files with the system's encoder (GDI+), which is loaded on first use. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Writes the bitmap, which must not be selected into a device context, to `path`, replacing an existing file. Returns 0
// when the system has no encoder, or the file cannot be created or written completely; then no file is created, and an
// existing one is unchanged.
BOOL SaveBitmapAsPng(HBITMAP bitmap, const wchar_t* path);

}  // namespace kv
