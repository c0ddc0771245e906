#include "kv/toolkit/mirroring.h"

#include <commctrl.h>

#include "kv/framework/control_class.h"
#include "kv/resource.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/languages.h"

namespace kv {

namespace {

// Edit controls are only right-aligned, not mirrored: their text may be in any language.
constexpr LONG kScrollBarAtLeft = WS_EX_LEFTSCROLLBAR | WS_EX_LAYOUTRTL;
constexpr LONG kMirrored = WS_EX_LAYOUTRTL | WS_EX_RTLREADING, kFromRight = WS_EX_RIGHT | WS_EX_RTLREADING;

// Computes the client area again. The window's own style and its parent's determine the sides of the scroll bars.
void UpdateFrame(HWND window) {
  SetWindowPos(window, nullptr, 0, 0, 0, 0, SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool SetDirection(HWND window, LONG bits, bool rightToLeft) {
  const LONG style = GetWindowLongW(window, GWL_EXSTYLE);
  const LONG wanted = rightToLeft ? style | bits : style & ~bits;
  if (wanted == style) return false;
  SetWindowLongW(window, GWL_EXSTYLE, wanted);
  UpdateFrame(window);
  return true;
}

// Controls of other classes draw themselves, and may not support mirroring. kvExtList does.
bool IsStandardControl(HWND control) {
  wchar_t name[32] = L"";
  GetClassNameW(control, name, ARRAYSIZE(name));
  const auto begins = [&name](const wchar_t* with) {
    return CompareStringOrdinal(name, lstrlenW(with), with, lstrlenW(with), TRUE) == CSTR_EQUAL;
  };
  const ControlKind kind = ClassifyControl(control);
  return (kind != kControlOther && kind != kControlSimpleBitmap) || begins(L"Sys") || begins(L"msctls_") ||
         begins(L"ScrollBar") || begins(L"Toolbar") || begins(L"kvExtList");
}

// ---- Scroll bars of controls in a mirrored dialog -------------------------------------------------------------------

// Wine computes a window's edges in its parent's coordinates, in which left and right are exchanged here: it removes
// the scroll bar's width on the wrong side, and the bar is not drawn. Therefore exchange the sides again.
LRESULT CALLBACK ExchangeSides(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  const bool applies =
      message == WM_NCCALCSIZE && wParam && GetWindowLongW(GetParent(control), GWL_EXSTYLE) & WS_EX_LAYOUTRTL;
  RECT* area = applies ? reinterpret_cast<NCCALCSIZE_PARAMS*>(lParam)->rgrc : nullptr;
  const RECT whole = area ? *area : RECT{};
  const LRESULT result = DefSubclassProc(control, message, wParam, lParam);
  if (!area) return result;
  const LONG left = area->left - whole.left, right = whole.right - area->right;
  area->left = whole.left + right;
  area->right = whole.right - left;
  return result;
}

bool HasScrollBarOnWrongSide(HWND control) {
  RECT window{}, client{};
  GetWindowRect(control, &window);
  GetClientRect(control, &client);
  MapWindowPoints(control, nullptr, reinterpret_cast<POINT*>(&client), 2);
  return GetWindowLongW(control, GWL_STYLE) & WS_VSCROLL &&
         !(GetWindowLongW(control, GWL_EXSTYLE) & kScrollBarAtLeft) &&
         client.left - window.left > window.right - client.right;
}

void FixScrollBar(HWND control) {
  if (!HasScrollBarOnWrongSide(control)) return;
  SetWindowSubclass(control, ExchangeSides, 1, 0);
  UpdateFrame(control);
}

// ---- Which controls are mirrored ------------------------------------------------------------------------------------

bool KeepsDirection(HWND control) {
  const bool isOwnerDrawn =
      ClassifyControl(control) == kControlStatic && (GetWindowLongW(control, GWL_STYLE) & SS_TYPEMASK) == SS_OWNERDRAW;
  return isOwnerDrawn || !IsStandardControl(control);
}

void MirrorControl(HWND control) {
  if (GetWindowLongW(control, GWL_EXSTYLE) & KV_KEEPS_DIRECTION) {
    SetDirection(control, kMirrored, false);
    SetDirection(control, WS_EX_RIGHT, IsRightToLeft());
  } else if (KeepsDirection(control)) {
    SetDirection(control, kMirrored, false);
  } else if (ClassifyControl(control) == kControlEdit) {
    SetDirection(control, WS_EX_LAYOUTRTL, false);
    SetDirection(control, kFromRight, IsRightToLeft());
  } else {
    SetDirection(control, kMirrored, IsRightToLeft());
    // The header of a list view is a window of its own.
    const HWND header = IsOfClass(control, WC_LISTVIEWA) ? ListView_GetHeader(control) : nullptr;
    if (header) SetDirection(header, kMirrored, IsRightToLeft());
  }
}

}  // namespace

bool MirrorDialog(HWND dialog) {
  // A mirrored window passes the style to children that it creates, also to those that must not be mirrored.
  if (IsRightToLeft()) SetDirection(dialog, WS_EX_NOINHERITLAYOUT, true);
  const bool turned = SetDirection(dialog, kMirrored, IsRightToLeft());
  VisitChildren(dialog, [turned](HWND child) {
    if (!DialogStateOf(child)) MirrorControl(child);
    if (turned) UpdateFrame(child);
  });
  return turned;
}

void FixMirroredDialog(HWND dialog) {
  if (IsRightToLeft()) VisitChildren(dialog, FixScrollBar);
}

}  // namespace kv
