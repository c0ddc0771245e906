#include "app/main_dialog.h"

#include <commctrl.h>

#include <cwchar>

#include "app/app_context.h"
#include "app/camera_link.h"
#include "app/camera_point.h"
#include "app/main_dialog_background.h"
#include "app/main_dialog_geometry.h"
#include "app/main_dialog_layout.h"
#include "app/main_dialog_setup.h"
#include "app/optical_flow_chart.h"
#include "app/repaint.h"
#include "app/resource_ids.h"
#include "app/version.h"
#include "export/web_links.h"
#include "framework/bounded_format.h"
#include "framework/control_class.h"
#include "framework/dialog_layout.h"
#include "framework/guards.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "framework/window_position.h"

namespace kv {

namespace {

bool IsPortOpen(const AppContext* context) {
  return context->hPort != INVALID_HANDLE_VALUE;
}

// A text that stands already is left alone: the button would repaint for nothing twenty times a second. What stands is
// asked of the button and not remembered here, so that a text that somebody else has set is put right at the next tick.
void ShowText(HWND button, const wchar_t* text) {
  wchar_t shown[128] = L"";
  GetWindowTextW(button, shown, ARRAYSIZE(shown));
  if (std::wcscmp(shown, text) != 0) SetWindowTextW(button, text);
}

// ---- Painting -------------------------------------------------------------------------------------------

INT_PTR OnSize(HWND dialog, AppContext* context, WPARAM kind) {
  // A minimised window has no area to lay out; the next size brings the real one.
  if (kind != SIZE_MINIMIZED) LayOutMainDialog(dialog, context);
  return 0;
}

RECT PlaceInDialog(HWND dialog, HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

void ExcludeChild(HDC dc, HWND dialog, HWND control) {
  if (!IsWindowVisible(control)) return;
  const RECT place = PlaceInDialog(dialog, control);
  ExcludeClipRect(dc, place.left, place.top, place.right, place.bottom);
}

INT_PTR OnPaint(HWND dialog, const AppContext* context) {
  const PaintScope paint(dialog);
  const MainControls& controls = context->controls;
  // The dialog's style does not spare its children. Painted over, these would be gone until they paint themselves
  // again. The device context belongs to the window class, which would keep the clipping for the next painting.
  const int saved = SaveDC(paint.dc());
  ExcludeChild(paint.dc(), dialog, controls.chart);
  ExcludeChild(paint.dc(), dialog, controls.statusBar);
  for (HWND button : controls.statusButtons) ExcludeChild(paint.dc(), dialog, button);
  const SIZE client = ClientSize(dialog);
  const SIZE design{context->layout[0].width, context->layout[0].height};
  PaintMainBackground(paint.dc(), client,
                      ShapeBackground(client, design, ToolbarHeight(controls), StatusHeight(controls),
                                      PlaceInDialog(dialog, controls.pages)));
  RestoreDC(paint.dc(), saved);
  return 1;
}

INT_PTR OnDrawItem(const AppContext* context, const DRAWITEMSTRUCT* item) {
  if (IsBadReadPtr(item, sizeof(*item))) return 1;
  if (item->CtlID < IDC_PORT || item->CtlID > IDC_POINT_4) return 0;
  const int index = static_cast<int>(item->CtlID) - IDC_PORT;
  UINT flags = kButtonGradient;
  const DWORD blinks = 1u << (kBlinkFlagShift + index);
  if ((context->dwButtonFlags & blinks) && (context->dwButtonFlags & kBlinkPhase)) flags |= kButtonLit;
  int scheme = kSchemeBlue;
  if (item->CtlID == IDC_PORT && IsPortOpen(context)) {
    scheme = context->bPaused ? kSchemeAmber : kSchemeGreen;
    if (context->bPaused) flags |= kButtonPaused;
  }
  DrawStatusButton(*item, scheme, flags);
  return 1;
}

// The status buttons paint their whole face; being erased before each repaint they would flicker.
INT_PTR OnButtonColor(HWND button) {
  const int id = GetDlgCtrlID(button);
  return id >= IDC_PORT && id <= IDC_POINT_4 ? reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH)) : 0;
}

// ---- Commands ------------------------------------------------------------------------------------------------------

void CheckToolbarButton(const AppContext* context, int command, bool checked) {
  SendMessageA(context->controls.toolbar, TB_CHECKBUTTON, command, MAKELPARAM(checked, 0));
}

// The port button blinks while the display is paused.
void SetPaused(AppContext* context, BOOL paused) {
  context->bPaused = paused;
  CheckToolbarButton(context, IDM_PAUSE, paused);
  constexpr DWORD kPortBlinks = 1u << kBlinkFlagShift;
  context->dwButtonFlags = (context->dwButtonFlags & ~kPortBlinks) | (paused ? kPortBlinks : 0);
}

void ToggleConnection(HWND dialog, AppContext* context) {
  for (HWND button : context->controls.statusButtons) SetWindowTextW(button, L"-");
  // The scan keeps this thread busy for a while: show the cleared buttons and that the tool is at work.
  UpdateWindow(dialog);
  HCURSOR cursor = SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT)));
  if (IsPortOpen(context)) {
    ConnectCamera(context, FALSE);
  } else if (ConnectCamera(context, TRUE)) {
    wchar_t text[128];
    FormatBounded(text, sizeof(text), L"COM%ld", context->nPort);
    SetWindowTextW(context->controls.statusButtons[0], text);
  }
  SetCursor(cursor);
  CheckToolbarButton(context, IDM_CONNECT, IsPortOpen(context));
  SetPaused(context, FALSE);
  LayOutMainDialog(dialog, context);
}

INT_PTR OnCommand(HWND dialog, AppContext* context, UINT command) {
  switch (command) {
    // Quirk: it would move the focus in a dialog with a parent; here it only keeps Enter from closing.
    case IDOK: SetFocus(GetNextDlgTabItem(GetParent(dialog), GetFocus(), FALSE)); break;
    case IDM_CLOSE: PostMessageA(dialog, WM_CLOSE, 0, 0); break;
    case IDM_ABOUT: MessageBoxA(dialog, TARNWICK_VERSION_LINE, "Brisklight", MB_ICONINFORMATION); break;
    case IDM_WEB_SITE: openMakerWebPage(0); break;
    case IDM_CONNECT: ToggleConnection(dialog, context); break;
    case IDM_RESERVED: break;
    case IDM_PAUSE: SetPaused(context, !context->bPaused); break;
    default:
      if (command >= kMenuCommandFirst && command <= kMenuCommandLast) {
        context->nMenuSelection = static_cast<LONG>(command - kMenuCommandFirst);
      }
  }
  return 0;
}

INT_PTR OnNotify(HWND dialog, AppContext* context, const NMHDR* notice) {
  if (IsBadReadPtr(notice, sizeof(*notice)) || notice->idFrom != IDC_PAGES || notice->code != TCN_SELCHANGE) return 0;
  const auto page = static_cast<int>(SendMessageA(context->controls.pages, TCM_GETCURSEL, 0, 0));
  if (page != -1) SelectTabPage(dialog, context, page);
  return 0;
}

INT_PTR OnScroll(AppContext* context, HWND scrollControl) {
  if (GetWindowLongA(scrollControl, GWL_ID) == -1) context->bChanged = TRUE;
  return 0;
}

// ---- Timers --------------------------------------------------------------------------------------------------------

void HandPointsToChart(AppContext* context) {
  FlowPoints exchange{.mask = 15};
  for (int i = 0; i < kPointCount; ++i) exchange.points[i] = context->points[i];
  // After the copy: a change that falls between is shown with the next record.
  context->bChanged = FALSE;
  SendMessageA(context->controls.chart, kControlCommand, kCommandRedraw | kChartPoints,
               reinterpret_cast<LPARAM>(&exchange));
}

void OnPointsTimer(AppContext* context) {
  if (context->bChanged && !context->bPaused) HandPointsToChart(context);
  for (int i = 0; i < kPointCount; ++i) {
    wchar_t text[128] = L"-";
    if (context->nPort != -1) {
      FormatBounded(text, sizeof(text), L"%ld,%ld", context->points[i].x, context->points[i].y);
    }
    ShowText(context->controls.statusButtons[1 + i], text);
  }
}

void OnBlinkTimer(AppContext* context) {
  context->dwButtonFlags ^= kBlinkPhase;
  // Quirk: the last button is left out and never blinks.
  for (int i = 0; i < kStatusButtonCount - 1; ++i) RepaintWithoutChildren(context->controls.statusButtons[i]);
}

INT_PTR OnTimer(AppContext* context, UINT_PTR timer) {
  if (timer == kPointsTimer) OnPointsTimer(context);
  if (timer == kBlinkTimer) OnBlinkTimer(context);
  return 0;
}

// ---- Shutdown ------------------------------------------------------------------------------------------------------

// The order matters; app/camera_link.h tells why.
void StopReader(AppContext* context) {
  constexpr DWORD kPatienceMs = 1000;
  SetEvent(context->hConnectEvent);
  ClosePort(context);
  SetEvent(context->hQuitEvent);
  if (WaitForSingleObject(context->hReaderThread, kPatienceMs) == WAIT_TIMEOUT) {
    TerminateThread(context->hReaderThread, 1);
  }
  CloseHandle(context->hReaderThread);
  CloseHandle(context->hConnectEvent);
}

// The session ends and the process with it, perhaps before WM_CLOSE or the end of the message loop.
INT_PTR OnSessionEnd(HWND dialog, AppContext* context, BOOL ends) {
  if (!ends) return 0;
  WindowPosition(dialog, kMainPositionName, kPositionSave);
  DataFolderSetting(context, TRUE);
  return 0;
}

// The common controls are told of new colours by the window that holds them; the strip's background is one of them.
INT_PTR OnColorChange(HWND dialog, AppContext* context) {
  const MainControls& controls = context->controls;
  for (HWND control : {controls.toolbar, controls.pages, controls.statusBar}) {
    SendMessageA(control, WM_SYSCOLORCHANGE, 0, 0);
  }
  RefreshToolbarImages(dialog, context);
  RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
  return 0;
}

INT_PTR OnClose(HWND dialog, AppContext* context) {
  KillTimer(dialog, kPointsTimer);
  KillTimer(dialog, kBlinkTimer);
  WindowPosition(dialog, kMainPositionName, kPositionSave);
  StopReader(context);
  SetWindowLongA(dialog, DWL_USER, 0);
  PostQuitMessage(0);
  return 1;
}

INT_PTR Handle(HWND dialog, AppContext* context, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE: return OnSize(dialog, context, wParam);
    case WM_PAINT: return OnPaint(dialog, context);
    case WM_CLOSE: return OnClose(dialog, context);
    case WM_DRAWITEM: return OnDrawItem(context, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_NOTIFY: return OnNotify(dialog, context, reinterpret_cast<const NMHDR*>(lParam));
    case WM_COMMAND: return OnCommand(dialog, context, LOWORD(wParam));
    case WM_TIMER: return OnTimer(context, wParam);
    case WM_HSCROLL: return OnScroll(context, reinterpret_cast<HWND>(lParam));
    case WM_ENDSESSION: return OnSessionEnd(dialog, context, wParam != 0);
    case WM_SYSCOLORCHANGE: return OnColorChange(dialog, context);
    default: return 0;
  }
}

}  // namespace

INT_PTR CALLBACK MainDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return SetUpMainDialog(dialog, reinterpret_cast<AppContext*>(lParam));
    case WM_MEASUREITEM: return IsBadReadPtr(reinterpret_cast<void*>(lParam), sizeof(MEASUREITEMSTRUCT)) ? 1 : 0;
    case WM_CTLCOLORBTN: return OnButtonColor(reinterpret_cast<HWND>(lParam));
    case WM_SIZING:
      return LimitSizing(static_cast<UINT>(wParam), reinterpret_cast<RECT*>(lParam), kSmallestWidth, kSmallestHeight);
    case WM_SIZE:
    case WM_PAINT:
    case WM_CLOSE:
    case WM_DRAWITEM:
    case WM_NOTIFY:
    case WM_COMMAND:
    case WM_TIMER:
    case WM_HSCROLL:
    case WM_ENDSESSION:
    case WM_SYSCOLORCHANGE: {
      auto* context = reinterpret_cast<AppContext*>(GetWindowLongA(dialog, DWL_USER));
      return IsContextUsable(context) ? Handle(dialog, context, message, wParam, lParam) : 1;
    }
    default: return 0;
  }
}

}  // namespace kv
