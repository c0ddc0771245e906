#include "kv/toolkit/keyboard.h"

#include <commctrl.h>

#include <cwchar>
#include <memory>

#include "kv/framework/control_class.h"
#include "kv/lists/extended_list.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/pages.h"

namespace kv {

namespace {

bool IsKeyDown(int key) {
  return GetKeyState(key) < 0;
}

bool TakesKeys(HWND control) {
  return IsWindowVisible(control) && IsWindowEnabled(control);
}

bool SwitchFocus(HWND dialog) {
  const HWND page = ShownPage(dialog);
  if (!page) return false;
  if (!IsChild(page, GetFocus()) && FocusFirstControl(page)) return true;
  const HWND first = GetNextDlgTabItem(dialog, nullptr, FALSE);
  HWND control = first;
  while (IsChild(page, control)) {
    control = GetNextDlgTabItem(dialog, control, FALSE);
    if (control == first) break;
  }
  SetFocus(control);
  return true;
}

bool OnTab(HWND dialog, const MSG& key) {
  if (IsKeyDown(VK_CONTROL)) return SwitchFocus(dialog);
  const LRESULT code = SendMessageW(key.hwnd, WM_GETDLGCODE, VK_TAB, reinterpret_cast<LPARAM>(&key));
  if (!(code & (DLGC_WANTTAB | DLGC_WANTMESSAGE))) return false;
  SendMessageW(dialog, WM_NEXTDLGCTL, IsKeyDown(VK_SHIFT), 0);
  return true;
}

bool HasDefaultButton(HWND dialog) {
  const std::shared_ptr<DialogState> state = DialogStateOf(dialog);
  return state && state->hasDefaultButton;
}

bool OnReturn(HWND dialog, HWND control) {
  const LRESULT code = SendMessageW(control, WM_GETDLGCODE, 0, 0);
  if (code & (DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON)) {
    SendMessageW(control, BM_CLICK, 0, 0);
    return true;
  }
  if (HasDefaultButton(dialog) || HasDefaultButton(GetParent(control))) return false;
  if (IsOfClass(control, WC_LISTVIEWA)) {
    // The control notifies its parent of the key if it receives it.
    SendMessageW(control, WM_KEYDOWN, VK_RETURN, 0);
    return true;
  }
  if (ClassifyControl(control) != kControlListBox && !IsOfClass(control, kExtendedListClass)) return false;
  const WPARAM command = MAKEWPARAM(GetDlgCtrlID(control), LBN_DBLCLK);
  SendMessageW(GetParent(control), WM_COMMAND, command, reinterpret_cast<LPARAM>(control));
  return true;
}

// Whether the focused control uses the key, so that it is not an accelerator.
bool KeepsKey(HWND control, WPARAM key) {
  const bool isFunctionKey = key >= VK_F1 && key <= VK_F24, isLetter = key >= 'A' && key <= 'Z';
  const bool isPlain = !IsKeyDown(VK_CONTROL) && !IsKeyDown(VK_MENU), isPage = key == VK_PRIOR || key == VK_NEXT;
  constexpr wchar_t kEditing[] = L"ACVXYZ";
  switch (ClassifyControl(control)) {
    case kControlEdit:
    case kControlComboBox:
      if (isFunctionKey || (isPage && !isPlain)) return false;
      return isPlain || !isLetter || wcschr(kEditing, static_cast<wchar_t>(key));
    case kControlButton: return key == VK_SPACE;
    case kControlListBox:
    case kControlTreeView: return isPlain && isLetter;
    default: return false;
  }
}

}  // namespace

bool TakeAccelerator(HWND dialog, MSG* message) {
  if (message->message < WM_KEYFIRST || message->message > WM_KEYLAST) return false;
  const std::shared_ptr<DialogState> state = DialogStateOf(dialog);
  if (!state || !state->accelerators || !IsWindowEnabled(dialog)) return false;
  if (message->message == WM_KEYDOWN && KeepsKey(message->hwnd, message->wParam)) return false;
  return TranslateAcceleratorW(dialog, state->accelerators, message) != 0;
}

bool TakeKey(HWND dialog, MSG* message) {
  if (!IsChild(dialog, message->hwnd)) return false;
  if (message->message == WM_MOUSEWHEEL || message->message == WM_MOUSEHWHEEL) {
    const HWND under = WindowFromPoint(message->pt);
    if (IsChild(dialog, under)) message->hwnd = under;
    return false;
  }
  if (message->message < WM_KEYFIRST || message->message > WM_KEYLAST) return false;
  if (!TakesKeys(message->hwnd)) {
    // IsDialogMessage may search for a neighbor of a hidden control without end.
    FocusFirstControl(dialog);
    const HWND focus = GetFocus();
    message->hwnd = IsChild(dialog, focus) && TakesKeys(focus) ? focus : dialog;
  }
  if (message->message != WM_KEYDOWN) return false;
  switch (message->wParam) {
    case VK_F6: return SwitchFocus(dialog);
    case VK_TAB: return OnTab(dialog, *message);
    case VK_RETURN: return OnReturn(dialog, message->hwnd);
    default: return false;
  }
}

bool FocusFirstControl(HWND dialog) {
  const HWND first = GetNextDlgTabItem(dialog, nullptr, FALSE);
  if (!IsChild(dialog, first) || !TakesKeys(first)) return false;
  SetFocus(first);
  return true;
}

}  // namespace kv
