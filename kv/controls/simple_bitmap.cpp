#include "kv/controls/simple_bitmap.h"

#include <oleacc.h>
#include <shellapi.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"

namespace kv {

// The control's only state is the bitmap, whose handle is in the window's user data.

namespace {

constexpr int kNameCharacters = 256;
constexpr int kMinCopySize = 16, kMaxCopySize = 5120;
constexpr COLORREF kTransparentColor = RGB(255, 0, 255);

HBITMAP StoredBitmap(HWND window) {
  return reinterpret_cast<HBITMAP>(GetWindowLongA(window, GWL_USERDATA));
}

void StoreBitmap(HWND window, HBITMAP bitmap) {
  const OwnedBitmap former(reinterpret_cast<HBITMAP>(SetWindowLongA(window, GWL_USERDATA, 0)));
  SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(bitmap));
}

DWORD StyleOf(HWND window) {
  return static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
}

SIZE BitmapSize(HBITMAP bitmap) {
  BITMAP shape{};
  GetObjectA(bitmap, sizeof(shape), &shape);
  return {shape.bmWidth, shape.bmHeight};
}

HBITMAP LoadNamedBitmap(HINSTANCE instance, const char* name) {
  const unsigned long number = std::strtoul(name, nullptr, 0);
  if (number == 0) return LoadBitmapA(instance, name);
  // Resource ids have 16 bits: a larger number is invalid; do not use its low word.
  return number <= 0xFFFF ? LoadBitmapA(instance, MAKEINTRESOURCEA(number)) : nullptr;
}

HBITMAP LoadFor(HWND window, const char* name) {
  HBITMAP bitmap = LoadNamedBitmap(reinterpret_cast<HINSTANCE>(GetWindowLongA(window, GWL_HINSTANCE)), name);
  if (bitmap && (StyleOf(window) & kBitmapTransparent)) {
    const WindowDc dc(window);
    ReplaceBitmapColor(dc, bitmap, kTransparentColor, GetNearestColor(dc, GetSysColor(COLOR_BTNFACE)));
  }
  return bitmap;
}

}  // namespace

// ---- Layout

SIZE SimpleBitmapExtent(SIZE client, DWORD style) {
  SIZE extent = client;
  if (style & kBitmapSquareByWidth) extent.cx = std::min(extent.cx, extent.cy);
  if (style & kBitmapSquareByHeight) extent.cy = std::min(extent.cx, extent.cy);
  return extent;
}

// ---- Drawing

void DrawSimpleBitmap(HDC dc, SIZE client, DWORD style, HBITMAP bitmap) {
  if (!bitmap) {
    FillSolid(dc, {0, 0, client.cx, client.cy}, GetSysColor(COLOR_BTNFACE));
    return;
  }
  const SIZE extent = SimpleBitmapExtent(client, style);
  ShowBitmap(dc, {0, 0, extent.cx, extent.cy}, bitmap, BitmapSize(bitmap));
}

// ---- Message handlers

namespace {

LRESULT OnCreate(HWND window) {
  char name[kNameCharacters + 1] = "";
  GetWindowTextA(window, name, ARRAYSIZE(name));
  StoreBitmap(window, LoadFor(window, name));
  DragAcceptFiles(window, TRUE);
  return 0;
}

LRESULT OnSetText(HWND window, LPARAM lParam) {
  const auto* text = reinterpret_cast<const char*>(lParam);
  if (IsBadStringPtrA(text, kNameCharacters)) return 0;
  char name[kNameCharacters + 1] = "";
  std::strncpy(name, text, kNameCharacters);
  StoreBitmap(window, LoadFor(window, name));
  RepaintNow(window);
  return 1;
}

LRESULT OnPaint(HWND window) {
  const PaintScope paint(window);
  DrawSimpleBitmap(paint.dc(), ClientSize(window), StyleOf(window), StoredBitmap(window));
  return 0;
}

LRESULT OnCopy(HWND window, LPARAM lParam) {
  HBITMAP held = StoredBitmap(window);
  if (!held) return 1;
  const SIZE ownSize = BitmapSize(held);
  const SIZE size = RequestedCopySize(lParam, ownSize, kMinCopySize, kMaxCopySize);
  CopyBitmapToClipboard(window, held, ownSize, size);
  return 0;
}

// The control behind it may have destroyed this one; then no notification is posted.
void Notify(HWND window, WORD code) {
  if (IsWindow(window)) PostNotification(window, code);
}

LRESULT OnLeftButtonDown(HWND window, WPARAM wParam, LPARAM lParam) {
  const LRESULT result = ForwardMouseMessage(window, WM_LBUTTONDOWN, wParam, lParam);
  if (result) Notify(window, kBitmapLeftClick);
  return result;
}

LRESULT OnDoubleClick(HWND window, WPARAM wParam, LPARAM lParam) {
  ForwardMouseMessage(window, WM_LBUTTONDBLCLK, wParam, lParam);
  SendMessageA(window, WM_COPY, 0, 0);
  Notify(window, kBitmapDoubleClick);
  return 0;
}

LRESULT OnOtherButtonDown(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  ForwardMouseMessage(window, message, wParam, lParam);
  Notify(window, message == WM_RBUTTONDOWN ? kBitmapRightClick : kBitmapMiddleClick);
  return 0;
}

LRESULT OnPassThrough(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  ForwardMouseMessage(window, message, wParam, lParam);
  return 0;
}

LRESULT OnDestroy(HWND window) {
  StoreBitmap(window, nullptr);
  return 0;
}

// A resource number is not a useful accessible name.
AccessibleText Describe(HWND window) {
  const std::wstring name = WindowText(window);
  return {std::wcstoul(name.c_str(), nullptr, 0) ? std::wstring() : name, {}};
}

LRESULT CALLBACK SimpleBitmapProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE: return OnCreate(window);
    case WM_DESTROY: return OnDestroy(window);
    case WM_SETTEXT: return OnSetText(window, lParam);
    case WM_PAINT: return OnPaint(window);
    case WM_GETDLGCODE: return DLGC_STATIC;
    case WM_COPY: return OnCopy(window, lParam);
    case WM_DROPFILES: return SendMessageA(GetParent(window), WM_DROPFILES, wParam, lParam);
    case WM_GETOBJECT: return HandleGetObject(window, wParam, lParam, ROLE_SYSTEM_GRAPHIC, Describe);
    case WM_LBUTTONDOWN: return OnLeftButtonDown(window, wParam, lParam);
    case WM_LBUTTONDBLCLK: return OnDoubleClick(window, wParam, lParam);
    case WM_RBUTTONDOWN:
    case WM_MBUTTONDOWN: return OnOtherButtonDown(window, message, wParam, lParam);
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
    case WM_MBUTTONUP:
    case WM_COMMAND: return OnPassThrough(window, message, wParam, lParam);
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterSimpleBitmapClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kSimpleBitmapClass, SimpleBitmapProcedure, registerIt);
}

}  // namespace kv
