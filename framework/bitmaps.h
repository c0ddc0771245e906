// Off-screen pictures of controls: the back buffer that a control renders into and shows, and pictures for the
// clipboard. Any thread, for windows of its own.
//
// In a DPI-aware host: sizes are the pixels that the host sees; nothing depends on the DPI.
#pragma once

#include <windows.h>

namespace kv {

// The window's client size in pixels.
SIZE ClientSize(HWND window);

// A bitmap in the window's own format; null when the size is empty or allocation fails. The caller owns it.
HBITMAP CreateWindowBitmap(HWND window, SIZE size);

// Describes a 32-bit picture whose first row is the top one (0x00RRGGBB pixels, no padding between rows).
BITMAPINFO TopDownBitmapInfo(int width, int height);

// A colour as a pixel of such a picture.
constexpr DWORD PixelOfColor(COLORREF color) {
  return static_cast<DWORD>(GetRValue(color)) << 16 | static_cast<DWORD>(GetGValue(color)) << 8 | GetBValue(color);
}

// Stretches the whole bitmap onto `target` without blending: each pixel shown is a pixel of the bitmap.
void ShowBitmap(HDC target, const RECT& area, HBITMAP bitmap, SIZE bitmapSize);

// The size that a WM_COPY asks for in lParam (width in the low word, height in the high word), each side clamped to
// `minimum`..`maximum` pixels; with lParam 0 it is `ownSize`, unclamped.
SIZE RequestedCopySize(LPARAM lParam, SIZE ownSize, int minimum, int maximum);

// Puts a copy of the bitmap on the clipboard as CF_BITMAP, stretched to this size. FALSE when memory is short or
// another program holds the clipboard.
BOOL CopyBitmapToClipboard(HWND window, HBITMAP bitmap, SIZE bitmapSize, SIZE size);

// Puts the bitmap on the clipboard as CF_BITMAP. It belongs to the clipboard afterwards; if the clipboard rejects it,
// it is deleted and the result is FALSE.
BOOL PutBitmapOnClipboard(HWND window, HBITMAP bitmap);

}  // namespace kv
