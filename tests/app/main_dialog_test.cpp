#include "app/main_dialog.h"

#include <commctrl.h>
#include <gtest/gtest.h>
#include <oleacc.h>

#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "app/app_context.h"
#include "app/resource_ids.h"
#include "camera/optical_flow_chart.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/dialog.h"
#include "kv/framework/guards.h"
#include "kv/framework/modules.h"
#include "kv/framework/painting.h"
#include "kv/framework/window_position.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::PumpMessages;

constexpr COLORREF kWhite = RGB(255, 255, 255), kMark = RGB(1, 2, 3);

class MainDialogTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    HINSTANCE instance = GetModuleHandleA(nullptr);
    modules = {.resources = instance, .application = instance};
    ASSERT_TRUE(RegisterDialogClass(instance, TRUE));
    ASSERT_TRUE(RegisterChartClass(instance, TRUE));
  }
  static void TearDownTestSuite() {
    HINSTANCE instance = GetModuleHandleA(nullptr);
    RegisterChartClass(instance, FALSE);
    RegisterDialogClass(instance, FALSE);
  }
  void SetUp() override {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\korvel");
    context_.hQuitEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    ModelessDialogs(nullptr, nullptr, kModelessReset);
    dialog_ = CreateDialogParamW(modules.resources, kMainDialogTemplate, nullptr, MainDialogProcedure,
                                 reinterpret_cast<LPARAM>(&context_));
    ASSERT_NE(nullptr, dialog_);
    ShowWindow(dialog_, SW_SHOW);
    UpdateWindow(dialog_);
  }
  void TearDown() override {
    if (GetWindowLongA(dialog_, DWL_USER)) SendMessageA(dialog_, WM_CLOSE, 0, 0);
    DestroyWindow(dialog_);
    PumpMessages();
    CloseHandle(context_.hQuitEvent);
  }

  INT_PTR Call(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    return MainDialogProcedure(dialog_, message, wParam, lParam);
  }
  std::string Text(int id) {
    char text[128] = "";
    GetDlgItemTextA(dialog_, id, text, sizeof(text));
    return text;
  }
  FlowPoints Shown() { return kvtest::Read<FlowPoints>(GetDlgItem(dialog_, IDC_CHART), kChartPoints); }
  void Arrive(LONG x, LONG y) {
    context_.points[0] = {x, y};
    context_.bChanged = TRUE;
  }
  static std::string StoredPosition() {
    char stored[64] = "";
    DWORD size = sizeof(stored);
    const RegistryKey key = RegistryKey::Open(kWindowPositionsKey);
    RegQueryValueExA(key, kMainPositionName, nullptr, nullptr, reinterpret_cast<BYTE*>(stored), &size);
    return stored;
  }
  // The background color of a status button, beside its text, or the color of another of its 60 x 16 pixels.
  COLORREF Face(int id, int x = 3, int y = 5) {
    kvtest::TestBitmap bitmap(60, 16);
    DRAWITEMSTRUCT item{.CtlType = ODT_BUTTON, .CtlID = static_cast<UINT>(id), .itemAction = ODA_DRAWENTIRE};
    item.hwndItem = GetDlgItem(dialog_, id);
    item.hDC = bitmap.dc();
    item.rcItem = {0, 0, 60, 16};
    EXPECT_EQ(1, Call(WM_DRAWITEM, id, reinterpret_cast<LPARAM>(&item)));
    return bitmap.At(x, y);
  }

  AppContext context_{};
  HWND dialog_ = nullptr;
};

TEST_F(MainDialogTest, StartsIdleWithThePageShown) {
  EXPECT_EQ(0, context_.nTabPage);
  EXPECT_EQ(-1, context_.nPort);
  EXPECT_EQ(INVALID_HANDLE_VALUE, context_.hPort);
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(context_.hConnectEvent, 0)) << "is initially signaled";
  EXPECT_EQ("---", Text(IDC_PORT));
  EXPECT_TRUE(IsWindowVisible(GetDlgItem(dialog_, IDC_CHART)));
  EXPECT_GT(context_.layout[0].width, 500);
  HWND toolbar = GetDlgItem(dialog_, IDC_TOOLBAR);
  TBBUTTON button{};
  EXPECT_EQ(2, SendMessageA(toolbar, TB_BUTTONCOUNT, 0, 0));
  SendMessageA(toolbar, TB_GETBUTTON, 1, reinterpret_cast<LPARAM>(&button));
  EXPECT_EQ(std::tuple(32, IDM_CONNECT), std::tuple(button.iBitmap, button.idCommand));
  EXPECT_EQ(1, SendDlgItemMessageA(dialog_, IDC_PAGES, TCM_GETITEMCOUNT, 0, 0));
}

TEST_F(MainDialogTest, NewPointsReachTheChartOnceUnlessPaused) {
  Arrive(100, 200);
  Call(WM_TIMER, kPointsTimer);
  EXPECT_EQ(100, Shown().points[0].x);
  EXPECT_EQ(0u, context_.bChanged);
  EXPECT_EQ("-", Text(IDC_POINT_1)) << "no numbers without a port";

  context_.nPort = 7;
  Call(WM_COMMAND, IDM_PAUSE);
  Arrive(300, 400);
  Call(WM_TIMER, kPointsTimer);
  EXPECT_EQ(100, Shown().points[0].x) << "the chart does not change while paused";
  EXPECT_EQ(1u, context_.bChanged);
  EXPECT_EQ("300,400", Text(IDC_POINT_1)) << "the numbers do while paused";

  Call(WM_COMMAND, IDM_PAUSE);
  Call(WM_TIMER, kPointsTimer);
  EXPECT_EQ(300, Shown().points[0].x);
}

TEST_F(MainDialogTest, StatusButtonsShowTheState) {
  const COLORREF idle = Face(IDC_PORT);
  EXPECT_GT(GetBValue(idle), GetRValue(idle) + 60) << "blue";
  context_.hPort = CreateEventA(nullptr, TRUE, FALSE, nullptr);  // any handle that may be closed
  const COLORREF running = Face(IDC_PORT);
  EXPECT_NE(kWhite, Face(IDC_PORT, 48, 8));
  EXPECT_GT(GetGValue(running), GetRValue(running) + 60) << "green";
  EXPECT_EQ(idle, Face(IDC_POINT_1));
  Call(WM_COMMAND, IDM_PAUSE);
  const COLORREF paused = Face(IDC_PORT);
  EXPECT_GT(GetRValue(paused), GetBValue(paused) + 60) << "amber";
  Call(WM_TIMER, kBlinkTimer);
  EXPECT_NE(paused, Face(IDC_PORT)) << "blinks while paused";
  EXPECT_EQ(kWhite, Face(IDC_PORT, 48, 8)) << "a mark, for users who cannot distinguish amber from green";
  EXPECT_EQ(idle, Face(IDC_POINT_2)) << "the points do not blink";
  Call(WM_TIMER, kBlinkTimer);
  EXPECT_EQ(paused, Face(IDC_PORT));
  EXPECT_EQ(reinterpret_cast<INT_PTR>(GetStockObject(NULL_BRUSH)),
            Call(WM_CTLCOLORBTN, 0, reinterpret_cast<LPARAM>(GetDlgItem(dialog_, IDC_PORT))))
      << "erasing them would flicker";
  const HWND point = GetDlgItem(dialog_, IDC_POINT_3);
  SetWindowTextW(point, L"7,8");
  EXPECT_EQ((kvtest::AccessibleProperties{L"Point 3: yellow, diamond", L"7,8", ROLE_SYSTEM_PUSHBUTTON}),
            kvtest::ReadAccessible(point));
}

TEST_F(MainDialogTest, CommandsWork) {
  for (const auto& [command, selection] : {std::pair(32773, 5), {33767, 999}, {33768, 999}, {IDM_RESERVED, 999}}) {
    Call(WM_COMMAND, static_cast<WPARAM>(command));
    EXPECT_EQ(selection, context_.nMenuSelection) << command;
  }

  Call(WM_HSCROLL, 0, reinterpret_cast<LPARAM>(GetDlgItem(dialog_, IDC_CHART)));
  EXPECT_EQ(0u, context_.bChanged);
  HWND nameless = kvtest::CreateControl(dialog_, "SCROLLBAR", "", 0, {0, 0, 10, 10}, -1);
  Call(WM_HSCROLL, 0, reinterpret_cast<LPARAM>(nameless));
  EXPECT_EQ(1u, context_.bChanged);

  MSG message;
  while (PeekMessageA(&message, dialog_, WM_CLOSE, WM_CLOSE, PM_REMOVE)) {
  }
  Call(WM_COMMAND, IDM_CLOSE);
  EXPECT_TRUE(PeekMessageA(&message, dialog_, WM_CLOSE, WM_CLOSE, PM_REMOVE));
}

TEST_F(MainDialogTest, EnterNeverClosesAndTabMovesTheFocus) {
  SetForegroundWindow(dialog_);
  SetFocus(GetDlgItem(dialog_, IDC_PORT));
  std::set<int> visited;
  for (int i = 0; i < 12; ++i) {
    MSG tab{.hwnd = GetFocus(), .message = WM_KEYDOWN, .wParam = VK_TAB};
    EXPECT_TRUE(ModelessDialogs(nullptr, &tab, kModelessDispatch));
    visited.insert(GetDlgCtrlID(GetFocus()));
  }
  for (const int id : {IDC_PAGES, IDC_PORT, IDC_POINT_1, IDC_POINT_4}) EXPECT_TRUE(visited.contains(id)) << id;

  MSG enter{.hwnd = GetDlgItem(dialog_, IDC_PAGES), .message = WM_KEYDOWN, .wParam = VK_RETURN};
  SetFocus(enter.hwnd);
  EXPECT_TRUE(ModelessDialogs(nullptr, &enter, kModelessDispatch));
  PumpMessages();
  EXPECT_TRUE(IsWindowVisible(dialog_));
  EXPECT_NE(0, GetWindowLongA(dialog_, DWL_USER));
}

TEST_F(MainDialogTest, LayoutFillsTheWindowAtEverySize) {
  for (const SIZE size : {SIZE{412, 412}, SIZE{1000, 500}, SIZE{500, 900}}) {
    SetWindowPos(dialog_, nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER);
    const SIZE client = ClientSize(dialog_);
    const auto place = [&](int id) { return kvtest::PlaceOf(dialog_, id); };
    const RECT chart = place(IDC_CHART), tab = place(IDC_PAGES), bar = place(IDC_STATUS_BAR), port = place(IDC_POINT_4);
    EXPECT_EQ(std::tuple(client.cy, client.cy - 1), std::tuple(bar.bottom, port.bottom));
    EXPECT_GE(port.left, bar.left);
    EXPECT_TRUE(tab.left < chart.left && tab.right > chart.right && tab.bottom > chart.bottom);
    EXPECT_LE(tab.bottom, bar.top);
    EXPECT_NEAR(context_.fScaleX, static_cast<double>(client.cx) / context_.layout[0].width, 0.001);
  }
  RECT tooSmall{100, 100, 200, 200};
  EXPECT_EQ(1, Call(WM_SIZING, WMSZ_BOTTOMRIGHT, reinterpret_cast<LPARAM>(&tooSmall)));
  EXPECT_EQ(std::tuple(512, 512), std::tuple(tooSmall.right, tooSmall.bottom));
}

TEST_F(MainDialogTest, RejectsAnInvalidContextInEveryHandler) {
  kvtest::GuardedBytes cut(sizeof(AppContext) - 1);
  const LONG record = SetWindowLongA(dialog_, DWL_USER, reinterpret_cast<LONG>(cut.data()));
  for (const UINT message : {WM_SIZE, WM_PAINT, WM_CLOSE, WM_DRAWITEM, WM_NOTIFY, WM_COMMAND, WM_TIMER, WM_HSCROLL}) {
    EXPECT_EQ(1, Call(message, 1, 0)) << message;
  }
  EXPECT_EQ(1, Call(WM_INITDIALOG, 0, 0));
  SetWindowLongA(dialog_, DWL_USER, record);
  EXPECT_EQ(1, Call(WM_DRAWITEM, 0, 1)) << "unreadable item";
  EXPECT_EQ(0, Call(WM_NOTIFY, 0, 1)) << "unreadable notification";
}

TEST_F(MainDialogTest, CloseAndEndSessionSaveAndCloseStopsTheReader) {
  SetWindowPos(dialog_, nullptr, 30, 40, 700, 600, SWP_NOZORDER);
  lstrcpyW(context_.szDataFolder, L"C:\\data");
  Call(WM_ENDSESSION, FALSE);
  EXPECT_EQ("", StoredPosition()) << "another program has refused";
  Call(WM_ENDSESSION, TRUE);
  EXPECT_EQ("30,40,730,640", StoredPosition());
  AppContext next{};
  DataFolderSetting(&next, FALSE);
  EXPECT_STREQ(L"C:\\data", next.szDataFolder);

  SetWindowPos(dialog_, nullptr, 31, 40, 700, 600, SWP_NOZORDER);
  HANDLE thread = nullptr;
  DuplicateHandle(GetCurrentProcess(), context_.hReaderThread, GetCurrentProcess(), &thread, 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  PumpMessages();
  EXPECT_EQ(1, Call(WM_CLOSE));
  MSG quit{};
  EXPECT_TRUE(PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, 0));
  CloseHandle(thread);
  EXPECT_EQ(0, GetWindowLongA(dialog_, DWL_USER));
  EXPECT_TRUE(IsWindow(dialog_)) << "ends with the process";
  EXPECT_EQ("31,40,731,640", StoredPosition());
}

TEST_F(MainDialogTest, BackgroundIsClippedAroundTheControls) {
  for (const int id : {IDC_CHART, IDC_STATUS_BAR, IDC_PORT, IDC_POINT_4}) {
    HWND control = GetDlgItem(dialog_, id);
    const WindowDc dc(control);
    SIZE size = ClientSize(control);
    FillSolid(dc, {0, 0, size.cx, size.cy}, kMark);
    RedrawWindow(dialog_, nullptr, nullptr, RDW_INVALIDATE | RDW_NOCHILDREN);
    Call(WM_PAINT);
    EXPECT_EQ(kMark, GetPixel(dc, size.cx - 6, 5)) << id;
  }
  const WindowDc dc(dialog_);
  const OwnedRegion left(CreateRectRgn(0, 0, 0, 0));
  EXPECT_EQ(0, GetClipRgn(dc, left)) << "the class's device context would paint the next size around it";
}

TEST_F(MainDialogTest, FollowsNewSystemColors) {
  const INT element = COLOR_BTNFACE;
  const COLORREF before = GetSysColor(element), after = RGB(32, 48, 64);
  SetSysColors(1, &element, &after);
  Call(WM_SYSCOLORCHANGE);
  UpdateWindow(dialog_);
  const WindowDc dc(dialog_);
  EXPECT_EQ(after, GetPixel(dc, ClientSize(dialog_).cx - 20, 10)) << "the toolbar's background";
  const MemoryDc strip(dc);
  const SelectedObject selected(strip, context_.hToolbarStrip);
  EXPECT_EQ(after, GetPixel(strip, 0, 0)) << "the background of its images";
  SetSysColors(1, &element, &before);
}

}  // namespace
}  // namespace kv
