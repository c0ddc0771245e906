// Scope guards for resources: device contexts, selected and owned GDI objects, registry keys.
//
// Objects are destroyed in reverse order of declaration, so declare the owner of a GDI object before the guard that
// selects it: the object is then deselected before it is deleted. A guard belongs to one scope on one thread and cannot
// be copied.
#pragma once

#include <windows.h>

#include <utility>

namespace kv {

// BeginPaint to EndPaint. Validates the update region even if nothing is drawn.
class PaintScope {
 public:
  explicit PaintScope(HWND window) : window_(window), dc_(BeginPaint(window, &paint_)) {}
  ~PaintScope() { EndPaint(window_, &paint_); }
  PaintScope(const PaintScope&) = delete;
  PaintScope& operator=(const PaintScope&) = delete;

  HDC dc() const { return dc_; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
  HDC dc_;
};

// GetDC to ReleaseDC. A null window means the screen.
class WindowDc {
 public:
  explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
  ~WindowDc() {
    if (dc_) ReleaseDC(window_, dc_);
  }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;

  operator HDC() const { return dc_; }

 private:
  HWND window_;
  HDC dc_;
};

// A memory device context that is compatible with another one.
class MemoryDc {
 public:
  explicit MemoryDc(HDC compatibleWith) : dc_(CreateCompatibleDC(compatibleWith)) {}
  ~MemoryDc() {
    if (dc_) DeleteDC(dc_);
  }
  MemoryDc(const MemoryDc&) = delete;
  MemoryDc& operator=(const MemoryDc&) = delete;

  operator HDC() const { return dc_; }

 private:
  HDC dc_;
};

// Selects an object for a scope and restores the previous one. Does not own the object.
class SelectedObject {
 public:
  SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), previous_(SelectObject(dc, object)) {}
  ~SelectedObject() {
    if (previous_ && previous_ != HGDI_ERROR) SelectObject(dc_, previous_);
  }
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;

 private:
  HDC dc_;
  HGDIOBJ previous_;
};

// Owns a GDI object and deletes it unless ownership is released (to the clipboard, to a window's state).
template <class Handle>
class OwnedGdiObject {
 public:
  OwnedGdiObject() = default;
  explicit OwnedGdiObject(Handle object) : object_(object) {}
  ~OwnedGdiObject() { Reset(); }
  OwnedGdiObject(OwnedGdiObject&& other) noexcept : object_(other.Release()) {}
  OwnedGdiObject& operator=(OwnedGdiObject&& other) noexcept {
    if (this != &other) Reset(other.Release());
    return *this;
  }

  operator Handle() const { return object_; }
  Handle Release() { return std::exchange(object_, nullptr); }
  void Reset(Handle object = nullptr) {
    if (object_) DeleteObject(object_);
    object_ = object;
  }

 private:
  Handle object_ = nullptr;
};

using OwnedBitmap = OwnedGdiObject<HBITMAP>;
using OwnedBrush = OwnedGdiObject<HBRUSH>;
using OwnedFont = OwnedGdiObject<HFONT>;
using OwnedPen = OwnedGdiObject<HPEN>;
using OwnedRegion = OwnedGdiObject<HRGN>;

// A key below HKEY_CURRENT_USER with full access; null when it could not be opened or created.
class RegistryKey {
 public:
  static RegistryKey Open(const char* path) {
    HKEY key = nullptr;
    RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_ALL_ACCESS, &key);
    return RegistryKey(key);
  }
  static RegistryKey Open(const wchar_t* path) {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_ALL_ACCESS, &key);
    return RegistryKey(key);
  }
  static RegistryKey Create(const char* path) {
    HKEY key = nullptr;
    char noClass[] = "";
    RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, noClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                    nullptr);
    return RegistryKey(key);
  }
  static RegistryKey Create(const wchar_t* path) {
    HKEY key = nullptr;
    wchar_t noClass[] = L"";
    RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, noClass, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                    nullptr);
    return RegistryKey(key);
  }
  ~RegistryKey() {
    if (key_) RegCloseKey(key_);
  }
  RegistryKey(RegistryKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
  RegistryKey& operator=(RegistryKey&&) = delete;

  operator HKEY() const { return key_; }

 private:
  explicit RegistryKey(HKEY key) : key_(key) {}
  HKEY key_;
};

}  // namespace kv
