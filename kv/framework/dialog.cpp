#include "kv/framework/dialog.h"

#include <commctrl.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

static_assert(sizeof(WNDCLASSEXA) == 48);
static_assert(sizeof(MSG) == 28);
static_assert(DLGWINDOWEXTRA == 30, "the dialog manager keeps its per-dialog data in the window's extra bytes");

constexpr int kLargeIconId = 1;
constexpr int kSmallIconId = 2;

std::array<HWND, 256> modelessDialogs;

LRESULT CALLBACK DialogWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_ERASEBKGND) return 1;
  return DefDlgProcA(window, message, wParam, lParam);
}

BOOL ReplaceFirst(HWND wanted, HWND replacement) {
  const auto slot = std::ranges::find(modelessDialogs, wanted);
  if (slot == modelessDialogs.end()) return FALSE;
  *slot = replacement;
  return TRUE;
}

BOOL DispatchToAll(MSG* message) {
  if (IsBadReadPtr(message, sizeof(*message))) return FALSE;
  BOOL taken = FALSE;
  for (HWND dialog : modelessDialogs) {
    if (IsWindow(dialog) && IsDialogMessageA(dialog, message)) taken = TRUE;
  }
  return taken;
}

}  // namespace

BOOL RegisterDialogClass(HINSTANCE instance, BOOL registerIt) {
  if (!registerIt) {
    UnregisterClassA(kDialogClass, instance);
    return TRUE;
  }
  OwnedBrush brush(CreateSolidBrush(kDialogBlue));
  const WNDCLASSEXA windowClass{
      .cbSize = sizeof(WNDCLASSEXA),
      .style = CS_DBLCLKS | CS_CLASSDC,
      .lpfnWndProc = DialogWindowProcedure,
      .cbClsExtra = 0,
      .cbWndExtra = DLGWINDOWEXTRA,
      .hInstance = instance,
      .hIcon = LoadIconA(instance, MAKEINTRESOURCEA(kLargeIconId)),
      .hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)),
      .hbrBackground = brush,
      .lpszMenuName = nullptr,
      .lpszClassName = kDialogClass,
      .hIconSm = LoadIconA(instance, MAKEINTRESOURCEA(kSmallIconId)),
  };
  if (!RegisterClassExA(&windowClass)) return FALSE;
  // The class uses the brush even after it is unregistered, so it is never deleted. Nothing is erased with it, because
  // the procedure handles WM_ERASEBKGND.
  brush.Release();
  return TRUE;
}

BOOL ModelessDialogs(HWND window, MSG* message, int operation) {
  switch (operation) {
    case kModelessReset: modelessDialogs.fill(nullptr); return TRUE;
    case kModelessAdd: return ReplaceFirst(nullptr, window);
    case kModelessRemove: return ReplaceFirst(window, nullptr);
    case kModelessDispatch: return DispatchToAll(message);
    default: return FALSE;
  }
}

BOOL SetTrackbarTicks(HWND trackbar, int minimum, int maximum, int intervals) {
  if (!IsWindow(trackbar)) return FALSE;
  SendMessageA(trackbar, TBM_SETRANGEMIN, TRUE, minimum);
  SendMessageA(trackbar, TBM_SETRANGEMAX, TRUE, maximum);
  SendMessageA(trackbar, TBM_CLEARTICS, FALSE, 0);
  const double span = std::abs(static_cast<double>(maximum) - minimum);
  // With 0 intervals, 0 / 0 is NaN, which ToInt converts to 0.
  for (long long i = 0; i <= intervals; ++i) {
    SendMessageA(trackbar, TBM_SETTIC, 0, ToInt(static_cast<double>(i) * span / intervals + 0.5));
  }
  return TRUE;
}

BOOL SetScrollBarControl(HWND scrollBar, int minimum, int maximum, UINT page, int position) {
  if (!IsWindow(scrollBar)) return FALSE;
  const SCROLLINFO info{
      .cbSize = sizeof(SCROLLINFO),
      .fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL,
      .nMin = minimum,
      .nMax = maximum,
      .nPage = page,
      .nPos = position,
      .nTrackPos = 0,
  };
  SetScrollInfo(scrollBar, SB_CTL, &info, TRUE);
  return TRUE;
}

}  // namespace kv
