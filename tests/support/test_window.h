// Helpers for tests of windows and drawing: a parent that records its messages, a bitmap with readable pixels, memory
// with a guard page, and waiting with a timeout.
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

// A top-level window that records every message and handles it with `handler` (or DefWindowProcA when that is empty or
// returns false). Hidden unless `visible`. The destructor destroys it.
class RecordingParent {
 public:
  using Handler = std::function<bool(HWND, UINT, WPARAM, LPARAM, LRESULT*)>;

  explicit RecordingParent(bool visible = false, int width = 640, int height = 480);
  ~RecordingParent();
  RecordingParent(const RecordingParent&) = delete;
  RecordingParent& operator=(const RecordingParent&) = delete;

  operator HWND() const { return window_; }
  std::vector<SeenMessage>& seen() { return seen_; }
  // Dispatches posted messages, then returns the number of messages of this kind received so far.
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

// A 32-bit top-down bitmap in memory with a device context; every byte is initially 0xCC.
class TestBitmap {
 public:
  TestBitmap(int width, int height);
  ~TestBitmap();
  TestBitmap(const TestBitmap&) = delete;
  TestBitmap& operator=(const TestBitmap&) = delete;

  HDC dc() const { return dc_; }
  int width() const { return width_; }
  int height() const { return height_; }
  // The color of a pixel; 0xCCCCCC where nothing was drawn.
  COLORREF At(int x, int y) const;
  // How many pixels have exactly this color.
  int CountOf(COLORREF color) const;
  void Fill(std::uint8_t byte);
  // The number of pixels for which the predicate, called with color and position, is true.
  template <class Test>
  int CountWhere(Test test) const {
    int count = 0;
    for (int i = 0; i < width_ * height_; ++i) {
      const int x = i % width_, y = i / width_;
      count += test(At(x, y), x, y);
    }
    return count;
  }
  int DifferencesFrom(const TestBitmap& other) const {
    return CountWhere([&](COLORREF color, int x, int y) { return color != other.At(x, y); });
  }

 private:
  int width_, height_;
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ previous_;
  std::uint32_t* pixels_ = nullptr;
};

// The size of the bitmap on the clipboard, negative when there is none; copies its pixels to `copyTo`.
SIZE ClipboardBitmapSize(HWND owner, const TestBitmap* copyTo = nullptr);

// The text on the clipboard.
std::wstring ClipboardText(HWND owner);

// A control's rectangle in its dialog's client area.
RECT PlaceOf(HWND dialog, int id);

// The properties of a window's IAccessible, as a screen reader gets them.
struct AccessibleProperties {
  std::wstring name, value;
  LONG role;
  bool operator==(const AccessibleProperties&) const = default;
};
AccessibleProperties ReadAccessible(HWND window);

// Memory of exactly `size` bytes in front of an inaccessible page; optionally read-only.
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

// Committed memory of the process, in bytes.
SIZE_T MemoryInUse();

// Makes a key appear as held to this thread, and all others as released; 0: none is held.
void HoldKey(int key);

// Dispatches all queued messages.
void PumpMessages();

// Dispatches messages until the condition is true; false if it is not within `limit`.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::milliseconds(5000));

}  // namespace kvtest
