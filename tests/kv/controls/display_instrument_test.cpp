// The display instrument as a window: commands, accessibility, and robustness.
#include "kv/controls/display_instrument.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <tuple>
#include <utility>

#include "kv/controls/instrument_block.h"
#include "kv/framework/accessible.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "tests/kv/controls/instrument_test.h"
#include "tests/support/scarce_objects.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::GuardedBytes;

constexpr float kInfinite = std::numeric_limits<float>::infinity();

class DisplayInstrument : public InstrumentTest {};

TEST_F(DisplayInstrument, EveryModeStartsWithItsDefaults) {
  // Mode, range, unit, then format and name after creation and after a reset.
  using Defaults = std::tuple<DWORD, float, float, std::string, int, std::string, int, std::string>;
  const Defaults cases[] = {{0, 0, 100, "%", 0, "Relative", 0, "Relative"},
                            {9, 0, 100, "%", 0, "Relative", 0, "Relative"},
                            {2, 0, 100, "%", 0, "Relative", 0, "Relative"},
                            {4, -360, 360, "\xB0", 1, "Heading", 1, "Compass"},
                            {5, -100, 100, "%", 0, "Relative", 1, "Compass"}};
  for (const Defaults& expected : cases) {
    const DWORD mode = std::get<0>(expected);
    HWND control = Create(mode);
    const InstrumentBlock block = BlockOf(control);
    SetValue(control, 20, 0);
    EXPECT_EQ(0, Send(control, kCommandReset, nullptr));
    const InstrumentBlock reset = BlockOf(control);
    EXPECT_EQ(expected, Defaults(mode, reset.minimum, block.maximum, reset.szUnit, block.format, block.szName,
                                 reset.format, reset.szName));
    EXPECT_EQ(0.0f, reset.current);
    EXPECT_EQ(0.0f, Record(control).target);
  }
}

TEST_F(DisplayInstrument, ExchangesStayWithinTheOwnersMemory) {
  HWND control = Create(kModeDigital | kInstrumentShowTime);
  const std::pair<WPARAM, size_t> items[] = {
      {kCommandStyle, 4}, {kCommandBlock, 512}, {kCommandTime, 16}, {kCommandZone, 20}, {kCommandValue, 4}};
  for (const auto& [code, size] : items) {
    GuardedBytes exact(size), shortOne(size - 1);
    memset(exact.data(), 0xEE, size);
    memset(shortOne.data(), 0xEE, size - 1);
    EXPECT_EQ(0, Send(control, code | kCommandRead, exact.data()));
    EXPECT_NE(0, memcmp(exact.data(), std::string(size, '\xEE').data(), size)) << code;
    EXPECT_EQ(0, Send(control, code | kCommandRead, shortOne.data()));
    EXPECT_EQ('\xEE', *shortOne.as<char>());
    exact.MakeReadOnly();
    EXPECT_EQ(0, Send(control, code | kCommandRead, exact.data()));
    const InstrumentState before = Record(control);
    EXPECT_EQ(0, Send(control, code | kCommandRedraw, shortOne.data()));
    EXPECT_EQ(0, Send(control, code | kCommandRedraw, nullptr));
    if (code == kCommandValue) break;  // an unreadable address means "no value"
    EXPECT_EQ(0, memcmp(&before, &Record(control), sizeof(before))) << code;
  }
  EXPECT_TRUE(BlockOf(control).state & kInstrumentNoValue);
}

TEST_F(DisplayInstrument, ValuesAreClampedAndRenderedOnlyWhenTheyChange) {
  HWND control = Create(kModeGauge);
  kvtest::PumpMessages();
  const DWORD atFirst = Renderings(control);
  // The value given and stored, the flags, and the number of renderings so far. Without redraw a value is rendered at
  // the next paint; if the old value is sent before that, it is rendered.
  const std::tuple<float, float, WPARAM, DWORD> cases[] = {{500, 100, kCommandRedraw, 1},
                                                           {500, 100, kCommandRedraw, 1},
                                                           {100, 100, kCommandRedraw, 1},
                                                           {-kInfinite, 0, kCommandRedraw, 2},
                                                           {40, 40, 0, 2},
                                                           {NAN, 40, kCommandRedraw, 3},
                                                           {40, 40, kCommandRedraw, 4}};
  for (const auto& [given, stored, flags, renderings] : cases) {
    SetValue(control, given, flags);
    EXPECT_EQ(stored, ValueOf(control));
    EXPECT_EQ(std::isnan(given), (BlockOf(control).state & kInstrumentNoValue) != 0);
    EXPECT_EQ(renderings, Renderings(control) - atFirst) << given;
  }
  for (int i = 0; i < 5; ++i) RepaintNow(control);
  for (WPARAM unknown : {2u, 4u, 16u, 21u, 255u}) Send(control, unknown | kCommandRedraw, &kOrange);
  EXPECT_EQ(4u, Renderings(control) - atFirst);
  Send(control, kCommandRender, nullptr);
  EXPECT_EQ(5u, Renderings(control) - atFirst);
}

TEST_F(DisplayInstrument, StyleTimeZoneAndBlockCommands) {
  HWND control = Create(kModeDigital);
  const auto style = [&] { return Read<DWORD>(control, kCommandStyle) & ~(WS_CHILD | WS_VISIBLE); };
  const DWORD bits = kInstrumentShowTime | kInstrumentNoCaption;
  const SYSTEMTIME time{2000, 1, 0, 2, 3, 4, 5, 6};
  EXPECT_GT(Record(control).time.wYear, time.wYear);  // the time of creation
  Send(control, kCommandTime, &time);                 // rejected: not yet a clock
  EXPECT_EQ(0, Read<SYSTEMTIME>(control, kCommandTime).wYear);
  EXPECT_GT(Record(control).time.wYear, time.wYear);
  Send(control, kCommandStyle, &bits);
  EXPECT_EQ(kModeDigital | bits, style());
  Send(control, kCommandTime | kCommandRedraw, &time);
  EXPECT_EQ(6, Read<SYSTEMTIME>(control, kCommandTime).wMilliseconds);
  EXPECT_STREQ("03.04.05", Record(control).szText);
  const DWORD renderings = Renderings(control);
  for (const auto& [command, item] : {std::pair<WPARAM, const void*>{kCommandTime, &time}, {kCommandStyle, &bits}}) {
    Send(control, command | kCommandRedraw, item);
    EXPECT_EQ(renderings, Renderings(control));
  }
  Send(control, kCommandStyle | kCommandRemove, &bits);
  EXPECT_EQ(kModeDigital, style());

  const InstrumentZone zone{-50, 5000, RGB(1, 2, 3), {1, 2, 3, 4}, 5};
  Send(control, MAKEWPARAM(kCommandZone | kZoneEnable, 9), &zone);  // the index is clamped, too
  InstrumentBlock block = BlockOf(control);
  EXPECT_EQ(std::tuple(ZoneEnabledBit(2), 0.0f, 100.0f, 5u),
            std::tuple(block.state, block.zones[2].lower, block.zones[2].upper, block.zones[2].word));
  Send(control, MAKEWPARAM(kCommandZone, 2), &zone);
  EXPECT_EQ(0u, BlockOf(control).state);

  block.current = 33;
  for (const DWORD version : {DWORD{1}, kInstrumentVersion}) {
    block.version = version;
    ValidateRect(control, nullptr);
    Send(control, kCommandBlock, &block);
    EXPECT_EQ(version != 1, GetUpdateRect(control, nullptr, FALSE) != FALSE);  // a paint is pending
    EXPECT_EQ(version == 1 ? 0.0f : 33.0f, ValueOf(control));
    EXPECT_EQ(ValueOf(control), Record(control).target);
  }
}

TEST_F(DisplayInstrument, SetTextNamesTheCompassButKeepsTheWindowText) {
  const std::string text(300, 'x');
  for (const DWORD mode : {kModeCompass, kModeGauge}) {
    HWND control = Create(mode);
    for (LPARAM address : {reinterpret_cast<LPARAM>(text.c_str()), LPARAM{0}}) {
      EXPECT_EQ(0, SendMessageA(control, WM_SETTEXT, 0, address));
      EXPECT_EQ(255u, strlen(Record(control).szText));
      EXPECT_EQ(mode == kModeCompass ? std::string(31, 'x') : "Relative", BlockOf(control).szName);
    }
    EXPECT_EQ(L"Heading", WindowText(control));
  }
}

TEST_F(DisplayInstrument, AnimatesSmallDistancesAndStopsItsTimer) {
  HWND control = Create(kModeGauge);
  SetValue(control, 50);
  SetValue(control, 60, kValueAnimate);
  EXPECT_EQ(std::tuple(50.0f, 60.0f),
            std::tuple(ValueOf(control), Read<float>(control, kCommandValue | kValueAnimate)));
  SendMessageA(control, WM_TIMER, 5, 0);
  EXPECT_FLOAT_EQ(51.0f, ValueOf(control));
  ASSERT_TRUE(kvtest::WaitUntil([&] { return Record(control).nCountdown < 20; }));
  EXPECT_GT(ValueOf(control), 59.0f);
  EXPECT_LT(ValueOf(control), 60.0f);  // not yet at the target
  // The test sends the next 20 ticks itself; the tick after them ends the animation.
  for (LONG i = Record(control).nCountdown; i >= 0; --i) {
    EXPECT_TRUE(Record(control).bAnimating);
    SendMessageA(control, WM_TIMER, 5, 0);
  }
  EXPECT_FALSE(Record(control).bAnimating);

  SetValue(control, 5, kValueAnimate);  // a large jump
  SendMessageA(control, WM_TIMER, 4, 0);
  EXPECT_LT(59.0f, ValueOf(control));
  SendMessageA(control, WM_TIMER, 5, 0);
  EXPECT_EQ(5.0f, ValueOf(control));
}

TEST_F(DisplayInstrument, CopiesItsImageInItsOwnOrAGivenSize) {
  HWND control = Create(kModeGauge, 80, 60);
  const std::tuple<UINT, LPARAM, LONG, LONG> cases[] = {
      {WM_COPY, 0, 80, 60}, {WM_COPY, MAKELPARAM(3, 9000), 16, 5120}, {WM_LBUTTONDBLCLK, MAKELPARAM(300, 300), 80, 60}};
  for (const auto& [message, lParam, width, height] : cases) {
    SendMessageA(control, message, 0, lParam);
    const SIZE size = kvtest::ClipboardBitmapSize(parent_);
    EXPECT_EQ(std::tie(width, height), std::tie(size.cx, size.cy));
  }
}

TEST_F(DisplayInstrument, WithoutStateEveryMessageReturnsOne) {
  HWND control = Create(kModeGauge);
  const LONG state = SetWindowLongA(control, GWL_USERDATA, 0);
  InvalidateRect(control, nullptr, TRUE);
  for (const UINT message : {UINT{WM_SIZE}, UINT{WM_ENABLE}, UINT{WM_SETTEXT}, UINT{WM_TIMER}, UINT{WM_COPY},
                             UINT{WM_LBUTTONDBLCLK}, UINT{WM_PAINT}, kControlCommand}) {
    EXPECT_EQ(1, SendMessageA(control, message, 5, 0)) << message;
  }
  EXPECT_FALSE(GetUpdateRect(control, nullptr, FALSE));
  SetWindowLongA(control, GWL_USERDATA, state);
  const HGLOBAL memory = Record(control).hMemory;
  EXPECT_EQ(0, SendMessageA(control, WM_CREATE, 0, 0));
  EXPECT_EQ(memory, Record(control).hMemory);  // not allocated a second time
  parent_.Answer([](HWND, UINT message, WPARAM, LPARAM, LRESULT* result) {
    *result = 4711;
    return message == WM_DROPFILES;
  });
  EXPECT_EQ(4711, SendMessageA(control, WM_DROPFILES, 0, 0));
  DestroyWindow(control);
  EXPECT_EQ(static_cast<UINT>(GMEM_INVALID_HANDLE), GlobalFlags(memory));
}

TEST_F(DisplayInstrument, ReportsNameAndValueToScreenReaders) {
  const std::tuple<DWORD, BYTE, float, const wchar_t*> cases[] = {
      {kModeGauge, 1, 42.5f, L"42.5 %"},
      {kModeCompass, 0, -90, L"270\u00B0"},
      {kModeDigital | kInstrumentShowAngle, 0, 10.25f, L"10\u00B015'00.00\"%"},
      {kModeDigital | kInstrumentShowTime, 3, 0, L"03:04"},
      {kModeCenterBar, kFormatSign, NAN, L""}};
  for (const auto& [style, format, value, text] : cases) {
    HWND control = Create(style);
    const SYSTEMTIME time{2000, 1, 0, 2, 3, 4, 5, 6};
    Send(control, kCommandTime, &time);
    InstrumentBlock block = BlockOf(control);
    block.format = format, block.current = value;
    strcpy(block.szName, "H\xC3\xB6he");
    Send(control, kCommandBlock, &block);
    EXPECT_EQ((kvtest::AccessibleProperties{L"H\u00F6he", text, 0x27}), kvtest::ReadAccessible(control)) << style;
    DestroyWindow(control);
  }
}

// A hook that is notified of a new value, or of the beginning of a paint, destroys the control. Its memory may then be
// in use again.
void DestroyAndOverwrite(HWND control) {
  DestroyWindow(control);
  for (int i = 0; i < 20; ++i) {
    memset(GlobalLock(GlobalAlloc(GHND, sizeof(InstrumentState))), 0xEE, sizeof(InstrumentState));
  }
}
void CALLBACK OnValueChange(HWINEVENTHOOK, DWORD, HWND control, LONG, LONG, DWORD, DWORD) {
  DestroyAndOverwrite(control);
}
WNDPROC ownProcedure;
LRESULT CALLBACK DestroyOnErase(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_ERASEBKGND) DestroyAndOverwrite(window);
  return CallWindowProcA(ownProcedure, window, message, wParam, lParam);
}

TEST_F(DisplayInstrument, MayBeDestroyedDuringNotifications) {
  const HWND told = Create(kModeGauge), painted = Create(kModeGauge);
  HWINEVENTHOOK hook = SetWinEventHook(EVENT_OBJECT_VALUECHANGE, EVENT_OBJECT_VALUECHANGE, GetModuleHandleA(nullptr),
                                       OnValueChange, GetCurrentProcessId(), 0, WINEVENT_INCONTEXT);
  SetValue(told, 40);
  UnhookWinEvent(hook);
  EXPECT_FALSE(IsWindow(told));
  ownProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongA(painted, GWL_WNDPROC, reinterpret_cast<LONG>(DestroyOnErase)));
  InvalidateRect(painted, nullptr, TRUE);
  UpdateWindow(painted);
  EXPECT_FALSE(IsWindow(painted));
}

// KV_REDRAWS=70000 checks for leaks over the whole GDI handle table.
TEST_F(DisplayInstrument, ManyShareResourcesAndLeakNothing) {
  // Their bitmaps, shared objects, and those that the system uses for painting.
  const kvtest::ScarceObjects scarce(200 + 50 + 250);
  HWND controls[200];
  for (int i = 0; i < 200; ++i) controls[i] = Create(kModes[i % 5], 30 + i, 30 + i * 7 % 200);
  SIZE_T before = 0;
  for (int i = 0, count = RedrawCount(1000); i < count; ++i) {
    SetValue(controls[i % 200], static_cast<float>(i % 90));
    if (i % 4 == 0) Send(controls[i % 200], kCommandRender, nullptr);  // the background layer, too
    ASSERT_TRUE(Record(controls[i % 200]).hBuffer && OwnedBrush(CreateSolidBrush(RGB(1, 2, 3)))) << i;
    if (i == 400) before = kvtest::MemoryInUse();
  }
  EXPECT_LT(kvtest::MemoryInUse(), before + 4 * 1024 * 1024);
}

}  // namespace
}  // namespace kv
