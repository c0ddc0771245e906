#include "app/main_dialog_setup.h"

#include <commctrl.h>
#include <oleacc.h>

#include <utility>

#include "app/app_context.h"
#include "app/camera_link.h"
#include "app/main_dialog.h"
#include "app/main_dialog_geometry.h"
#include "app/main_dialog_layout.h"
#include "app/resource_ids.h"
#include "app/version.h"
#include "framework/accessible.h"
#include "framework/dialog.h"
#include "framework/dialog_layout.h"
#include "framework/dialog_texts.h"
#include "framework/guards.h"
#include "framework/modules.h"
#include "framework/painting.h"
#include "framework/tool_tips.h"
#include "framework/window_position.h"

namespace kv {

namespace {

#define WIDE_TEXT_(text) L##text
#define WIDE_TEXT(text) WIDE_TEXT_(text)

// The strip's images follow the common controls' standard ones.
constexpr int kStandardImages = 15, kToolbarImages = 88;
constexpr int kConnectImage = 32;
constexpr COLORREF kTransparentColor = RGB(255, 0, 255);
static_assert(sizeof(TBBUTTON) == 20);

// Tab pages show one of eight groups of controls, each with a range of ids.
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

// The strip of the toolbar's own images, on the button face as it is now.
HBITMAP LoadStrip(HWND dialog) {
  HBITMAP strip = LoadBitmapA(modules.resources, MAKEINTRESOURCEA(IDB_TOOLBAR));
  const WindowDc dc(dialog);
  ReplaceBitmapColor(dc, strip, kTransparentColor, GetSysColor(COLOR_BTNFACE));
  return strip;
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

  // The toolbar keeps using the bitmap: it lives until other colours replace it, or as long as the process.
  context->hToolbarStrip = LoadStrip(dialog);
  TBADDBITMAP own{nullptr, reinterpret_cast<UINT_PTR>(context->hToolbarStrip)};
  SendMessageA(toolbar, TB_ADDBITMAP, kToolbarImages, reinterpret_cast<LPARAM>(&own));
}

void SetUpToolTips(HWND dialog, HWND toolbar) {
  constexpr ToolTipEntry kToolbarTips[] = {{0, nullptr}, {IDM_CONNECT, L"Connect / Disconnect"}};
  constexpr ToolTipEntry kDialogTips[] = {{IDC_VERSION, WIDE_TEXT(TARNWICK_VERSION_LINE)}};
  CreateToolTips(modules.resources, toolbar, kToolbarTips, ARRAYSIZE(kToolbarTips));
  CreateToolTips(modules.resources, dialog, kDialogTips, ARRAYSIZE(kDialogTips));
}

// A status button's text alone does not say what it belongs to: screen readers get the point's marker as its name.
AccessibleText DescribeStatusButton(HWND button) {
  constexpr const wchar_t* kNames[kStatusButtonCount] = {L"Port", L"Point 1: red, round", L"Point 2: blue, square",
                                                         L"Point 3: yellow, diamond", L"Point 4: green, triangle"};
  return {kNames[GetDlgCtrlID(button) - IDC_PORT], WindowText(button)};
}

WNDPROC buttonProcedure = nullptr;

LRESULT CALLBACK StatusButtonProcedure(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_GETOBJECT) {
    return AnswerGetObject(button, wParam, lParam, ROLE_SYSTEM_PUSHBUTTON, DescribeStatusButton);
  }
  return CallWindowProcW(buttonProcedure, button, message, wParam, lParam);
}

void SetUpStatusButtons(const MainControls& controls) {
  // Quirk: a font that nothing uses; it goes with the process.
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

void SetUpPages(HWND dialog, AppContext* context) {
  HWND pages = context->controls.pages;
  SendMessageA(pages, TCM_DELETEALLITEMS, 0, 0);
  wchar_t text[] = L"Diagram";
  TCITEMW item{.mask = TCIF_TEXT | TCIF_PARAM, .pszText = text, .lParam = 0};
  SendMessageW(pages, TCM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
  SelectTabPage(dialog, context, context->nTabPage);
  SelectTabPage(dialog, context, 0);
}

}  // namespace

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
  SetUpToolTips(dialog, context->controls.toolbar);
  SetUpStatusButtons(context->controls);
  StartReader(context);
  SetUpPages(dialog, context);
  WindowPosition(dialog, kMainPositionName, kPositionRestore);
  KeepInSight(dialog, {kSmallestWidth, kSmallestHeight});
  ModelessDialogs(dialog, nullptr, kModelessAdd);
  LayOutMainDialog(dialog, context);
  BringWindowToTop(dialog);
  SetActiveWindow(dialog);
  SetTimer(dialog, kPointsTimer, kPointsPeriodMs, nullptr);
  SetTimer(dialog, kBlinkTimer, kBlinkPeriodMs, nullptr);
  return 0;
}

}  // namespace kv
