#include "app/main_dialog.h"

#include <commctrl.h>
#include <oleacc.h>

#include <algorithm>
#include <cwchar>
#include <utility>

#include "app/app_context.h"
#include "app/camera_link.h"
#include "app/main_dialog_layout.h"
#include "app/resource_ids.h"
#include "camera/camera_record.h"
#include "camera/optical_flow_chart.h"
#include "kv/export/web_links.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/control_class.h"
#include "kv/framework/dialog.h"
#include "kv/framework/dialog_layout.h"
#include "kv/framework/dialog_texts.h"
#include "kv/framework/guards.h"
#include "kv/framework/modules.h"
#include "kv/framework/painting.h"
#include "kv/framework/tooltips.h"
#include "kv/framework/version.h"
#include "kv/framework/window_position.h"

namespace kv {

namespace {

// ---- Set-up ---------------------------------------------------------------------------------------------------------

// The text of the about box.
#define TARNWICK_VERSION_LINE KV_VERSION_TEXT " " KV_VERSION_DATE " Copyright (c) 2008 korvel"
#define WIDE_TEXT_(text) L##text
#define WIDE_TEXT(text) WIDE_TEXT_(text)

constexpr UINT kAboutItem = 0x9000;  // of the system menu; the system uses the low four bits
// The strip's images follow the standard images of the common controls.
constexpr int kStandardImages = 15, kToolbarImages = 88;
constexpr int kConnectImage = 32;
constexpr COLORREF kTransparentColor = RGB(255, 0, 255);
static_assert(sizeof(TBBUTTON) == 20);

// Each tab page shows one of eight groups of controls, each with a range of ids.
constexpr int kTabGroups = 8;
constexpr int TabGroupFirst(int group) {
  return 1100 + 100 * group;
}
constexpr int TabGroupLast(int group) {
  return TabGroupFirst(group);
}

MainControls FindControls(HWND dialog) {
  MainControls controls{
      .toolbar = GetDlgItem(dialog, IDC_TOOLBAR),
      .chart = GetDlgItem(dialog, IDC_CHART),
      .pages = GetDlgItem(dialog, IDC_PAGES),
      .statusBar = GetDlgItem(dialog, IDC_STATUS_BAR),
      .statusButtons = {},
  };
  for (int i = 0; i < kStatusButtonCount; ++i) controls.statusButtons[i] = GetDlgItem(dialog, IDC_PORT + i);
  return controls;
}

// Loads the strip of the toolbar's images on the present color of buttons.
HBITMAP LoadStrip(HWND dialog) {
  HBITMAP strip = LoadBitmapA(modules.resources, MAKEINTRESOURCEA(IDB_TOOLBAR));
  const WindowDc dc(dialog);
  ReplaceBitmapColor(dc, strip, kTransparentColor, GetSysColor(COLOR_BTNFACE));
  return strip;
}

// Replaces the toolbar's images after a change of the system colors.
void RefreshToolbarImages(HWND dialog, AppContext* context) {
  HBITMAP strip = LoadStrip(dialog);
  TBREPLACEBITMAP change{nullptr, reinterpret_cast<UINT_PTR>(context->hToolbarStrip), nullptr,
                         reinterpret_cast<UINT_PTR>(strip), kToolbarImages};
  if (!SendMessageA(context->controls.toolbar, TB_REPLACEBITMAP, 0, reinterpret_cast<LPARAM>(&change))) {
    DeleteObject(strip);
    return;
  }
  DeleteObject(std::exchange(context->hToolbarStrip, strip));
}

void SetUpToolbar(HWND dialog, AppContext* context) {
  HWND toolbar = context->controls.toolbar;
  SendMessageA(toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  const TBBUTTON buttons[] = {
      {.iBitmap = 0, .idCommand = -1, .fsState = TBSTATE_ENABLED, .fsStyle = TBSTYLE_SEP},
      {.iBitmap = kConnectImage, .idCommand = IDM_CONNECT, .fsState = TBSTATE_ENABLED, .fsStyle = TBSTYLE_CHECK},
  };
  SendMessageA(toolbar, TB_ADDBUTTONS, ARRAYSIZE(buttons), reinterpret_cast<LPARAM>(buttons));

  TBADDBITMAP standard{HINST_COMMCTRL, IDB_STD_LARGE_COLOR};
  SendMessageA(toolbar, TB_ADDBITMAP, kStandardImages, reinterpret_cast<LPARAM>(&standard));

  // The toolbar uses the bitmap until the next change of colors or the end of the process.
  context->hToolbarStrip = LoadStrip(dialog);
  TBADDBITMAP own{nullptr, reinterpret_cast<UINT_PTR>(context->hToolbarStrip)};
  SendMessageA(toolbar, TB_ADDBITMAP, kToolbarImages, reinterpret_cast<LPARAM>(&own));
}

// Beside the commands of the window, because the dialog has no menu bar.
void SetUpSystemMenu(HWND dialog) {
  const HMENU menu = GetSystemMenu(dialog, FALSE);
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(menu, MF_STRING, kAboutItem, L"About Tarnwick...");
}

void SetUpTooltips(HWND dialog, HWND toolbar) {
  constexpr TooltipEntry kToolbarTips[] = {{0, nullptr}, {IDM_CONNECT, L"Connect / Disconnect"}};
  constexpr TooltipEntry kDialogTips[] = {{IDC_VERSION, WIDE_TEXT(TARNWICK_VERSION_LINE)}};
  CreateTooltips(modules.resources, toolbar, kToolbarTips, ARRAYSIZE(kToolbarTips));
  CreateTooltips(modules.resources, dialog, kDialogTips, ARRAYSIZE(kDialogTips));
}

// Screen readers get the point's marker as the button's name, because the button's text is only its value.
AccessibleText DescribeStatusButton(HWND button) {
  constexpr const wchar_t* kNames[kStatusButtonCount] = {L"Port", L"Point 1: red, round", L"Point 2: blue, square",
                                                         L"Point 3: yellow, diamond", L"Point 4: green, triangle"};
  return {kNames[GetDlgCtrlID(button) - IDC_PORT], WindowText(button)};
}

WNDPROC buttonProcedure = nullptr;

LRESULT CALLBACK StatusButtonProcedure(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_GETOBJECT) {
    return HandleGetObject(button, wParam, lParam, ROLE_SYSTEM_PUSHBUTTON, DescribeStatusButton);
  }
  return CallWindowProcW(buttonProcedure, button, message, wParam, lParam);
}

void SetUpStatusButtons(const MainControls& controls) {
  // Quirk: a font that is not used, freed with the process.
  CreateFontA(26, 11, 0, 0, FW_SEMIBOLD, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_TT_PRECIS, CLIP_DEFAULT_PRECIS,
              DEFAULT_QUALITY, VARIABLE_PITCH | FF_SWISS, "Arial");
  for (HWND button : controls.statusButtons) {
    SendMessageA(button, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(SYSTEM_FONT)), TRUE);
    buttonProcedure =
        reinterpret_cast<WNDPROC>(SetWindowLongW(button, GWL_WNDPROC, reinterpret_cast<LONG>(StatusButtonProcedure)));
  }
}

void StartReader(AppContext* context) {
  context->hConnectEvent = CreateEventA(nullptr, TRUE, TRUE, nullptr);
  context->hReaderThread = CreateThread(nullptr, 0, CameraReaderThread, context, 0, &context->dwReaderThreadId);
  SetThreadPriority(context->hReaderThread, THREAD_PRIORITY_NORMAL);
}

// Shows the controls of a tab page and hides those of the others. Does nothing for the current page.
void SelectTabPage(HWND dialog, AppContext* context, int page) {
  if (page == context->nTabPage) return;
  context->nTabPage = page;
  HWND pages = context->controls.pages;
  SendMessageA(pages, TCM_SETCURSEL, page, 0);
  TCITEMW item{.mask = TCIF_PARAM};
  const bool read = SendMessageW(pages, TCM_GETITEMW, page, reinterpret_cast<LPARAM>(&item)) != 0;
  context->nTabGroup = read ? static_cast<DWORD>(item.lParam) & (kTabGroups - 1) : 0;
  for (int group = 0; group < kTabGroups; ++group) {
    const int show = group == static_cast<int>(context->nTabGroup) ? SW_SHOW : SW_HIDE;
    for (int id = TabGroupFirst(group); id <= TabGroupLast(group); ++id) ShowWindow(GetDlgItem(dialog, id), show);
  }
  DrawMenuBar(dialog);
  InvalidateRect(pages, nullptr, TRUE);
  UpdateWindow(dialog);
}

void SetUpPages(HWND dialog, AppContext* context) {
  HWND pages = context->controls.pages;
  SendMessageA(pages, TCM_DELETEALLITEMS, 0, 0);
  wchar_t text[] = L"Diagram";
  TCITEMW item{.mask = TCIF_TEXT | TCIF_PARAM, .pszText = text, .lParam = 0};
  SendMessageW(pages, TCM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
  SelectTabPage(dialog, context, context->nTabPage);
  SelectTabPage(dialog, context, 0);
}

// WM_INITDIALOG: stores the context, prepares all controls, starts the reader thread and the timers, and restores the
// window's position. Returns 0 (the focus is set here), or 1 for an unusable context.
INT_PTR SetUpMainDialog(HWND dialog, AppContext* context) {
  if (!IsContextUsable(context)) return 1;
  SetWindowLongA(dialog, DWL_USER, reinterpret_cast<LONG>(context));
  context->hDlg = dialog;
  SetDialogTexts(dialog, modules.resources, kMainDialogTemplate);
  context->fScaleX = context->fScaleY = 1.0f;
  context->nPort = -1;
  context->hPort = INVALID_HANDLE_VALUE;
  context->nTabPage = -1;
  context->controls = FindControls(dialog);
  for (HWND button : context->controls.statusButtons) SetWindowTextW(button, L"---");
  CaptureLayout(dialog, context->layout, kScaledIdFirst, kScaledIdLast);
  SetUpToolbar(dialog, context);
  SetUpTooltips(dialog, context->controls.toolbar);
  SetUpSystemMenu(dialog);
  SetUpStatusButtons(context->controls);
  StartReader(context);
  SetUpPages(dialog, context);
  WindowPosition(dialog, kMainPositionName, kPositionRestore);
  KeepInSight(dialog, {kMinWidth, kMinHeight});
  ModelessDialogs(dialog, nullptr, kModelessAdd);
  LayOutMainDialog(dialog, context);
  BringWindowToTop(dialog);
  SetActiveWindow(dialog);
  SetTimer(dialog, kPointsTimer, kPointsPeriodMs, nullptr);
  SetTimer(dialog, kBlinkTimer, kBlinkPeriodMs, nullptr);
  return 0;
}

bool IsPortOpen(const AppContext* context) {
  return context->hPort != INVALID_HANDLE_VALUE;
}

// Sets a text only if it differs, because the button would repaint twenty times a second. The button is asked for its
// present text, so that one set by another program is corrected at the next tick.
void ShowText(HWND button, const wchar_t* text) {
  wchar_t shown[128] = L"";
  GetWindowTextW(button, shown, ARRAYSIZE(shown));
  if (std::wcscmp(shown, text) != 0) SetWindowTextW(button, text);
}

// ---- Painting -------------------------------------------------------------------------------------------------------

INT_PTR OnSize(HWND dialog, AppContext* context, WPARAM kind) {
  // A minimized window has no client area; the next WM_SIZE has the real one.
  if (kind != SIZE_MINIMIZED) LayOutMainDialog(dialog, context);
  return 0;
}

RECT RectInDialog(HWND dialog, HWND control) {
  RECT rect{};
  GetWindowRect(control, &rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

void ExcludeChild(HDC dc, HWND dialog, HWND control) {
  if (!IsWindowVisible(control)) return;
  const RECT rect = RectInDialog(dialog, control);
  ExcludeClipRect(dc, rect.left, rect.top, rect.right, rect.bottom);
}

INT_PTR OnPaint(HWND dialog, const AppContext* context) {
  const PaintScope paint(dialog);
  const MainControls& controls = context->controls;
  // The dialog's style does not clip its children, so they are excluded here. The device context belongs to the window
  // class, which would retain the clipping.
  const int saved = SaveDC(paint.dc());
  ExcludeChild(paint.dc(), dialog, controls.chart);
  ExcludeChild(paint.dc(), dialog, controls.statusBar);
  for (HWND button : controls.statusButtons) ExcludeChild(paint.dc(), dialog, button);
  const SIZE client = ClientSize(dialog);
  const SIZE design{context->layout[0].width, context->layout[0].height};
  PaintMainBackground(paint.dc(), client,
                      ShapeBackground(client, design, ToolbarHeight(controls), StatusHeight(controls),
                                      RectInDialog(dialog, controls.pages)));
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

// The status buttons paint their whole area; erasing before each repaint would make them flicker.
INT_PTR OnButtonColor(HWND button) {
  const int id = GetDlgCtrlID(button);
  return id >= IDC_PORT && id <= IDC_POINT_4 ? reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH)) : 0;
}

// ---- Commands -------------------------------------------------------------------------------------------------------

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
  // The scan blocks this thread for a while: show the cleared buttons and a wait cursor first.
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
    // Quirk: would move the focus in a dialog with a parent; here it only keeps Enter from closing the dialog.
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

INT_PTR OnSystemCommand(HWND dialog, WPARAM command) {
  if ((command & 0xFFF0) != kAboutItem) return 0;
  MessageBoxA(dialog, "Tarnwick " TARNWICK_VERSION_LINE, "About Tarnwick", MB_ICONINFORMATION);
  return 1;
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

// ---- Timers ---------------------------------------------------------------------------------------------------------

void HandPointsToChart(AppContext* context) {
  FlowPoints exchange{.mask = 15};
  for (int i = 0; i < kPointCount; ++i) exchange.points[i] = context->points[i];
  // Cleared after the copy: a change in between is shown with the next record.
  context->bChanged = FALSE;
  SendMessageA(context->controls.chart, CHART_CMD, kCommandRedraw | kChartPoints, reinterpret_cast<LPARAM>(&exchange));
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
  // Quirk: the last button is not included and never blinks.
  for (int i = 0; i < kStatusButtonCount - 1; ++i) RepaintWithoutChildren(context->controls.statusButtons[i]);
}

INT_PTR OnTimer(AppContext* context, UINT_PTR timer) {
  if (timer == kPointsTimer) OnPointsTimer(context);
  if (timer == kBlinkTimer) OnBlinkTimer(context);
  return 0;
}

// ---- Shutdown -------------------------------------------------------------------------------------------------------

// See app/camera_link.h for the order.
void StopReader(AppContext* context) {
  constexpr DWORD kTimeoutMs = 1000;
  SetEvent(context->hConnectEvent);
  ClosePort(context);
  SetEvent(context->hQuitEvent);
  if (WaitForSingleObject(context->hReaderThread, kTimeoutMs) == WAIT_TIMEOUT) {
    TerminateThread(context->hReaderThread, 1);
  }
  CloseHandle(context->hReaderThread);
  CloseHandle(context->hConnectEvent);
}

// The process may end with the session, before WM_CLOSE or the end of the message loop.
INT_PTR OnSessionEnd(HWND dialog, AppContext* context, BOOL ends) {
  if (!ends) return 0;
  WindowPosition(dialog, kMainPositionName, kPositionSave);
  DataFolderSetting(context, TRUE);
  return 0;
}

// Common controls learn about new colors from their parent; the strip's background is one of the colors.
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
    case WM_SYSCOMMAND: return OnSystemCommand(dialog, wParam);
    case WM_CTLCOLORBTN: return OnButtonColor(reinterpret_cast<HWND>(lParam));
    case WM_SIZING:
      return LimitSizing(static_cast<UINT>(wParam), reinterpret_cast<RECT*>(lParam), kMinWidth, kMinHeight);
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
