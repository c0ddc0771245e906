#include "gallery/mirroring.h"

#include "framework/control_kind.h"
#include "gallery/languages.h"

namespace gallery {

namespace {

// Edit controls are not mirrored as a whole: what is typed may be of any language, so they only begin at the right.
constexpr LONG kMirrored = WS_EX_LAYOUTRTL | WS_EX_RTLREADING, kFromRight = WS_EX_RIGHT | WS_EX_RTLREADING;

bool SetDirection(HWND window, LONG bits, bool rightToLeft) {
  const LONG style = GetWindowLongW(window, GWL_EXSTYLE);
  const LONG wanted = rightToLeft ? style | bits : style & ~bits;
  if (wanted == style) return false;
  SetWindowLongW(window, GWL_EXSTYLE, wanted);
  SetWindowPos(window, nullptr, 0, 0, 0, 0, SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
  return true;
}

bool IsOwnClass(HWND control) {
  wchar_t name[32] = L"";
  GetClassNameW(control, name, ARRAYSIZE(name));
  return name[0] == L'k' && name[1] == L'v';
}

bool IsReadOut(HWND control) {
  return (GetWindowLongW(control, GWL_EXSTYLE) & WS_EX_NOINHERITLAYOUT) != 0;
}

bool KeepsDirection(HWND control) {
  const bool isOwnerDrawn = kv::ClassifyControl(control) == kv::kControlStatic &&
                            (GetWindowLongW(control, GWL_STYLE) & SS_TYPEMASK) == SS_OWNERDRAW;
  return isOwnerDrawn || IsOwnClass(control);
}

}  // namespace

bool MirrorWindow(HWND window) {
  return SetDirection(window, kMirrored, IsRightToLeft());
}

bool MirrorPage(HWND page) {
  for (HWND control = GetWindow(page, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
    // A page that is made while it is mirrored hands that on to all its controls.
    if (IsReadOut(control)) {
      SetDirection(control, kMirrored, false);
      SetDirection(control, WS_EX_RIGHT, IsRightToLeft());
    } else if (KeepsDirection(control)) {
      SetDirection(control, kMirrored, false);
    } else if (kv::ClassifyControl(control) == kv::kControlEdit) {
      SetDirection(control, WS_EX_LAYOUTRTL, false);
      SetDirection(control, kFromRight, IsRightToLeft());
    } else {
      SetDirection(control, kMirrored, IsRightToLeft());
    }
  }
  return MirrorWindow(page);
}

}  // namespace gallery
