#include "framework/control_class.h"

namespace kv {

BOOL RegisterControlClass(HINSTANCE instance, const char* name, WNDPROC procedure, BOOL registerIt) {
  if (!registerIt) {
    UnregisterClassA(name, instance);
    return TRUE;
  }
  const WNDCLASSEXA windowClass{
      .cbSize = sizeof(WNDCLASSEXA),
      .style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS | CS_GLOBALCLASS,
      .lpfnWndProc = procedure,
      .cbClsExtra = 0,
      .cbWndExtra = 0,
      .hInstance = instance,
      .hIcon = nullptr,
      .hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)),
      .hbrBackground = static_cast<HBRUSH>(GetStockObject(NULL_BRUSH)),
      .lpszMenuName = nullptr,
      .lpszClassName = name,
      .hIconSm = nullptr,
  };
  return RegisterClassExA(&windowClass) != 0;
}

void PostNotification(HWND control, WORD code) {
  const WORD id = LOWORD(GetWindowLongA(control, GWL_ID));
  PostMessageA(GetParent(control), WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(control));
}

void RepaintNow(HWND window) {
  InvalidateRect(window, nullptr, TRUE);
  UpdateWindow(window);
}

}  // namespace kv
