#include "kv/controls/simple_bitmap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr int kBitmapId = 0x7003;
constexpr COLORREF kRed = RGB(255, 0, 0), kGreen = RGB(0, 255, 0), kBlue = RGB(0, 0, 255), kMagenta = RGB(255, 0, 255);
constexpr RECT kBeneath{60, 40, 90, 60};  // a position under the center of the bitmap

HBITMAP Stored(HWND control) {
  return reinterpret_cast<HBITMAP>(GetWindowLongA(control, GWL_USERDATA));
}

std::string SizeTextOf(SIZE size) {
  return std::to_string(size.cx) + "x" + std::to_string(size.cy);
}

std::string StoredSize(HWND control) {
  BITMAP shape{};
  const bool holds = GetObjectA(Stored(control), sizeof(shape), &shape) != 0;
  return holds ? SizeTextOf({shape.bmWidth, shape.bmHeight}) : "none";
}

LRESULT SetText(HWND control, const void* text) {
  return SendMessageA(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
}

// The control is at (20, 20)-(120, 80) of its parent, with the mouse above its center.
class SimpleBitmap : public kvtest::ControlTest<RegisterSimpleBitmapClass> {
 protected:
  SimpleBitmap() {
    POINT middle{70, 50};
    ClientToScreen(parent_, &middle);
    SetCursorPos(middle.x, middle.y);
  }
  static void TearDownTestSuite() {
    SetCursorPos(0, 0);
    ControlTest::TearDownTestSuite();
  }

  HWND Create(const char* text, DWORD style = 0) {
    return CreateControl(parent_, kSimpleBitmapClass, text, style, {20, 20, 120, 80}, kBitmapId);
  }
  // The codes of the notifications posted to the parent since the last call.
  std::vector<int> TakeNotifications() {
    kvtest::PumpMessages();
    std::vector<int> codes;
    for (const kvtest::SeenMessage& seen : parent_.seen()) {
      if (seen.message == WM_COMMAND && LOWORD(seen.wParam) == kBitmapId) codes.push_back(HIWORD(seen.wParam));
    }
    parent_.seen().clear();
    return codes;
  }
};

TEST_F(SimpleBitmap, NumbersInThreeBasesAndNamesSelectTheResource) {
  const std::pair<const char*, const char*> cases[] = {
      {"101", "4x4"}, {"0x65", "4x4"},    {"0145", "4x4"}, {"BADGE", "6x3"}, {"102", "none"},
      {"", "none"},   {"absent", "none"}, {"0", "none"},   {"-1", "none"},   {"65637", "none"}};
  for (const auto& [text, size] : cases) {
    HWND control = Create(text);
    EXPECT_EQ(size, StoredSize(control)) << text;
    EXPECT_TRUE(GetWindowLongA(control, GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
    EXPECT_EQ(DLGC_STATIC, SendMessageA(control, WM_GETDLGCODE, 0, 0));
    const bool isNumber = std::strtoul(text, nullptr, 0) != 0;  // a number is no accessible name
    EXPECT_EQ((kvtest::AccessibleProperties{isNumber ? L"" : std::wstring(text, text + std::strlen(text)), L"", 0x28}),
              kvtest::ReadAccessible(control));
  }
}

TEST_F(SimpleBitmap, StretchesTheWholeBitmapByItsStyle) {
  const std::tuple<SIZE, DWORD, SIZE> cases[] = {{{100, 60}, 0, {100, 60}},
                                                 {{100, 60}, kBitmapSquareByWidth, {60, 60}},
                                                 {{100, 60}, kBitmapSquareByHeight, {100, 60}},
                                                 {{60, 100}, kBitmapSquareByWidth, {60, 100}},
                                                 {{60, 100}, kBitmapSquareByHeight, {60, 60}},
                                                 {{100, 60}, kBitmapSquareByWidth | kBitmapSquareByHeight, {60, 60}},
                                                 {{4, 4}, kBitmapTransparent, {4, 4}}};
  for (const auto& [client, style, extent] : cases) {
    kvtest::TestBitmap bitmap(100, 100);
    DrawSimpleBitmap(bitmap.dc(), client, style, Stored(Create("101", style)));
    const COLORREF last = style == kBitmapTransparent ? GetSysColor(COLOR_BTNFACE) : kMagenta;
    for (COLORREF color : {kRed, kGreen, kBlue, last}) {
      EXPECT_EQ(extent.cx * extent.cy / 4, bitmap.CountOf(color)) << style;
    }
    EXPECT_EQ(last, bitmap.At(extent.cx - 1, extent.cy - 1));
  }
}

TEST_F(SimpleBitmap, SettingTheTextLoadsAndPaintsButKeepsTheWindowText) {
  HWND control = Create("101");
  UpdateWindow(control);
  const WindowDc dc(control);
  EXPECT_EQ(1, SetText(control, "BADGE"));
  EXPECT_EQ(RGB(255, 255, 0), GetPixel(dc, 99, 59));
  char text[16] = "";
  GetWindowTextA(control, text, ARRAYSIZE(text));
  EXPECT_STREQ("101", text);

  // 256 characters are a whole name, even without a terminator; this one is the number 0145.
  kvtest::GuardedBytes cutOff(8), unended(256);
  std::memset(cutOff.data(), '1', 8);
  std::memset(unended.data(), '0', 256);  // NOLINT(bugprone-suspicious-memset-usage): the digit is intended
  std::memcpy(unended.as<char>() + 253, "145", 3);
  EXPECT_EQ(0, SetText(control, nullptr));
  EXPECT_EQ(0, SetText(control, cutOff.data()));
  EXPECT_EQ("6x3", StoredSize(control));
  EXPECT_EQ(1, SetText(control, unended.data()));
  EXPECT_EQ("4x4", StoredSize(control));

  EXPECT_EQ(1, SetText(control, "absent"));
  EXPECT_EQ(nullptr, Stored(control));
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), GetPixel(dc, 0, 0));
}

TEST_F(SimpleBitmap, CopiesToTheClipboardInItsOwnOrAClampedSize) {
  const std::pair<LPARAM, const char*> cases[] = {
      {0x00080008, "16x16"}, {MAKELPARAM(8192, 17), "5120x17"}, {MAKELPARAM(0, 5121), "16x5120"}, {0, "4x4"}};
  HWND control = Create("101");
  for (const auto& [request, size] : cases) {
    EXPECT_EQ(0, SendMessageA(control, WM_COPY, 0, request));
    EXPECT_EQ(size, SizeTextOf(kvtest::ClipboardBitmapSize(parent_)));
  }
  EXPECT_EQ(1, SendMessageA(Create("absent"), WM_COPY, 0, 0x00400040));
  EXPECT_EQ("4x4", SizeTextOf(kvtest::ClipboardBitmapSize(parent_)));
}

TEST_F(SimpleBitmap, LeftClickClicksTheButtonBeneathOrIsReported) {
  HWND control = Create("101");
  // Not targets: a second bitmap control, a static, and controls that are hidden or elsewhere.
  Create("101");
  CreateControl(parent_, "STATIC", "behind", 0, kBeneath, 76);
  HWND button = CreateControl(parent_, "BUTTON", "hidden", 0, kBeneath, 77);
  ShowWindow(button, SW_HIDE);
  CreateControl(parent_, "BUTTON", "distant", 0, {71, 40, 90, 60}, 78);
  EXPECT_EQ(1, SendMessageA(control, WM_LBUTTONDOWN, MK_LBUTTON, 0));
  EXPECT_EQ(std::vector<int>{1}, TakeNotifications());

  ShowWindow(button, SW_SHOW);
  EXPECT_EQ(0, SendMessageA(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(50, 30)));
  EXPECT_EQ(1, std::count_if(parent_.seen().begin(), parent_.seen().end(), [](const kvtest::SeenMessage& seen) {
              return seen.message == WM_COMMAND && seen.wParam == MAKEWPARAM(77, BN_CLICKED);
            }));
  EXPECT_TRUE(TakeNotifications().empty());
}

// A sibling that records the mouse messages and commands it receives, reacts, and returns 42.
struct Probe {
  HWND window = nullptr;
  int visits = 0;
  kvtest::SeenMessage last{};
  POINT point{};
  std::function<void(Probe&)> react;

  void Create(HWND parent, const char* className) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = className;
    RegisterClassA(&windowClass);
    window = kvtest::CreateControl(parent, className, "", 0, kBeneath, 1);
    kvtest::PumpMessages();
    SetWindowLongA(window, GWL_USERDATA, reinterpret_cast<LONG>(this));
  }

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<Probe*>(GetWindowLongA(window, GWL_USERDATA));
    const bool isMouse = message >= WM_MOUSEFIRST && message <= WM_MOUSELAST;
    if (!self || !(isMouse || message == WM_COMMAND)) return DefWindowProcA(window, message, wParam, lParam);
    ++self->visits;
    self->last = {message, wParam, lParam};
    if (isMouse && message != WM_LBUTTONDBLCLK) self->point = *reinterpret_cast<POINT*>(lParam);
    if (self->react) self->react(*self);
    return 42;
  }
};

TEST_F(SimpleBitmap, MouseMessagesReachTheFirstSiblingWithThePointsAddress) {
  HWND control = Create("101");
  Probe probe, later;
  probe.Create(parent_, "kvTestEditBox");
  later.Create(parent_, "kvTestListBox");
  const std::tuple<UINT, LRESULT, std::vector<int>> cases[] = {
      {WM_LBUTTONDOWN, 42, {1}}, {WM_LBUTTONUP, 0, {}}, {WM_RBUTTONDOWN, 0, {2}}, {WM_RBUTTONUP, 0, {}},
      {WM_MBUTTONDOWN, 0, {4}},  {WM_MBUTTONUP, 0, {}}, {WM_MOUSEMOVE, 0, {}}};
  for (const auto& [message, result, notifications] : cases) {
    SetFocus(parent_);
    EXPECT_EQ(result, SendMessageA(control, message, MK_SHIFT, MAKELPARAM(1, 2)));
    EXPECT_EQ(notifications, TakeNotifications()) << message;
    EXPECT_EQ(message, probe.last.message);
    EXPECT_EQ(static_cast<WPARAM>(MK_SHIFT), probe.last.wParam);
    EXPECT_TRUE(probe.point.x == 10 && probe.point.y == 10);
    EXPECT_EQ(message == WM_LBUTTONDOWN ? static_cast<HWND>(parent_) : probe.window, GetFocus()) << message;
  }
  EXPECT_EQ(0, later.visits);
}

TEST_F(SimpleBitmap, DoubleClicksAndCommandsVisitEverySiblingUnchanged) {
  HWND control = Create("BADGE");
  Probe list, tree, label;
  list.Create(parent_, "kvTestListBox");
  tree.Create(parent_, "kvTestSysTreeView32");
  label.Create(parent_, "kvTestStatic");
  EXPECT_EQ(0, SendMessageA(control, WM_LBUTTONDBLCLK, 5, 0x00070006));
  EXPECT_EQ(std::vector<int>{0x8001}, TakeNotifications());
  EXPECT_EQ("6x3", SizeTextOf(kvtest::ClipboardBitmapSize(parent_)));
  EXPECT_EQ(0x00070006, tree.last.lParam);
  EXPECT_EQ(0, SendMessageA(control, WM_COMMAND, 6, 0));
  EXPECT_EQ(6u, tree.last.wParam);
  EXPECT_EQ((std::tuple{2, 2, 0}), std::tuple(list.visits, tree.visits, label.visits));
}

TEST_F(SimpleBitmap, SiblingsMayReorderOrDestroyEachOther) {
  HWND control = Create("101");
  Probe probes[4];
  for (Probe& probe : probes) probe.Create(parent_, "kvTestEditBox");
  int visits = 0;
  const auto visitsWhen = [&](std::function<void(Probe&)> react) {
    visits = 0;
    for (Probe& probe : probes) probe.react = [&](Probe& self) { ++visits < 100 ? react(self) : void(); };
    EXPECT_EQ(1, ForwardMouseMessage(control, WM_COMMAND, 0, 0));
    return visits;
  };
  // Each raises itself: following the current z-order would never end.
  EXPECT_EQ(4, visitsWhen([](Probe& self) { BringWindowToTop(self.window); }));
  EXPECT_EQ(1, visitsWhen([&](Probe& self) {
              for (Probe& probe : probes) &probe != &self&& DestroyWindow(probe.window);
            }));
  // The last one destroys the bitmap control that was clicked: nothing is reported.
  for (Probe& probe : probes) probe.react = [&](Probe&) { DestroyWindow(control); };
  EXPECT_EQ(42, SendMessageA(control, WM_LBUTTONDOWN, 0, 0));
  EXPECT_TRUE(TakeNotifications().empty());
}

}  // namespace
}  // namespace kv
