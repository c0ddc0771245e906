#include "tools/uidriver/driver.h"

#include <commctrl.h>
#include <array>
#include <string>

#include "app/resource_ids.h"

namespace uidriver {

namespace {

// Memory in another process, for messages with an address that Windows does not marshal.
class RemoteRect {
 public:
  explicit RemoteRect(HWND window) {
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    process_ = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, processId);
    address_ = VirtualAllocEx(process_, nullptr, sizeof(RECT), MEM_COMMIT, PAGE_READWRITE);
  }
  ~RemoteRect() {
    VirtualFreeEx(process_, address_, 0, MEM_RELEASE);
    CloseHandle(process_);
  }
  RemoteRect(const RemoteRect&) = delete;
  RemoteRect& operator=(const RemoteRect&) = delete;

  LPARAM address() const { return reinterpret_cast<LPARAM>(address_); }
  RECT Read() const {
    RECT rect{};
    ReadProcessMemory(process_, address_, &rect, sizeof(rect), nullptr);
    return rect;
  }

 private:
  HANDLE process_;
  void* address_;
};

}  // namespace

HWND WaitForTarnwick(DWORD timeoutMs) {
  for (DWORD start = GetTickCount();;) {
    HWND window = FindWindowA("kvDialog", "Tarnwick");
    if (window && IsWindowVisible(window)) return window;
    if (GetTickCount() - start > timeoutMs) return nullptr;
    Sleep(10);
  }
}

POINT ToolbarButtonCenter(HWND window, int command) {
  HWND toolbar = GetDlgItem(window, IDC_TOOLBAR);
  const LRESULT index = SendMessageA(toolbar, TB_COMMANDTOINDEX, command, 0);
  if (index < 0) return {-1, -1};
  const RemoteRect remote(toolbar);
  SendMessageA(toolbar, TB_GETITEMRECT, index, remote.address());
  const RECT place = remote.Read();
  POINT center{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
  ClientToScreen(toolbar, &center);
  return center;
}

bool IsToolbarButtonChecked(HWND window, int command) {
  return SendDlgItemMessageA(window, IDC_TOOLBAR, TB_ISBUTTONCHECKED, command, 0) != 0;
}

bool ClickAt(HWND control, POINT screen) {
  SetForegroundWindow(GetAncestor(control, GA_ROOT));
  // A window that has just appeared may not yet receive the mouse, and a desktop that has just started may move the
  // mouse: press only when the mouse is over the control.
  bool isThere = false;
  for (int tries = 0; tries < 100 && !isThere; ++tries) {
    SetCursorPos(screen.x, screen.y);
    Sleep(20);
    POINT mouse{};
    GetCursorPos(&mouse);
    isThere = mouse.x == screen.x && mouse.y == screen.y && WindowFromPoint(screen) == control;
  }
  for (const DWORD flags : {MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP}) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    SendInput(1, &input, sizeof(input));
    Sleep(20);
  }
  return isThere;
}

std::string TextOf(HWND window, int id) {
  char text[256] = "";
  // GetWindowText does not query controls of another process.
  SendDlgItemMessageA(window, id, WM_GETTEXT, sizeof(text), reinterpret_cast<LPARAM>(text));
  return text;
}

std::array<std::string, 5> StatusTexts(HWND window) {
  return {TextOf(window, IDC_PORT), TextOf(window, IDC_POINT_1), TextOf(window, IDC_POINT_2),
          TextOf(window, IDC_POINT_3), TextOf(window, IDC_POINT_4)};
}

COLORREF PixelOf(HWND control, int x, int y) {
  POINT place{x, y};
  ClientToScreen(control, &place);
  HDC screen = GetDC(nullptr);
  const COLORREF color = GetPixel(screen, place.x, place.y);
  ReleaseDC(nullptr, screen);
  return color;
}

}  // namespace uidriver
