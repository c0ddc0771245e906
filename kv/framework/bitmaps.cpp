#include "kv/framework/bitmaps.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

#include "kv/framework/guards.h"

namespace kv {

SIZE ClientSize(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  return {client.right, client.bottom};
}

HBITMAP CreateWindowBitmap(HWND window, SIZE size) {
  // For an empty size GDI would return a monochrome 1 x 1 bitmap.
  if (size.cx <= 0 || size.cy <= 0) return nullptr;
  const WindowDc dc(window);
  return CreateCompatibleBitmap(dc, size.cx, size.cy);
}

BITMAPINFO TopDownBitmapInfo(int width, int height) {
  return {.bmiHeader = {.biSize = sizeof(BITMAPINFOHEADER),
                        .biWidth = width,
                        .biHeight = -height,
                        .biPlanes = 1,
                        .biBitCount = 32,
                        .biCompression = BI_RGB}};
}

void ShowBitmap(HDC target, const RECT& area, HBITMAP bitmap, SIZE bitmapSize) {
  const MemoryDc source(target);
  const SelectedObject selected(source, bitmap);
  SetStretchBltMode(target, COLORONCOLOR);
  StretchBlt(target, area.left, area.top, area.right - area.left, area.bottom - area.top, source, 0, 0, bitmapSize.cx,
             bitmapSize.cy, SRCCOPY);
}

SIZE RequestedCopySize(LPARAM lParam, SIZE ownSize, int minimum, int maximum) {
  if (lParam == 0) return ownSize;
  return {std::clamp<int>(LOWORD(lParam), minimum, maximum), std::clamp<int>(HIWORD(lParam), minimum, maximum)};
}

BOOL CopyBitmapToClipboard(HWND window, HBITMAP bitmap, SIZE bitmapSize, SIZE size) {
  OwnedBitmap copy(CreateWindowBitmap(window, size));
  if (!copy) return FALSE;
  {
    const MemoryDc dc(nullptr);
    const SelectedObject selected(dc, copy);
    ShowBitmap(dc, {0, 0, size.cx, size.cy}, bitmap, bitmapSize);
  }
  return PutBitmapOnClipboard(window, copy.Release());
}

BOOL PutBitmapOnClipboard(HWND window, HBITMAP bitmap) {
  OwnedBitmap owned(bitmap);
  if (!bitmap || !OpenClipboard(window)) return FALSE;
  EmptyClipboard();
  const BOOL taken = SetClipboardData(CF_BITMAP, bitmap) != nullptr;
  if (taken) owned.Release();
  CloseClipboard();
  return taken;
}

namespace {

bool OfferText(HWND window, HGLOBAL memory, BOOL addIt) {
  if (!OpenClipboard(window)) return false;
  if (!addIt) EmptyClipboard();
  const bool taken = SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
  CloseClipboard();
  return taken;
}

}  // namespace

BOOL CopyTextToClipboard(HWND window, const std::wstring& text, BOOL addIt) {
  const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (!memory) return FALSE;
  void* target = GlobalLock(memory);
  if (target) {
    std::memcpy(target, text.c_str(), bytes);
    GlobalUnlock(memory);
  }
  if (target && OfferText(window, memory, addIt)) return TRUE;
  GlobalFree(memory);
  return FALSE;
}

}  // namespace kv
