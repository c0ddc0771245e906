#include "kv/toolkit/empty_text.h"

#include <commctrl.h>

#include <string>

#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/languages.h"

namespace kv {

namespace {

constexpr UINT_PTR kSubclass = 0x3F00;
constexpr int kMarginX = 6, kMarginY = 4;
constexpr int kTextPercent = 60;

UINT CountMessage(HWND control) {
  return ClassifyControl(control) == kControlListBox ? LB_GETCOUNT : WM_GETTEXTLENGTH;
}

bool IsEmpty(HWND control) {
  return SendMessageW(control, CountMessage(control), 0, 0) == 0;
}

void Draw(HWND control, const std::wstring& text) {
  const WindowDc dc(control);
  const SelectedObject font(dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, ListShade(kTextPercent));
  RECT area{};
  GetClientRect(control, &area);
  InflateRect(&area, -kMarginX, -kMarginY);
  const bool fromRight = IsRightToLeft() && !(GetLayout(dc) & LAYOUT_RTL);
  DrawFitted(dc, text, area, DT_WORDBREAK | (fromRight ? DT_RIGHT : DT_LEFT));
}

LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  if (message == CountMessage(control)) return DefSubclassProc(control, message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    delete reinterpret_cast<std::wstring*>(data);
    RemoveWindowSubclass(control, Procedure, kSubclass);
    return DefSubclassProc(control, message, wParam, lParam);
  }
  const bool wasEmpty = IsEmpty(control);
  const LRESULT result = DefSubclassProc(control, message, wParam, lParam);
  if (!GetWindowSubclass(control, Procedure, kSubclass, &data)) return result;  // destroyed meanwhile
  const bool isEmpty = IsEmpty(control), focusChanges = message == WM_SETFOCUS || message == WM_KILLFOCUS;
  if (isEmpty != wasEmpty || (isEmpty && focusChanges)) InvalidateRect(control, nullptr, TRUE);
  if (message == WM_PAINT && isEmpty) Draw(control, *reinterpret_cast<std::wstring*>(data));
  return result;
}

}  // namespace

BOOL SetEmptyText(HWND dialog, int id, const std::wstring& text) {
  const HWND control = GetDlgItem(dialog, id);
  const ControlKind kind = ClassifyControl(control);
  if (kind != kControlListBox && kind != kControlEdit) return FALSE;
  DWORD_PTR data = 0;
  if (GetWindowSubclass(control, Procedure, kSubclass, &data)) {
    *reinterpret_cast<std::wstring*>(data) = text;
  } else {
    SetWindowSubclass(control, Procedure, kSubclass, reinterpret_cast<DWORD_PTR>(new std::wstring(text)));
  }
  InvalidateRect(control, nullptr, TRUE);
  return TRUE;
}

}  // namespace kv
