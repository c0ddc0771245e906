#include "kv/toolkit/copy_key.h"

#include <commctrl.h>

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

void DrawFocus(HWND control) {
  if (GetFocus() != control) return;
  const SIZE size = ClientSize(control);
  DrawRoundedFrame(WindowDc(control), {0, 0, size.cx, size.cy}, 0, kFramePx, GetSysColor(COLOR_HIGHLIGHT));
}

LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR subclass, DWORD_PTR) {
  const bool copies = message == WM_COPY || message == WM_LBUTTONDBLCLK;
  const DWORD before = GetClipboardSequenceNumber();
  switch (message) {
    case WM_KEYDOWN:
      if (wParam == 'C' && GetKeyState(VK_CONTROL) < 0) return SendMessageW(control, WM_COPY, 0, 0);
      break;
    case WM_LBUTTONDOWN: SetFocus(control); break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: InvalidateRect(control, nullptr, FALSE); break;
    case WM_NCDESTROY: RemoveWindowSubclass(control, Procedure, subclass); break;
    default: break;
  }
  const LRESULT result = DefSubclassProc(control, message, wParam, lParam);
  if (message == WM_PAINT) DrawFocus(control);
  if (copies && IsWindow(control)) {
    SendMessageW(GetParent(control), kControlCopied, static_cast<WPARAM>(GetDlgCtrlID(control)),
                 GetClipboardSequenceNumber() != before);
  }
  return result;
}

}  // namespace

void AddCopyKey(HWND control) {
  const bool showsImage = IsOfClass(control, kDisplayInstrumentClass) || IsOfClass(control, kHorizonClass);
  if (showsImage && GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP) SetWindowSubclass(control, Procedure, 1, 0);
}

}  // namespace kv
