#include "framework/click_through.h"

#include <vector>

#include "framework/control_kind.h"

namespace kv {

namespace {

// A list made beforehand: a sibling may reorder, move or destroy any of the windows while it handles what it is sent,
// and two that raise themselves would keep a walk along the live z-order going for ever.
std::vector<HWND> ChildrenInZOrder(HWND parent) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    children.push_back(child);
  }
  return children;
}

bool TakesInput(ControlKind kind) {
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
  RECT place{};
  return IsWindowVisible(window) && GetWindowRect(window, &place) && PtInRect(&place, screenPoint);
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

LRESULT PassClickThrough(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  POINT cursor{};
  GetCursorPos(&cursor);
  for (HWND sibling : ChildrenInZOrder(GetParent(window))) {
    if (sibling == window || !LiesUnder(sibling, cursor)) continue;
    const ControlKind kind = ClassifyControl(sibling);
    if (!TakesInput(kind)) continue;

    // The siblings get the point's address, not packed coordinates: that tells passed-through input from the mouse's.
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
