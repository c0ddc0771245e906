#include "kv/toolkit/copy_key.h"

#include <unordered_map>

#include "kv/controls/display_instrument.h"
#include "kv/controls/horizon/horizon.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/scaled_dialog.h"

namespace kv {

namespace {

constexpr int kFramePx = 2;

// Of the controls with a copy key. A subclass of the common controls would call the system three times for each
// message; an animated instrument receives a hundred of them a second.
std::unordered_map<HWND, WNDPROC> originalProcedures;
HWND focusedControl = nullptr;  // one of these

void DrawFocus(HWND control) {
  const SIZE size = ClientSize(control);
  DrawRoundedFrame(WindowDc(control), {0, 0, size.cx, size.cy}, 0, kFramePx, GetSysColor(COLOR_HIGHLIGHT));
}

void OnFocus(HWND control, bool got) {
  focusedControl = got ? control : nullptr;
  InvalidateRect(control, nullptr, FALSE);
}

LRESULT CopyAndReport(HWND control, WNDPROC original, UINT message, WPARAM wParam, LPARAM lParam) {
  const DWORD before = GetClipboardSequenceNumber();
  const LRESULT result = CallWindowProcA(original, control, message, wParam, lParam);
  if (IsWindow(control)) {
    SendMessageW(GetParent(control), kControlCopied, static_cast<WPARAM>(GetDlgCtrlID(control)),
                 GetClipboardSequenceNumber() != before);
  }
  return result;
}

LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam) {
  const WNDPROC original = originalProcedures.at(control);
  switch (message) {
    case WM_COPY:
    case WM_LBUTTONDBLCLK: return CopyAndReport(control, original, message, wParam, lParam);
    case WM_KEYDOWN:
      if (wParam == 'C' && GetKeyState(VK_CONTROL) < 0) return SendMessageW(control, WM_COPY, 0, 0);
      break;
    case WM_LBUTTONDOWN: SetFocus(control); break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: OnFocus(control, message == WM_SETFOCUS); break;
    default: break;
  }
  const LRESULT result = CallWindowProcA(original, control, message, wParam, lParam);
  if (message == WM_PAINT && control == focusedControl) DrawFocus(control);
  if (message == WM_NCDESTROY) originalProcedures.erase(control);
  return result;
}

}  // namespace

void AddCopyKey(HWND control) {
  const bool showsImage = IsOfClass(control, kDisplayInstrumentClass) || IsOfClass(control, kHorizonClass);
  if (!showsImage || !(GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP) || originalProcedures.contains(control)) return;
  const LONG original = SetWindowLongA(control, GWL_WNDPROC, reinterpret_cast<LONG>(Procedure));
  originalProcedures[control] = reinterpret_cast<WNDPROC>(original);
}

}  // namespace kv
