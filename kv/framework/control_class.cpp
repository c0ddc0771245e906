#include "kv/framework/control_class.h"

#include <algorithm>
#include <cstring>
#include <vector>

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

void RepaintWithoutChildren(HWND window, HRGN part) {
  RedrawWindow(window, nullptr, part, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_NOCHILDREN);
}

namespace {

// The last entry whose text a name contains decides.
constexpr struct {
  const char* text;
  ControlKind kind;
} kClassTexts[] = {
    {"STATIC", kControlStatic},
    {"BUTTON", kControlButton},
    {"EDIT", kControlEdit},
    {"COMBOBOX", kControlComboBox},
    {"LISTBOX", kControlListBox},
    {"SYSTABCONTROL32", kControlTab},
    {"KVSIMPLEBITMAP", kControlSimpleBitmap},
    {"SYSTREEVIEW32", kControlTreeView},
};

}  // namespace

ControlKind ClassifyClassName(const char* className) {
  if (IsBadStringPtrA(className, kClassNameCharacters - 1)) return kControlOther;
  char name[kClassNameCharacters];
  lstrcpynA(name, className, kClassNameCharacters);
  CharUpperA(name);
  ControlKind kind = kControlOther;
  for (const auto& known : kClassTexts) {
    if (std::strstr(name, known.text)) kind = known.kind;
  }
  return kind;
}

ControlKind ClassifyControl(HWND window) {
  char name[kClassNameCharacters] = "";
  if (!IsWindow(window)) return kControlOther;
  GetClassNameA(window, name, kClassNameCharacters);
  return ClassifyClassName(name);
}

bool IsOfClass(HWND window, const char* className) {
  char name[kClassNameCharacters] = "";
  GetClassNameA(window, name, kClassNameCharacters);
  return lstrcmpiA(name, className) == 0;
}

namespace {

// Collected first: a sibling may reorder, move or destroy windows while it handles the message, and two siblings that
// raise themselves would make a walk along the live z-order endless.
std::vector<HWND> ChildrenInZOrder(HWND parent) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    children.push_back(child);
  }
  return children;
}

bool AcceptsInput(ControlKind kind) {
  switch (kind) {
    case kControlButton:
    case kControlEdit:
    case kControlComboBox:
    case kControlListBox:
    case kControlTreeView: return true;
    default: return false;
  }
}

bool LiesUnder(HWND window, POINT screenPoint) {
  RECT rect{};
  return IsWindowVisible(window) && GetWindowRect(window, &rect) && PtInRect(&rect, screenPoint);
}

bool MovesFocus(UINT message) {
  switch (message) {
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP: return true;
    default: return false;
  }
}

}  // namespace

LRESULT ForwardMouseMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  POINT cursor{};
  GetCursorPos(&cursor);
  for (HWND sibling : ChildrenInZOrder(GetParent(window))) {
    if (sibling == window || !LiesUnder(sibling, cursor)) continue;
    const ControlKind kind = ClassifyControl(sibling);
    if (!AcceptsInput(kind)) continue;

    // Siblings receive the address of a point instead of packed coordinates, which distinguishes forwarded input from
    // the mouse's.
    POINT point = cursor;
    ScreenToClient(sibling, &point);
    const auto pointAddress = reinterpret_cast<LPARAM>(&point);
    if (message == WM_LBUTTONDOWN) {
      return kind == kControlButton ? SendMessageA(sibling, BM_CLICK, 0, 0)
                                    : SendMessageA(sibling, message, wParam, pointAddress);
    }
    if (MovesFocus(message)) {
      SetFocus(sibling);
      return SendMessageA(sibling, message, wParam, pointAddress);
    }
    SendMessageA(sibling, message, wParam, lParam);
    if (!IsWindow(sibling)) return 1;
  }
  return 1;
}

}  // namespace kv
