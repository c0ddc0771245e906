#include "app/main_dialog.h"

#include <commctrl.h>

#include "app/camera_link.h"
#include "app/main_dialog_background.h"
#include "app/main_dialog_geometry.h"
#include "app/main_dialog_layout.h"
#include "app/main_dialog_setup.h"
#include "app/optical_flow_chart.h"
#include "app/resource_ids.h"
#include "app/version.h"
#include "export/web_links.h"
#include "framework/bounded_format.h"
#include "framework/control_class.h"
#include "framework/dialog.h"
#include "framework/guards.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "framework/window_position.h"

namespace kv {

namespace {

bool IsPortOpen(const AppContext* context) {
  return context->hPort != INVALID_HANDLE_VALUE;
}

// A text that stands already is left alone: the buttons would repaint for nothing twenty times a second.
void ShowText(HWND dialog, int id, const wchar_t* text) {
  wchar_t shown[128] = L"";
  GetDlgItemTextW(dialog, id, shown, ARRAYSIZE(shown));
  if (lstrcmpW(shown, text) != 0) SetDlgItemTextW(dialog, id, text);
}

// ---- Painting -------------------------------------------------------------------------------------------

INT_PTR OnSize(HWND dialog, AppContext* context, WPARAM kind) {
  // A minimised window has no area to lay out; the next size brings the real one.
  if (kind != SIZE_MINIMIZED) LayOutMainDialog(dialog, context);
  return 0;
}

INT_PTR OnPaint(HWND dialog, const AppContext* context) {
  const PaintScope paint(dialog);
  const SIZE client = ClientSize(dialog);
  RECT tab{};
  GetWindowRect(GetDlgItem(dialog, IDC_PAGES), &tab);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&tab), 2);
  const SIZE design{context->layout[0].width, context->layout[0].height};
  PaintMainBackground(paint.dc(), client,
                      ShapeBackground(client, design, ToolbarHeight(dialog), StatusHeight(dialog), tab));
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
  if (item->CtlID == IDC_PORT && IsPortOpen(context)) scheme = context->bPaused ? kSchemeAmber : kSchemeGreen;
  DrawStatusButton(*item, scheme, flags);
  return 1;
}

// The status buttons paint their whole face; being erased before each repaint they would flicker.
INT_PTR OnButtonColor(HWND button) {
  const int id = GetDlgCtrlID(button);
  return id >= IDC_PORT && id <= IDC_POINT_4 ? reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH)) : 0;
}

// ---- Commands ------------------------------------------------------------------------------------------------------

void CheckToolbarButton(HWND dialog, int command, bool checked) {
  SendDlgItemMessageA(dialog, IDC_TOOLBAR, TB_CHECKBUTTON, command, MAKELPARAM(checked, 0));
}

// The port button blinks while the display is paused.
void SetPaused(HWND dialog, AppContext* context, BOOL paused) {
  context->bPaused = paused;
  CheckToolbarButton(dialog, IDM_PAUSE, paused);
  constexpr DWORD kPortBlinks = 1u << kBlinkFlagShift;
  context->dwButtonFlags = (context->dwButtonFlags & ~kPortBlinks) | (paused ? kPortBlinks : 0);
}

void ToggleConnection(HWND dialog, AppContext* context) {
  for (int id = IDC_PORT; id <= IDC_POINT_4; ++id) SetDlgItemTextW(dialog, id, L"-");
  // The scan keeps this thread busy for a while: show the cleared buttons and that the tool is at work.
  UpdateWindow(dialog);
  HCURSOR cursor = SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT)));
  if (IsPortOpen(context)) {
    ConnectCamera(context, FALSE);
  } else if (ConnectCamera(context, TRUE)) {
    wchar_t text[128];
    FormatBounded(text, sizeof(text), L"COM%ld", context->nPort);
    SetDlgItemTextW(dialog, IDC_PORT, text);
  }
  SetCursor(cursor);
  CheckToolbarButton(dialog, IDM_CONNECT, IsPortOpen(context));
  SetPaused(dialog, context, FALSE);
  LayOutMainDialog(dialog, context);
}

INT_PTR OnCommand(HWND dialog, AppContext* context, UINT command) {
  switch (command) {
    // Written for dialogs hosted in a parent, which then moves the focus on. What matters here: Enter does not close.
    case IDOK: SetFocus(GetNextDlgTabItem(GetParent(dialog), GetFocus(), FALSE)); break;
    case IDM_CLOSE: PostMessageA(dialog, WM_CLOSE, 0, 0); break;
    case IDM_ABOUT: MessageBoxA(dialog, TARNWICK_VERSION_LINE, "Brisklight", MB_ICONINFORMATION); break;
    case IDM_WEB_SITE: openMakerWebPage(0); break;
    case IDM_CONNECT: ToggleConnection(dialog, context); break;
    case IDM_RESERVED: break;
    case IDM_PAUSE: SetPaused(dialog, context, !context->bPaused); break;
    default:
      if (command >= kMenuCommandFirst && command <= kMenuCommandLast) {
        context->nMenuSelection = static_cast<LONG>(command - kMenuCommandFirst);
      }
  }
  return 0;
}

INT_PTR OnNotify(HWND dialog, AppContext* context, const NMHDR* notice) {
  if (IsBadReadPtr(notice, sizeof(*notice)) || notice->idFrom != IDC_PAGES || notice->code != TCN_SELCHANGE) return 0;
  const auto page = static_cast<int>(SendDlgItemMessageA(dialog, IDC_PAGES, TCM_GETCURSEL, 0, 0));
  if (page != -1) SelectTabPage(dialog, context, page);
  return 0;
}

INT_PTR OnScroll(AppContext* context, HWND scrollControl) {
  if (GetWindowLongA(scrollControl, GWL_ID) == -1) context->bChanged = TRUE;
  return 0;
}

// ---- Timers --------------------------------------------------------------------------------------------------------

void HandPointsToChart(HWND dialog, AppContext* context) {
  FlowPoints exchange{.mask = 15};
  for (int i = 0; i < kPointCount; ++i) exchange.points[i] = context->points[i];
  // After the copy: a change that falls between is shown with the next record.
  context->bChanged = FALSE;
  SendDlgItemMessageA(dialog, IDC_CHART, kControlCommand, kCommandRedraw | kChartPoints,
                      reinterpret_cast<LPARAM>(&exchange));
}

void OnPointsTimer(HWND dialog, AppContext* context) {
  if (context->bChanged && !context->bPaused) HandPointsToChart(dialog, context);
  for (int i = 0; i < kPointCount; ++i) {
    wchar_t text[128] = L"-";
    if (context->nPort != -1) {
      FormatBounded(text, sizeof(text), L"%ld,%ld", context->points[i].x, context->points[i].y);
    }
    ShowText(dialog, IDC_POINT_1 + i, text);
  }
}

void OnBlinkTimer(HWND dialog, AppContext* context) {
  context->dwButtonFlags ^= kBlinkPhase;
  // The last point's button does not blink and is left out, so that one of the five always shows a steady face.
  for (int id = IDC_PORT; id < IDC_POINT_4; ++id) RepaintNow(GetDlgItem(dialog, id));
}

INT_PTR OnTimer(HWND dialog, AppContext* context, UINT_PTR timer) {
  if (timer == kPointsTimer) OnPointsTimer(dialog, context);
  if (timer == kBlinkTimer) OnBlinkTimer(dialog, context);
  return 0;
}

// ---- Shutdown ------------------------------------------------------------------------------------------------------

// The order matters; app/camera_link.h tells why.
void StopReader(AppContext* context) {
  constexpr DWORD kPatienceMs = 1000;
  SetEvent(context->hConnectEvent);
  if (IsPortOpen(context)) {
    CloseHandle(context->hPort);
    context->hPort = INVALID_HANDLE_VALUE;
  }
  SetEvent(context->hQuitEvent);
  if (WaitForSingleObject(context->hReaderThread, kPatienceMs) == WAIT_TIMEOUT) {
    TerminateThread(context->hReaderThread, 1);
  }
  CloseHandle(context->hReaderThread);
  CloseHandle(context->hConnectEvent);
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
    case WM_TIMER: return OnTimer(dialog, context, wParam);
    case WM_HSCROLL: return OnScroll(context, reinterpret_cast<HWND>(lParam));
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
    case WM_HSCROLL: {
      auto* context = reinterpret_cast<AppContext*>(GetWindowLongA(dialog, DWL_USER));
      return IsContextUsable(context) ? Handle(dialog, context, message, wParam, lParam) : 1;
    }
    default: return 0;
  }
}

}  // namespace kv
