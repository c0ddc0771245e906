// The display instrument as a window: what its owner can send, what it shows, and that it bears everything.
#include "controls/display_instrument.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

#include "controls/instrument_record.h"
#include "framework/painting.h"
#include "framework/window_record.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::GuardedBytes;

constexpr DWORD kModes[] = {kModeGauge, kModeDigital, kModeSegmentBar, kModeCompass, kModeCentreBar};
constexpr COLORREF kOrange = RGB(255, 150, 20);

// How often the costly tests repeat; the variable raises it for measurements.
int Repetitions(const char* variable, int usual) {
  const char* wanted = getenv(variable);
  return wanted ? atoi(wanted) : usual;
}

LRESULT Send(HWND control, WPARAM wParam, const void* address) {
  return SendMessageA(control, kControlCommand, wParam, reinterpret_cast<LPARAM>(address));
}

class DisplayInstrument : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(RegisterDisplayInstrumentClass(GetModuleHandleA(nullptr), TRUE));
    parent_ = new kvtest::RecordingParent(true, 700, 700);  // one for all: showing a window takes its time
  }
  static void TearDownTestSuite() {
    delete parent_;
    EXPECT_TRUE(RegisterDisplayInstrumentClass(GetModuleHandleA(nullptr), FALSE));
  }
  void TearDown() override {
    while (HWND child = GetWindow(*parent_, GW_CHILD)) DestroyWindow(child);
  }

  HWND Create(DWORD style, int width = 120, int height = 120, const char* text = "Heading") {
    return kvtest::CreateControl(*parent_, kDisplayInstrumentClass, text, style, {0, 0, width, height}, 77);
  }
  static InstrumentRecord& Record(HWND control) { return *WindowRecord<InstrumentRecord>(control); }
  static DWORD Renderings(HWND control) { return Record(control).work.renderings; }
  static InstrumentBlock BlockOf(HWND control) {
    InstrumentBlock block{};
    Send(control, kCommandBlock | kCommandRead, &block);
    return block;
  }
  static float ValueOf(HWND control) {
    float value = -1e9f;
    Send(control, kCommandValue | kCommandRead, &value);
    return value;
  }
  static void SetValue(HWND control, float value, WPARAM flags = kCommandRedraw) {
    Send(control, kCommandValue | flags, &value);
  }
  // What the control shows on the screen.
  static void Capture(HWND control, kvtest::Picture* picture) {
    kvtest::PumpMessages();
    HDC dc = GetDC(control);
    BitBlt(picture->dc(), 0, 0, picture->width(), picture->height(), dc, 0, 0, SRCCOPY);
    ReleaseDC(control, dc);
  }

  static kvtest::RecordingParent* parent_;
};

kvtest::RecordingParent* DisplayInstrument::parent_ = nullptr;

TEST_F(DisplayInstrument, EveryModeStartsWithItsDefaults) {
  struct Expected {
    DWORD mode;
    float minimum, maximum;
    BYTE format;
    const char *unit, *name, *nameAfterReset;
  };
  for (const Expected& expected : {Expected{0, 0, 100, 0, "%", "Relative", "Relative"},
                                   {9, 0, 100, 0, "%", "Relative", "Relative"},
                                   {2, 0, 100, 0, "%", "Relative", "Relative"},
                                   {4, -360, 360, 1, "\xB0", "Heading", "Compass"},
                                   {5, -100, 100, 0, "%", "Relative", "Compass"}}) {
    HWND control = Create(expected.mode);
    InstrumentBlock block = BlockOf(control);
    EXPECT_EQ(expected.minimum, block.minimum);
    EXPECT_EQ(expected.maximum, block.maximum);
    EXPECT_EQ(expected.format, block.format);
    EXPECT_STREQ(expected.unit, block.szUnit);
    EXPECT_STREQ(expected.name, block.szName);
    EXPECT_EQ(0.0f, block.current);
    SetValue(control, 20, 0);
    EXPECT_EQ(0, Send(control, kCommandReset, nullptr));
    block = BlockOf(control);
    EXPECT_STREQ(expected.nameAfterReset, block.szName);
    EXPECT_EQ(expected.format, block.format);
    EXPECT_EQ(0.0f, block.current);
    EXPECT_EQ(0.0f, Record(control).target);
    DestroyWindow(control);
  }
}

TEST_F(DisplayInstrument, RecordDescribesTheWindow) {
  HWND control = Create(kModeGauge | kInstrumentReversed, 60, 40);
  const InstrumentRecord& record = Record(control);
  EXPECT_EQ(control, record.hWnd);
  EXPECT_EQ(static_cast<HWND>(*parent_), record.hParent);
  EXPECT_EQ(77, record.nId);
  EXPECT_EQ(60, record.nWidth);
  EXPECT_EQ(WS_CHILD | kInstrumentReversed, record.dwStyle & ~WS_VISIBLE);
  EXPECT_NE(0, record.time.wYear);
  SetWindowPos(control, nullptr, 0, 0, 90, 70, SWP_NOZORDER);
  EXPECT_EQ(90, record.nWidth);
  EXPECT_EQ(70, record.nHeight);
  EnableWindow(control, FALSE);
  EXPECT_TRUE(record.dwStyle & kInstrumentDisabled);
  EnableWindow(control, TRUE);
  EXPECT_FALSE(record.dwStyle & kInstrumentDisabled);
  const HGLOBAL memory = record.hMemory;
  DestroyWindow(control);
  EXPECT_EQ(static_cast<UINT>(GMEM_INVALID_HANDLE), GlobalFlags(memory));
}

TEST_F(DisplayInstrument, ExchangesStayWithinTheOwnersMemory) {
  HWND control = Create(kModeDigital | kInstrumentShowTime);
  const struct {
    WPARAM code;
    size_t size;
  } items[] = {{kCommandStyle, 4}, {kCommandBlock, 512}, {kCommandValue, 4}, {kCommandTime, 16}, {kCommandZone, 20}};
  for (const auto& item : items) {
    GuardedBytes exact(item.size), shortOne(item.size - 1);
    memset(exact.data(), 0xEE, item.size);
    memset(shortOne.data(), 0xEE, item.size - 1);
    EXPECT_EQ(0, Send(control, item.code | kCommandRead, exact.data()));
    EXPECT_NE(0, std::memcmp(exact.data(), std::string(item.size, '\xEE').data(), item.size)) << item.code;
    EXPECT_EQ(0, Send(control, item.code | kCommandRead, shortOne.data()));
    EXPECT_EQ('\xEE', *shortOne.as<char>());
    const InstrumentRecord before = Record(control);
    EXPECT_EQ(0, Send(control, item.code | kCommandRedraw, shortOne.data()));
    EXPECT_EQ(0, Send(control, item.code | kCommandRedraw, nullptr));
    InstrumentRecord after = Record(control);
    if (item.code == kCommandValue) {
      EXPECT_TRUE(after.block.state & kInstrumentNoValue);
      SetValue(control, 1);
      continue;
    }
    EXPECT_EQ(0, memcmp(&before.block, &after.block, sizeof(before.block))) << item.code;
    EXPECT_EQ(before.dwStyle, after.dwStyle);
    EXPECT_EQ(before.work.renderings, after.work.renderings);
    exact.MakeReadOnly();
    EXPECT_EQ(0, Send(control, item.code | kCommandRead, exact.data()));
  }
  for (WPARAM code : {2u, 4u, 16u, 21u, 255u}) {
    const DWORD renderings = Renderings(control);
    EXPECT_EQ(0, Send(control, code | kCommandRedraw, reinterpret_cast<void*>(1)));
    EXPECT_EQ(renderings, Renderings(control));
  }
}

TEST_F(DisplayInstrument, ValuesAreClampedAndTellWhetherTheyChanged) {
  HWND control = Create(kModeGauge);
  kvtest::PumpMessages();
  SetValue(control, 500);
  EXPECT_EQ(100.0f, ValueOf(control));
  const DWORD renderings = Renderings(control);
  SetValue(control, 500);
  SetValue(control, 100);
  EXPECT_EQ(renderings, Renderings(control));
  SetValue(control, -std::numeric_limits<float>::infinity());
  EXPECT_EQ(0.0f, ValueOf(control));
  EXPECT_EQ(renderings + 1, Renderings(control));
  SetValue(control, 40, 0);  // without redraw: stored, shown at the next paint
  EXPECT_EQ(renderings + 1, Renderings(control));
  Send(control, kCommandRender, nullptr);
  EXPECT_EQ(renderings + 2, Renderings(control));

  SetValue(control, NAN);
  EXPECT_TRUE(BlockOf(control).state & kInstrumentNoValue);
  EXPECT_EQ(renderings + 3, Renderings(control));
  SetValue(control, 40);  // the old value again, but valid now
  EXPECT_FALSE(BlockOf(control).state & kInstrumentNoValue);
  EXPECT_EQ(renderings + 4, Renderings(control));
  // Painting alone renders nothing.
  for (int i = 0; i < 5; ++i) RepaintNow(control);
  EXPECT_EQ(renderings + 4, Renderings(control));
}

TEST_F(DisplayInstrument, StyleTimeZoneAndBlockCommands) {
  HWND control = Create(kModeDigital);
  DWORD style = 0;
  const DWORD bits = kInstrumentShowTime | kInstrumentNoCaption;
  SYSTEMTIME time{2026, 1, 0, 2, 3, 4, 5, 6}, read{};
  Send(control, kCommandTime, &time);  // not a clock yet: refused
  Send(control, kCommandTime | kCommandRead, &read);
  EXPECT_EQ(0, read.wYear);
  Send(control, kCommandStyle, &bits);
  Send(control, kCommandStyle | kCommandRead, &style);
  EXPECT_EQ(WS_CHILD | kModeDigital | bits, style & ~WS_VISIBLE);
  Send(control, kCommandTime, &time);
  Send(control, kCommandTime | kCommandRead, &read);
  EXPECT_EQ(0, memcmp(&time, &read, sizeof(time)));
  Send(control, kCommandRender, nullptr);
  EXPECT_STREQ("03.04.05", Record(control).szText);
  const DWORD renderings = Renderings(control);
  Send(control, kCommandTime | kCommandRedraw, &time);
  Send(control, kCommandStyle | kCommandRedraw, &bits);
  EXPECT_EQ(renderings, Renderings(control));
  Send(control, kCommandStyle | kCommandRemove, &bits);
  Send(control, kCommandStyle | kCommandRead, &style);
  EXPECT_EQ(WS_CHILD | kModeDigital, style & ~WS_VISIBLE);

  const InstrumentZone zone{-50, 5000, RGB(1, 2, 3), {1, 2, 3, 4}, 5};
  Send(control, MAKEWPARAM(kCommandZone | kZoneEnable, 9), &zone);  // the index is clamped as well
  InstrumentBlock block = BlockOf(control);
  EXPECT_EQ(ZoneEnabledBit(2), block.state);
  EXPECT_EQ(0.0f, block.zones[2].lower);
  EXPECT_EQ(100.0f, block.zones[2].upper);
  EXPECT_EQ(5u, block.zones[2].word);
  Send(control, MAKEWPARAM(kCommandZone, 2), &zone);
  EXPECT_EQ(0u, BlockOf(control).state);

  block.current = 33;
  block.version = 1;
  Send(control, kCommandBlock, &block);
  EXPECT_EQ(0.0f, ValueOf(control));
  block.version = kInstrumentVersion;
  Send(control, kCommandBlock, &block);
  EXPECT_EQ(33.0f, ValueOf(control));
  EXPECT_EQ(33.0f, Record(control).target);
}

TEST_F(DisplayInstrument, SetTextNamesTheCompassAndLeavesTheWindowsText) {
  HWND compass = Create(kModeCompass);
  const std::string text(300, 'x');
  EXPECT_EQ(0, SendMessageA(compass, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str())));
  EXPECT_EQ(255u, strlen(Record(compass).szText));
  EXPECT_EQ(31u, strlen(BlockOf(compass).szName));
  char own[64];
  GetWindowTextA(compass, own, sizeof(own));
  EXPECT_STREQ("Heading", own);
  EXPECT_EQ(0, SendMessageA(compass, WM_SETTEXT, 0, 0));
  EXPECT_EQ(255u, strlen(Record(compass).szText));
  HWND gauge = Create(kModeGauge);
  SendMessageA(gauge, WM_SETTEXT, 0, reinterpret_cast<LPARAM>("Speed"));
  EXPECT_STREQ("Relative", BlockOf(gauge).szName);
  EXPECT_STREQ("Speed", Record(gauge).szText);
}

TEST_F(DisplayInstrument, GlidesSmallWaysAndStopsItsTimer) {
  HWND control = Create(kModeGauge);
  SetValue(control, 50);
  SetValue(control, 60, kValueGlide);
  EXPECT_EQ(50.0f, ValueOf(control));
  EXPECT_TRUE(Record(control).bGliding);
  ASSERT_TRUE(kvtest::WaitUntil([&] { return ValueOf(control) > 50.0f; }));
  EXPECT_FLOAT_EQ(51.0f, ValueOf(control));
  ASSERT_TRUE(kvtest::WaitUntil([&] { return Record(control).nCountdown < 20; }));
  EXPECT_GT(ValueOf(control), 59.0f);
  EXPECT_LT(ValueOf(control), 60.0f);  // not snapped to the target
  // From here 20 ticks, by hand; the tick after them ends the glide.
  const LONG left = Record(control).nCountdown;
  for (LONG i = 0; i < left; ++i) SendMessageA(control, WM_TIMER, 5, 0);
  EXPECT_TRUE(Record(control).bGliding);
  SendMessageA(control, WM_TIMER, 5, 0);
  EXPECT_FALSE(Record(control).bGliding);

  SetValue(control, 5, kValueGlide);  // a large jump
  SendMessageA(control, WM_TIMER, 4, 0);
  EXPECT_GT(ValueOf(control), 50.0f);
  SendMessageA(control, WM_TIMER, 5, 0);
  EXPECT_EQ(5.0f, ValueOf(control));
}

TEST_F(DisplayInstrument, EveryLayoutShowsValueColourDisabledAndMissingValue) {
  for (const DWORD mode : kModes) {
    HWND control = Create(mode, 100, 160);
    InstrumentBlock block = BlockOf(control);
    block.color = 0x02000000 | kOrange;
    block.current = block.maximum * 0.8f;
    Send(control, kCommandBlock | kCommandRedraw, &block);
    kvtest::Picture shown(100, 160), other(100, 160);
    Capture(control, &shown);
    EXPECT_TRUE(mode == kModeCentreBar || shown.CountOf(kOrange) > 4) << mode;
    EXPECT_EQ(0, shown.CountOf(RGB(0xCC, 0xCC, 0xCC))) << mode;

    const auto differs = [&] {
      int count = 0;
      for (int i = 0; i < 100 * 160; ++i) count += shown.At(i % 100, i / 100) != other.At(i % 100, i / 100);
      return count;
    };
    SetValue(control, block.maximum * 0.3f);
    Capture(control, &other);
    EXPECT_GT(differs(), 40) << mode;
    Send(control, kCommandValue | kCommandRedraw, nullptr);
    Capture(control, &other);
    EXPECT_GT(differs(), 40) << mode;
    SetValue(control, block.current);
    Capture(control, &other);
    EXPECT_EQ(0, differs()) << mode;

    EnableWindow(control, FALSE);
    Capture(control, &other);
    int coloured = 0;
    for (int i = 0; i < 100 * 160; ++i) {
      const COLORREF color = other.At(i % 100, i / 100);
      coloured += abs(GetRValue(color) - GetBValue(color)) > 40;
    }
    EXPECT_EQ(0, coloured) << mode;
    DestroyWindow(control);
  }
}

TEST_F(DisplayInstrument, TheFaceIsDrawnAnewOnlyForWhatItDependsOn) {
  constexpr COLORREF kMark = RGB(255, 0, 255);
  HWND control = Create(kModeGauge);
  SetValue(control, 10);
  // A dot in the kept picture of the face shows as long as that picture is in use.
  const auto keptAfter = [&](auto change) {
    const HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ previous = SelectObject(dc, Record(control).work.hFace);
    SetPixel(dc, 2, 2, kMark);
    SelectObject(dc, previous);  // a bitmap stands in one device context at a time
    change();
    SelectObject(dc, Record(control).hBuffer);
    const bool kept = GetPixel(dc, 2, 2) == kMark;
    SelectObject(dc, previous);
    DeleteDC(dc);
    return kept;
  };
  EXPECT_TRUE(keptAfter([&] { SetValue(control, 20); }));
  EXPECT_TRUE(keptAfter([&] { RepaintNow(control); }));
  EXPECT_FALSE(keptAfter([&] { EnableWindow(control, FALSE); }));
  EXPECT_FALSE(keptAfter([&] { SetValue(control, NAN); }));
  EXPECT_FALSE(keptAfter([&] {
    InstrumentBlock block = BlockOf(control);
    block.maximum = 50;
    Send(control, kCommandBlock | kCommandRedraw, &block);
  }));
  EXPECT_FALSE(keptAfter([&] { Send(control, kCommandRender, nullptr); }));
}

TEST_F(DisplayInstrument, ZonesAreDrawnWhereEnabled) {
  constexpr COLORREF kZone = RGB(20, 220, 240);
  for (const DWORD mode : {kModeGauge, kModeSegmentBar, kModeCompass}) {
    HWND control = Create(mode, 120, 160);
    kvtest::Picture picture(120, 160);
    const InstrumentZone zone{20, 90, kZone, {}, 0};
    SetValue(control, 90);
    const auto count = [&](WPARAM flags) {
      Send(control, MAKEWPARAM(kCommandZone | kCommandRedraw | flags, 1), &zone);
      Capture(control, &picture);
      int bluish = 0;
      for (int i = 0; i < 120 * 160; ++i) {
        const COLORREF color = picture.At(i % 120, i / 120);
        bluish += GetBValue(color) > 140 && GetRValue(color) < 60;
      }
      return bluish;
    };
    EXPECT_EQ(0, count(0)) << mode;
    EXPECT_GT(count(kZoneEnable), 50) << mode;
    DestroyWindow(control);
  }
}

TEST_F(DisplayInstrument, CentreBarGrowsFromTheLineAndSegmentsFromTheirEnd) {
  kvtest::Picture picture(60, 200);
  HWND centre = Create(kModeCentreBar, 60, 200);
  SetValue(centre, 100);
  Capture(centre, &picture);
  EXPECT_EQ(SeverityColor(100, 100), picture.At(30, 40));  // above the line
  EXPECT_EQ(RGB(0, 0, 0), picture.At(30, 190));
  SetValue(centre, -100);
  Capture(centre, &picture);
  EXPECT_EQ(RGB(0, 0, 0), picture.At(30, 25));
  EXPECT_EQ(SeverityColor(100, 100), picture.At(30, 190));

  HWND bar = Create(kModeSegmentBar, 60, 200);
  SetValue(bar, 30);
  const auto redAt = [&](int y) {
    Capture(bar, &picture);
    return std::max({GetRValue(picture.At(30, y)), GetRValue(picture.At(30, y + 1)), GetRValue(picture.At(30, y + 2))});
  };
  EXPECT_GT(redAt(150), 200);
  EXPECT_LT(redAt(30), 80);
  const DWORD reversed = kInstrumentReversed;
  Send(bar, kCommandStyle | kCommandRedraw, &reversed);
  EXPECT_GT(redAt(30), 200);
}

TEST_F(DisplayInstrument, OddSizesAndBlocksDoNoHarm) {
  const float infinite = std::numeric_limits<float>::infinity();
  for (DWORD mode : kModes) {
    HWND control = Create(mode, 0, 0);
    Send(control, kCommandRender, nullptr);
    SendMessageA(control, WM_COPY, 0, 0);
    constexpr SIZE kSizes[] = {{1, 1}, {2, 300}, {300, 3}, {9, 9}, {19, 24}, {48, 48}, {150, 60}, {2000, 2000}};
    for (const SIZE size : kSizes) {
      MoveWindow(control, 0, 0, size.cx, size.cy, FALSE);
      const struct {
        float minimum, maximum, step, current;
      } ranges[] = {{0, 100, 1, 50},
                    {100, 0, 1, 30},
                    {5, 5, 0, 5},
                    {NAN, NAN, NAN, NAN},
                    {-3.4e38f, 3.4e38f, 1e-30f, 1e38f},
                    {0, infinite, 1, 7},
                    {1e-38f, 2e-38f, 0, infinite}};
      for (const auto& range : ranges) {
        InstrumentBlock block = BlockOf(control);
        block.minimum = range.minimum, block.maximum = range.maximum;
        block.step = range.step, block.current = range.current;
        block.format = 0xFF, block.state = 7;
        memset(block.szName, 'W', sizeof(block.szName));
        memset(block.szUnit, 0xB0, sizeof(block.szUnit));
        for (InstrumentZone& zone : block.zones) zone = {NAN, infinite, RGB(9, 9, 9), {}, 0};
        Send(control, kCommandBlock | kCommandRedraw, &block);
        SendMessageA(control, WM_TIMER, 5, 0);
        if (size.cx == 2000) break;  // once is enough for the large one
      }
    }
    DestroyWindow(control);
  }
}

TEST_F(DisplayInstrument, CopiesItsPictureWithClampedSize) {
  HWND control = Create(kModeGauge, 80, 60);
  const auto copied = [&](UINT message, LPARAM lParam) {
    SendMessageA(control, message, 0, lParam);
    BITMAP shape{};
    if (!OpenClipboard(*parent_)) return SIZE{-1, -1};
    GetObjectA(GetClipboardData(CF_BITMAP), sizeof(shape), &shape);
    EmptyClipboard();
    CloseClipboard();
    return SIZE{shape.bmWidth, shape.bmHeight};
  };
  EXPECT_EQ(80, copied(WM_COPY, 0).cx);
  const SIZE small = copied(WM_COPY, MAKELPARAM(3, 100));
  EXPECT_EQ(16, small.cx);
  EXPECT_EQ(100, small.cy);
  EXPECT_EQ(5120, copied(WM_COPY, MAKELPARAM(9000, 20)).cx);
  EXPECT_EQ(60, copied(WM_LBUTTONDBLCLK, MAKELPARAM(300, 300)).cy);
}

TEST_F(DisplayInstrument, WithoutARecordEveryMessageAnswersOne) {
  HWND control = Create(kModeGauge);
  auto* record = &Record(control);
  SetWindowLongA(control, GWL_USERDATA, 0);
  InvalidateRect(control, nullptr, TRUE);
  for (const UINT message : std::initializer_list<UINT>{WM_SIZE, WM_ENABLE, WM_SETTEXT, WM_TIMER, WM_COPY,
                                                        WM_LBUTTONDBLCLK, kControlCommand}) {
    EXPECT_EQ(1, SendMessageA(control, message, 5, 0)) << message;
  }
  EXPECT_EQ(1, SendMessageA(control, WM_PAINT, 0, 0));
  EXPECT_FALSE(GetUpdateRect(control, nullptr, FALSE));
  SetWindowLongA(control, GWL_USERDATA, reinterpret_cast<LONG>(record));
  parent_->Answer([](HWND, UINT message, WPARAM, LPARAM, LRESULT* result) {
    *result = 4711;
    return message == WM_DROPFILES;
  });
  EXPECT_EQ(4711, SendMessageA(control, WM_DROPFILES, 0, 0));
}

SIZE_T MemoryInUse() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return counters.PagefileUsage;
}

TEST_F(DisplayInstrument, SurvivesAStormOfMessagesWithGoodAndBadPointers) {
  const int count = Repetitions("KV_STORM", 6000);
  std::mt19937 random(20070806);
  const GuardedBytes good(512), brief(3);
  HWND controls[std::size(kModes)];
  for (size_t i = 0; i < std::size(kModes); ++i) controls[i] = Create(kModes[i], 64, 64);
  constexpr UINT kMessages[] = {WM_ENABLE, WM_SETTEXT,   WM_PAINT,     WM_TIMER,        WM_TIMER,
                                WM_SIZE,   WM_DROPFILES, WM_MOUSEMOVE, WM_LBUTTONDBLCLK};
  const auto storm = [&](int messages) {
    for (int i = 0; i < messages; ++i) {
      for (size_t byte = 0; byte < 512; byte += 4) good.as<DWORD>()[byte / 4] = random();
      if (random() % 2) good.as<InstrumentBlock>()->version = kInstrumentVersion;
      good.as<char>()[511] = '\0';
      const LPARAM addresses[] = {reinterpret_cast<LPARAM>(good.data()), reinterpret_cast<LPARAM>(good.data()),
                                  reinterpret_cast<LPARAM>(brief.data()), 0, static_cast<LPARAM>(random())};
      // Random addresses are for writing from: reading into one could hit memory of the test itself.
      const LPARAM address = addresses[random() % std::size(addresses)];
      const bool anywhere = address == addresses[4];
      HWND control = controls[random() % std::size(controls)];
      const UINT pick = random() % 24;
      if (pick < std::size(kMessages)) {
        if (kMessages[pick] == WM_LBUTTONDBLCLK && random() % 50) continue;
        SendMessageA(control, kMessages[pick], random() % 8, address);
      } else {
        constexpr WPARAM kCodes[] = {0, 1, 3, 17, 18, 18, 19, 20};
        WPARAM code = (random() & 0xFFFFFF00) | (random() % 8 ? kCodes[random() % 8] : random() % 256);
        if (anywhere) code &= ~kCommandRead;
        if (random() % 16) code &= ~kCommandRedraw;
        EXPECT_EQ(0, SendMessageA(control, kControlCommand, code, address));
      }
      if (random() % 500 == 0) MoveWindow(control, 0, 0, random() % 90, random() % 90, TRUE);
      if (random() % 100 == 0) kvtest::PumpMessages();
    }
  };
  storm(count / 2);
  const SIZE_T before = MemoryInUse();
  storm(count / 2);
  EXPECT_LT(MemoryInUse(), before + 4 * 1024 * 1024);
  for (HWND control : controls) {
    EXPECT_FALSE(IsBadWritePtr(WindowRecord<InstrumentRecord>(control), sizeof(InstrumentRecord)));
  }
}

TEST_F(DisplayInstrument, RedrawingUsesUpNoObjects) {
  const int count = Repetitions("KV_REDRAWS", 150);
  for (DWORD mode : kModes) {
    HWND control = Create(mode, 64, 64);
    const SIZE_T before = MemoryInUse();
    for (int i = 0; i < count; ++i) {
      SetValue(control, static_cast<float>(i % 90));
      if (i % 4 == 0) Send(control, kCommandRender, nullptr);  // the face as well
    }
    EXPECT_LT(MemoryInUse(), before + 4 * 1024 * 1024) << mode;
    HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    EXPECT_NE(nullptr, brush) << mode;
    DeleteObject(brush);
    DestroyWindow(control);
  }
}

}  // namespace
}  // namespace kv
