// Helpers for tests of windows and drawing: a parent that records what it is sent, a picture with readable pixels, a
// page with an exact end, and bounded waiting.
#pragma once

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kvtest {

struct SeenMessage {
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};

// A top-level window that records every message and answers through `handler` (or DefWindowProcA when that is empty or
// gives false). Hidden unless `visible`. Destroyed with the object.
class RecordingParent {
 public:
  using Handler = std::function<bool(HWND, UINT, WPARAM, LPARAM, LRESULT*)>;

  explicit RecordingParent(bool visible = false, int width = 640, int height = 480);
  ~RecordingParent();
  RecordingParent(const RecordingParent&) = delete;
  RecordingParent& operator=(const RecordingParent&) = delete;

  operator HWND() const { return window_; }
  std::vector<SeenMessage>& seen() { return seen_; }
  // How many messages of this kind have arrived; pumps what is posted first.
  int CountOf(UINT message);
  void Answer(Handler handler) { handler_ = std::move(handler); }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  HWND window_ = nullptr;
  std::vector<SeenMessage> seen_;
  Handler handler_;
};

// Creates a child control (ANSI class name) of `parent`.
HWND CreateControl(HWND parent, const char* className, const char* text, DWORD style, RECT place, int id);

// A 32-bit top-down picture in memory with a device context; every byte starts as 0xCC.
class TestBitmap {
 public:
  TestBitmap(int width, int height);
  ~TestBitmap();
  TestBitmap(const TestBitmap&) = delete;
  TestBitmap& operator=(const TestBitmap&) = delete;

  HDC dc() const { return dc_; }
  int width() const { return width_; }
  int height() const { return height_; }
  // The colour at a place; 0xCCCCCC where nothing was drawn.
  COLORREF At(int x, int y) const;
  // How many pixels have exactly this colour.
  int CountOf(COLORREF color) const;
  void Fill(std::uint8_t byte);

 private:
  int width_, height_;
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ previous_;
  std::uint32_t* pixels_ = nullptr;
};

// The size of the picture on the clipboard, negative when there is none; its pixels go to `copyTo`.
SIZE ClipboardBitmapSize(HWND owner, const TestBitmap* copyTo = nullptr);

// Where a control lies in its dialog's client area.
RECT PlaceOf(HWND dialog, int id);

// What a screen reader hears of a window: the answers of its IAccessible.
struct AccessibleProperties {
  std::wstring name, value;
  LONG role;
  bool operator==(const AccessibleProperties&) const = default;
};
AccessibleProperties ReadAccessible(HWND window);

// Memory of exactly `size` bytes that ends where the next byte faults; optionally read-only.
class GuardedBytes {
 public:
  explicit GuardedBytes(size_t size);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  void* data() const { return data_; }
  template <class T>
  T* as() const {
    return static_cast<T*>(data_);
  }
  void MakeReadOnly();

 private:
  void* base_;
  size_t pages_;
  void* data_;
};

// Memory that the process has asked the system for, in bytes.
SIZE_T MemoryInUse();

// Dispatches every message that waits.
void PumpMessages();

// Pumps messages until the condition holds; false when it does not within `limit`.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::milliseconds(5000));

}  // namespace kvtest
