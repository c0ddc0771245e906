// Off-screen bitmaps: a control's back buffer; and bitmaps and text for the clipboard. Any thread, for its own windows.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

// Returns the window's client size in pixels.
SIZE ClientSize(HWND window);

// Creates a bitmap in the window's format. Returns null when the size is empty or allocation fails. The caller owns the
// bitmap.
HBITMAP CreateWindowBitmap(HWND window, SIZE size);

// Describes a top-down 32-bit bitmap (pixels 0x00RRGGBB, no padding between rows).
BITMAPINFO TopDownBitmapInfo(int width, int height);

// Returns a color as a pixel of such a bitmap.
constexpr DWORD PixelOfColor(COLORREF color) {
  return static_cast<DWORD>(GetRValue(color)) << 16 | static_cast<DWORD>(GetGValue(color)) << 8 | GetBValue(color);
}

// Stretches the whole bitmap to `area` of `target` without interpolation.
void ShowBitmap(HDC target, const RECT& area, HBITMAP bitmap, SIZE bitmapSize);

// Returns the size that a WM_COPY requests in lParam (width in the low word, height in the high word), each side
// clamped to `minimum`..`maximum` pixels. Returns `ownSize`, not clamped, for lParam 0.
SIZE RequestedCopySize(LPARAM lParam, SIZE ownSize, int minimum, int maximum);

// Puts a copy of the bitmap on the clipboard as CF_BITMAP, stretched to `size`. Returns FALSE when allocation fails or
// another program has the clipboard open.
BOOL CopyBitmapToClipboard(HWND window, HBITMAP bitmap, SIZE bitmapSize, SIZE size);

// Puts the bitmap on the clipboard as CF_BITMAP. The clipboard then owns it. If that fails, the bitmap is deleted and
// the result is FALSE.
BOOL PutBitmapOnClipboard(HWND window, HBITMAP bitmap);

// Puts the text on the clipboard as CF_UNICODETEXT, or adds it (`addIt` not 0) to what `window` has put there. Returns
// FALSE like CopyBitmapToClipboard.
BOOL CopyTextToClipboard(HWND window, const std::wstring& text, BOOL addIt = FALSE);

}  // namespace kv
