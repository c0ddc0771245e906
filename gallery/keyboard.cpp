#include "gallery/keyboard.h"

#include <commctrl.h>

#include "framework/control_kind.h"
#include "gallery/frame.h"
#include "gallery/resource_ids.h"

namespace gallery {

namespace {

bool IsKeyDown(int key) {
  return GetKeyState(key) < 0;
}

bool TakesKeys(HWND control) {
  return IsWindowVisible(control) && IsWindowEnabled(control);
}

bool IsListView(HWND control) {
  wchar_t name[32] = L"";
  GetClassNameW(control, name, ARRAYSIZE(name));
  return lstrcmpiW(name, WC_LISTVIEWW) == 0;
}

bool CrossOver(HWND frame) {
  const HWND page = ShownPage();
  if (!IsChild(page, GetFocus()) && FocusPage(page)) return true;
  SetFocus(GetDlgItem(frame, IDC_PAGE_LIST));
  return true;
}

bool OnTab(HWND frame, const MSG& key) {
  if (IsKeyDown(VK_CONTROL)) return CrossOver(frame);
  const LRESULT wants = SendMessageW(key.hwnd, WM_GETDLGCODE, VK_TAB, reinterpret_cast<LPARAM>(&key));
  if (!(wants & (DLGC_WANTTAB | DLGC_WANTMESSAGE))) return false;
  SendMessageW(frame, WM_NEXTDLGCTL, IsKeyDown(VK_SHIFT), 0);
  return true;
}

bool OnReturn(HWND control) {
  const LRESULT code = SendMessageW(control, WM_GETDLGCODE, 0, 0);
  if (code & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) {
    SendMessageW(control, BM_CLICK, 0, 0);
    return true;
  }
  if (IsListView(control)) {
    // It tells its parent of the key, if only it gets it.
    SendMessageW(control, WM_KEYDOWN, VK_RETURN, 0);
    return true;
  }
  if (kv::ClassifyControl(control) != kv::kControlListBox) return false;
  const WPARAM command = MAKEWPARAM(GetDlgCtrlID(control), LBN_DBLCLK);
  SendMessageW(GetParent(control), WM_COMMAND, command, reinterpret_cast<LPARAM>(control));
  return true;
}

bool OnKeyDown(HWND frame, const MSG& key) {
  switch (key.wParam) {
    case VK_F6: return CrossOver(frame);
    case VK_TAB: return OnTab(frame, key);
    case VK_RETURN: return OnReturn(key.hwnd);
    default: return false;
  }
}

// True when the message is done with. It may send the message to another window of the frame instead.
bool TakeMessage(HWND frame, MSG* message) {
  if (!IsChild(frame, message->hwnd)) return false;
  if (message->message == WM_MOUSEWHEEL || message->message == WM_MOUSEHWHEEL) {
    const HWND under = WindowFromPoint(message->pt);
    if (IsChild(frame, under)) message->hwnd = under;
    return false;
  }
  if (message->message < WM_KEYFIRST || message->message > WM_KEYLAST) return false;
  if (!TakesKeys(message->hwnd)) {
    message->hwnd = GetDlgItem(frame, IDC_PAGE_LIST);
    SetFocus(message->hwnd);
  }
  return message->message == WM_KEYDOWN && OnKeyDown(frame, *message);
}

}  // namespace

void Dispatch(HWND frame, MSG* message) {
  if (TakeMessage(frame, message) || IsDialogMessageW(frame, message)) return;
  TranslateMessage(message);
  DispatchMessageW(message);
}

bool FocusPage(HWND page) {
  const HWND first = GetNextDlgTabItem(page, nullptr, FALSE);
  if (!IsChild(page, first) || !TakesKeys(first)) return false;
  SetFocus(first);
  return true;
}

}  // namespace gallery
