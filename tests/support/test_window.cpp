#include "tests/support/test_window.h"

#include <oleacc.h>
#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>

namespace kvtest {

namespace {
constexpr char kParentClass[] = "kvTestParent";
}  // namespace

RecordingParent::RecordingParent(bool visible, int width, int height) {
  HINSTANCE instance = GetModuleHandleA(nullptr);
  WNDCLASSEXA windowClass{};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.lpfnWndProc = Procedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = kParentClass;
  RegisterClassExA(&windowClass);  // fails harmlessly after the first parent
  window_ = CreateWindowExA(0, kParentClass, "test parent", WS_POPUP | WS_CLIPCHILDREN, 0, 0, width, height, nullptr,
                            nullptr, instance, this);
  if (visible) {
    ShowWindow(window_, SW_SHOW);
    SetForegroundWindow(window_);
  }
}

RecordingParent::~RecordingParent() {
  DestroyWindow(window_);
}

int RecordingParent::CountOf(UINT message) {
  PumpMessages();
  return static_cast<int>(
      std::count_if(seen_.begin(), seen_.end(), [&](const SeenMessage& seen) { return seen.message == message; }));
}

LRESULT CALLBACK RecordingParent::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    SetWindowLongA(window, GWL_USERDATA,
                   reinterpret_cast<LONG>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
  }
  auto* self = reinterpret_cast<RecordingParent*>(GetWindowLongA(window, GWL_USERDATA));
  if (self) {
    self->seen_.push_back({message, wParam, lParam});
    LRESULT result = 0;
    if (self->handler_ && self->handler_(window, message, wParam, lParam, &result)) return result;
  }
  return DefWindowProcA(window, message, wParam, lParam);
}

HWND CreateControl(HWND parent, const char* className, const char* text, DWORD style, RECT place, int id) {
  return CreateWindowExA(0, className, text, WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                         place.right - place.left, place.bottom - place.top, parent, reinterpret_cast<HMENU>(id),
                         GetModuleHandleA(nullptr), nullptr);
}

TestBitmap::TestBitmap(int width, int height) : width_(width), height_(height), dc_(CreateCompatibleDC(nullptr)) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  pixels_ = static_cast<std::uint32_t*>(bits);
  previous_ = SelectObject(dc_, bitmap_);
  Fill(0xCC);
}

TestBitmap::~TestBitmap() {
  SelectObject(dc_, previous_);
  DeleteObject(bitmap_);
  DeleteDC(dc_);
}

COLORREF TestBitmap::At(int x, int y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return CLR_INVALID;
  GdiFlush();
  const std::uint32_t pixel = pixels_[static_cast<size_t>(y) * width_ + x];
  return RGB((pixel >> 16) & 0xFF, (pixel >> 8) & 0xFF, pixel & 0xFF);
}

int TestBitmap::CountOf(COLORREF color) const {
  int count = 0;
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) count += At(x, y) == color;
  }
  return count;
}

void TestBitmap::Fill(std::uint8_t byte) {
  GdiFlush();
  std::memset(pixels_, byte, static_cast<size_t>(width_) * height_ * sizeof(*pixels_));
}

SIZE ClipboardBitmapSize(HWND owner, const TestBitmap* copyTo) {
  if (!OpenClipboard(owner)) return {-1, -1};
  BITMAP shape{.bmWidth = -1, .bmHeight = -1};
  HANDLE bitmap = GetClipboardData(CF_BITMAP);
  GetObjectA(bitmap, sizeof(shape), &shape);
  if (copyTo) {
    HDC source = CreateCompatibleDC(nullptr);
    HGDIOBJ previous = SelectObject(source, bitmap);
    BitBlt(copyTo->dc(), 0, 0, copyTo->width(), copyTo->height(), source, 0, 0, SRCCOPY);
    SelectObject(source, previous);
    DeleteDC(source);
  }
  CloseClipboard();
  return {shape.bmWidth, shape.bmHeight};
}

std::wstring ClipboardText(HWND owner) {
  std::wstring text;
  if (!OpenClipboard(owner)) return text;
  if (HANDLE data = GetClipboardData(CF_UNICODETEXT)) {
    text = static_cast<const wchar_t*>(GlobalLock(data));
    GlobalUnlock(data);
  }
  CloseClipboard();
  return text;
}

RECT PlaceOf(HWND dialog, int id) {
  RECT place{};
  GetWindowRect(GetDlgItem(dialog, id), &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

AccessibleProperties ReadAccessible(HWND window) {
  void* object = nullptr;
  AccessibleProperties heard{};
  if (AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible), &object) != S_OK) {
    return heard;
  }
  auto* control = static_cast<IAccessible*>(object);
  VARIANT self{}, role{};
  self.vt = VT_I4;
  BSTR text = nullptr;
  if (control->get_accName(self, &text) == S_OK) heard.name = text;
  SysFreeString(text);
  text = nullptr;
  if (control->get_accValue(self, &text) == S_OK) heard.value = text;
  SysFreeString(text);
  if (control->get_accRole(self, &role) == S_OK) heard.role = role.lVal;
  control->Release();
  return heard;
}

SIZE_T MemoryInUse() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return counters.PagefileUsage;
}

void PumpMessages() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
}

void HoldKey(int key) {
  BYTE keys[256] = {};
  keys[key] = key ? 0x80 : 0;
  SetKeyboardState(keys);
}

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  for (;;) {
    PumpMessages();
    if (condition()) return true;
    if (std::chrono::steady_clock::now() >= end) return false;
    Sleep(1);
  }
}

}  // namespace kvtest
