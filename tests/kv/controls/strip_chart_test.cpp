// The strip chart's window: commands, keyboard and mouse, clipboard.
#include "kv/controls/strip_chart/strip_chart.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/controls/strip_chart/control.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/framework/control_class.h"
#include "kv/framework/object_control.h"
#include "tests/support/comma_locale.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::Read, kvtest::Send;

constexpr double kInfinite = std::numeric_limits<double>::infinity();

// ---- The control ----------------------------------------------------------------------------------------------------

class StripCharts : public kvtest::ControlTest<RegisterLineRecorderClass> {
 protected:
  HWND Create(DWORD style = 0, int width = 300, int height = 200) {
    return kvtest::CreateControl(parent_, kStripChartClass, "", style, {0, 0, width, height}, 77);
  }
  static LRESULT Append(HWND chart, const std::vector<StripSample>& samples, int channel = 0) {
    const StripSamples item{static_cast<DWORD>(samples.size()), samples.data()};
    return Send(chart, kStripAppend | kCommandRedraw, &item, channel);
  }
  static StripModel& Model(HWND chart) { return ObjectOf<StripChart>(chart)->model; }
  static const StripLayout& Layout(HWND chart) { return ObjectOf<StripChart>(chart)->renderer.layoutShown(); }
  static void Drag(HWND chart, WPARAM keys, POINT from, POINT to) {
    SendMessageA(chart, WM_LBUTTONDOWN, MK_LBUTTON | keys, MAKELPARAM(from.x, from.y));
    SendMessageA(chart, WM_MOUSEMOVE, MK_LBUTTON | keys, MAKELPARAM(to.x, to.y));
    SendMessageA(chart, WM_LBUTTONUP, keys, MAKELPARAM(to.x, to.y));
  }
  struct Printed : kvtest::TestBitmap {
    Printed(HWND chart, int width) : TestBitmap(width, 200) {
      SendMessageA(chart, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc()), 0);
    }
  };
  int Notified(WORD code) {
    kvtest::PumpMessages();
    return static_cast<int>(std::ranges::count_if(parent_.seen(), [&](const kvtest::SeenMessage& seen) {
      return seen.message == WM_COMMAND && seen.wParam == MAKEWPARAM(77, code);
    }));
  }
};

TEST_F(StripCharts, RejectsInvalidInputAndLosesNothing) {
  HWND chart = Create();
  EXPECT_EQ(1, Append(chart, {{1, 5}, {2, NAN}, {2, kInfinite}, {3, 7}}));
  for (const double time : {2.9, std::nan(""), kInfinite, -kInfinite, 2e15}) {
    EXPECT_EQ(0, Append(chart, {{4, 1}, {time, 1}})) << time;
  }
  EXPECT_EQ(0, Append(chart, {{1, 1}}, 8));
  EXPECT_EQ(0, Append(chart, {{2, 1}, {1, 1}}, 5));
  StripChannel none{};
  EXPECT_EQ(0, Send(chart, kStripChannel | kCommandRead, &none, 5));  // a rejected append makes no channel
  EXPECT_EQ(1, Append(chart, {}));
  EXPECT_EQ(4u, Read<DWORD>(chart, kStripCount));
  EXPECT_EQ(2, Read<StripStatistics>(chart, kStripStatistics).count);  // infinity is a gap

  for (const DWORD capacity : {DWORD{0}, kStripMaxCapacity + 1, DWORD{0xFFFFFFFF}}) {
    EXPECT_EQ(0, Send(chart, kStripCapacity, &capacity));
  }
  Append(chart, {{1, 1}}, 1);
  for (int i = 0; i < kStripChannels; ++i) Append(chart, {{1, 1}}, i);
  const DWORD tooMuch = kStripMaxCapacity;  // in eight channels: more than a process can allocate
  EXPECT_EQ(0, Send(chart, kStripCapacity, &tooMuch));
  EXPECT_EQ(kStripDefaultCapacity, Read<DWORD>(chart, kStripCapacity));
  const DWORD few = 2;
  EXPECT_EQ(1, Send(chart, kStripCapacity, &few));
  EXPECT_EQ(2u, Read<DWORD>(chart, kStripCount));
  EXPECT_EQ(7, Read<StripStatistics>(chart, kStripStatistics).maximum);

  const std::pair<WPARAM, size_t> items[] = {{kStripStyle, 4},      {kStripChannel, 88},  {kStripZone, 24},
                                             {kStripCapacity, 4},   {kStripViewItem, 56}, {kStripCursor, 8},
                                             {kStripSelection, 16}, {kStripAppend, 8}};
  for (const auto& [code, size] : items) {
    kvtest::GuardedBytes shortOne(size - 1);
    memset(shortOne.data(), 0xEE, size - 1);
    EXPECT_EQ(0, Send(chart, code, shortOne.data())) << code;
    EXPECT_EQ(0, Send(chart, code | kCommandRead, shortOne.data())) << code;
    EXPECT_EQ('\xEE', *shortOne.as<char>());
    EXPECT_EQ(0, Send(chart, code, nullptr));
  }
  const StripSample one{9, 1};
  const StripSamples wild{10, reinterpret_cast<const StripSample*>(16)};
  const StripSamples endless{0x10000001, &one};  // its size in bytes, modulo 2^32, is that of a single sample
  EXPECT_EQ(0, Send(chart, kStripAppend, &wild));
  EXPECT_EQ(0, Send(chart, kStripAppend, &endless));
  StripView view = Read<StripView>(chart, kStripViewItem);
  for (const auto& [zoom, span] : {std::pair{0.0, 1.0}, {NAN, 1}, {1, -1}, {1, NAN}, {1, kInfinite}}) {
    view.zoom = zoom, view.span = span;
    EXPECT_EQ(0, Send(chart, kStripViewItem, &view));
  }
  const StripTimeRange backwards{3, 2};
  EXPECT_EQ(0, Send(chart, kStripSelection, &backwards));
}

TEST_F(StripCharts, FreezesWhileRecordingAndReadsCursorAndSelection) {
  HWND chart = Create();
  std::vector<StripSample> samples;
  for (int i = 0; i <= 100; ++i) samples.push_back({i * 1.0, i * 2.0});
  Append(chart, samples);
  SendMessageA(chart, WM_KEYDOWN, VK_SPACE, 0);
  EXPECT_EQ(kStripFollow | kStripFrozen, Read<StripView>(chart, kStripViewItem).state);
  EXPECT_EQ(1, Append(chart, {{150, 999}}));
  EXPECT_EQ(100, Read<StripView>(chart, kStripViewItem).end);
  EXPECT_EQ(200, Read<StripStatistics>(chart, kStripStatistics).maximum);
  SendMessageA(chart, WM_KEYDOWN, VK_SPACE, 0);
  EXPECT_EQ(150, Read<StripView>(chart, kStripViewItem).end);

  EXPECT_EQ(0, Send(chart, kStripCursor | kCommandRead, &samples[0]));
  const StripReading at{.time = 40.4};
  kvtest::PumpMessages();
  EXPECT_EQ(1, Send(chart, kStripCursor, &at));
  EXPECT_TRUE(GetUpdateRect(chart, nullptr, FALSE));
  EXPECT_EQ(80, Read<StripReading>(chart, kStripCursor).values[0]);
  EXPECT_EQ(L"1 80", kvtest::ReadAccessible(chart).value);
  const StripTimeRange selection{10, 14};
  EXPECT_EQ(1, Send(chart, kStripSelection | kCommandRedraw, &selection));
  const StripStatistics statistics = Read<StripStatistics>(chart, kStripStatistics);
  EXPECT_EQ(std::tuple(5, 20, 28, 24),
            std::tuple(statistics.count, statistics.minimum, statistics.maximum, statistics.mean));
  EXPECT_NEAR(std::sqrt(10), statistics.deviation, 1e-12);

  Send(chart, kStripCursor | kCommandRemove, nullptr);
  // The tooltip with statistics is beside the selection, where the plot is empty otherwise. Neither it nor the name of
  // a cursor is on the axis.
  StripChannel info = Read<StripChannel>(chart, kStripChannel);
  strcpy(info.name, "A name that is too long for this plot");
  EXPECT_EQ(1, Send(chart, kStripChannel, &info));
  const StripLayout& layout = ObjectOf<StripChart>(chart)->renderer.layoutShown();
  const StripReading atLeft{.time = TimeAtX(layout, layout.plot.left)};
  EXPECT_EQ(1, Send(chart, kStripCursorB, &atLeft));
  kvtest::TestBitmap told(300, 200), silent(300, 200);
  SendMessageA(chart, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(told.dc()), 0);
  Send(chart, kStripCursorB | kCommandRemove, nullptr);
  EXPECT_EQ(1, Send(chart, kStripStyle, &kStripNoStatistics));
  SendMessageA(chart, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(silent.dc()), 0);
  EXPECT_EQ(0, silent.CountOf(0xCCCCCC));
  EXPECT_LT(100, silent.DifferencesFrom(told));
  for (int y = 0; y < 200; ++y) EXPECT_EQ(silent.At(layout.plot.left - 2, y), told.At(layout.plot.left - 2, y)) << y;
  EXPECT_EQ(1, Send(chart, kStripSelection | kCommandRemove, nullptr));
  EXPECT_EQ(0, Send(chart, kStripSelection | kCommandRead, &samples[0]));
}

TEST_F(StripCharts, KeysAndMouseZoomPanSelectAndNotifyTheOwner) {
  HWND chart = Create();
  std::vector<StripSample> samples;
  for (int i = 0; i <= 1000; ++i) samples.push_back({i * 1.0, i % 7 * 1.0});
  Append(chart, samples);
  UpdateWindow(chart);
  const auto view = [&] { return Read<StripView>(chart, kStripViewItem); };
  const auto key = [&](WPARAM code) { SendMessageA(chart, WM_KEYDOWN, code, 0); };
  key(VK_ADD);
  key(VK_ADD);
  EXPECT_EQ(std::tuple(250, 1000), std::tuple(view().span, view().end));
  key(VK_LEFT);
  EXPECT_EQ(std::tuple(0u, 975), std::tuple(view().state, view().end));
  key(VK_HOME);
  EXPECT_EQ(250, view().end);
  key(VK_LEFT);  // at the end
  EXPECT_EQ(250, view().end);
  Append(chart, {{1001, 3}});
  EXPECT_EQ(250, view().end);
  SendMessageA(chart, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), MAKELPARAM(150, 100));
  EXPECT_EQ(200, view().span);
  key(VK_UP);
  EXPECT_NEAR(0.1, view().shift, 1e-12);
  key(VK_END);
  EXPECT_EQ(std::tuple(kStripFollow, 1001), std::tuple(view().state, view().end));
  EXPECT_EQ(8, Notified(kStripNotifyView));

  UpdateWindow(chart);
  const LONG left = Layout(chart).plot.left;
  Drag(chart, 0, {left + 50, 50}, {left + 100, 50});
  EXPECT_LT(view().end, 1001 - 30);
  UpdateWindow(chart);
  Drag(chart, MK_SHIFT, {left + 100, 50}, {left + 50, 50});
  const auto selectedColumns = [&] {
    const StripTimeRange selection = Read<StripTimeRange>(chart, kStripSelection);
    return (selection.to - selection.from) / Layout(chart).secondsPerColumn;
  };
  EXPECT_NEAR(50, selectedColumns(), 1e-6);
  EXPECT_EQ(1, Notified(kStripNotifySelection));
  const DWORD digits = 9, tooMany = 17;
  EXPECT_EQ(0, Send(chart, kStripAxisDigits, &tooMany));
  EXPECT_EQ(1, Send(chart, kStripAxisDigits | kCommandRedraw, &digits));
  const StripLayout& aligned = Layout(chart);
  EXPECT_EQ(10 * aligned.digitPx, aligned.axis[0].area.right - aligned.axis[0].area.left);
  SendMessageA(chart, WM_MOUSEMOVE, 0, MAKELPARAM(left + 60, 50));
  EXPECT_EQ(1, Notified(kStripNotifyCursor));
  EXPECT_EQ(0, Notified(kStripNotifyCursorSet));  // both were drags
  const double elsewhere = 990;
  EXPECT_EQ(1, Send(chart, kStripCursor | kCommandRedraw, &elsewhere));
  SendMessageA(chart, WM_MOUSEMOVE, 0, MAKELPARAM(left + 60, 50));  // the pointer rests
  EXPECT_EQ(elsewhere, Read<StripReading>(chart, kStripCursor).time);
  Drag(chart, 0, {left + 60, 50}, {left + 60, 50});
  EXPECT_EQ(1, Notified(kStripNotifyCursorSet));
  for (const int held : {VK_CONTROL, VK_SHIFT, VK_SHIFT, 0}) {
    kvtest::HoldKey(held);
    if (held) key(VK_LEFT);
  }
  EXPECT_EQ(2, Notified(kStripNotifyCursorSet));
  EXPECT_NEAR(16, selectedColumns(), 1e-6);
  EXPECT_EQ(DLGC_WANTMESSAGE, SendMessageA(chart, WM_GETDLGCODE, VK_ESCAPE, 0) & DLGC_WANTMESSAGE);
  key(VK_ESCAPE);
  EXPECT_EQ(std::tuple(kStripFollow, 0, 0), std::tuple(view().state, view().span, view().shift));
  EXPECT_FALSE(Model(chart).hasSelection || Model(chart).cursorShown);
}

TEST_F(StripCharts, TheLegendNamesOrCountsAllChannelsAndTogglesThem) {
  for (const int width : {200, 350, 700}) {
    HWND chart = Create(0, width, 200);
    for (int i = 0; i < 6; ++i) {
      Append(chart, {{0, 1}, {1, 2}}, i);
      StripChannel info = Read<StripChannel>(chart, kStripChannel, i);
      strcpy(info.name, "Temperature of the oil");
      Send(chart, kStripChannel, &info, i);
    }
    UpdateWindow(chart);
    const StripRenderer& renderer = ObjectOf<StripChart>(chart)->renderer;
    int items = 0;
    for (LONG x = 0, last = -1; x < width; ++x) {
      const int item = renderer.LegendItemAt({x, 5});
      items += item >= 0 && item != last;
      last = item;
    }
    const Printed image(chart, width);
    int counted = 0;  // dark pixels right of the last item
    for (int x = width - 1; x >= 0 && renderer.LegendItemAt({x, 5}) < 0; --x) {
      for (int y = 2; y < 15; ++y) counted += GetRValue(image.At(x, y)) < 100;
    }
    EXPECT_EQ(items < 6, counted > 0) << width;
    EXPECT_EQ(width > 400, items == 6) << width;
    SendMessageA(chart, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(Layout(chart).plot.left + 3, 5));
    EXPECT_EQ(0u, Read<StripChannel>(chart, kStripChannel, 0).state);
    SendMessageA(chart, WM_KEYDOWN, '2', 0);
    SendMessageA(chart, WM_KEYDOWN, '1', 0);
    SendMessageA(chart, WM_KEYDOWN, '8', 0);
    EXPECT_EQ(kStripVisible, Read<StripChannel>(chart, kStripChannel, 0).state);
    EXPECT_EQ(0u, Read<StripChannel>(chart, kStripChannel, 1).state);
    EXPECT_EQ(3, Notified(kStripNotifyChannels));
    DestroyWindow(chart);
    parent_.seen().clear();
  }
}

TEST_F(StripCharts, ShortenedNamesHaveNoUnitsAndKeepTheirEnds) {
  HWND chart = Create(0, 350, 200);
  for (int i = 0; i < 4; ++i) Append(chart, {{0, 1}, {1, 2}}, i);
  const auto legend = [&](const char* firstName, const char* unit = "") {
    for (int i = 0; i < 4; ++i) {
      StripChannel info = Read<StripChannel>(chart, kStripChannel, i);
      strcpy(info.name, i == 0 ? firstName : "Cylinder pressure 2");
      strcpy(info.unit, unit);
      Send(chart, kStripChannel | kCommandRedraw, &info, i);
    }
    UpdateWindow(chart);
    const Printed image(chart, 350);
    std::vector<COLORREF> pixels;
    for (int y = 2; y < 15; ++y) {
      for (int x = 0; x < 350; ++x) pixels.push_back(image.At(x, y));
    }
    return pixels;
  };
  EXPECT_TRUE(legend("Cylinder pressure 1") != legend("Cylinder pressure 4"));
  EXPECT_TRUE(legend("Cylinder pressure 1") == legend("Cylinder pressure 1", "bar"));
}

TEST_F(StripCharts, ZoomsIntoARectangleAndBackAndMeasuresBetweenTwoCursors) {
  HWND chart = Create();
  for (int i = 0; i <= 100; ++i) Append(chart, {{i * 1.0, i * 1.0}});
  UpdateWindow(chart);
  const StripLayout layout = Layout(chart);
  const RECT& plot = layout.plot;
  const StripView before = Read<StripView>(chart, kStripViewItem);
  Drag(chart, MK_CONTROL, {plot.left + 100, plot.bottom}, {plot.left + 50, (plot.top + plot.bottom) / 2});
  const StripView zoomed = Read<StripView>(chart, kStripViewItem);
  EXPECT_NEAR(TimeAtX(layout, plot.left + 99), zoomed.end, 1e-9);
  EXPECT_NEAR(49 * layout.secondsPerColumn, zoomed.span, 1e-9);
  EXPECT_EQ(layout.axis[0].range.low, zoomed.minimum);
  EXPECT_NEAR((layout.axis[0].range.low + layout.axis[0].range.high) / 2, zoomed.maximum, 0.5);
  Drag(chart, MK_CONTROL, {plot.left + 50, 50}, {plot.left + 100, 52});
  EXPECT_EQ(layout.axis[0].range.high, Read<StripView>(chart, kStripViewItem).maximum) << "all values in a flat part";
  for (int i = 0; i < 3; ++i) SendMessageA(chart, WM_KEYDOWN, VK_BACK, 0);  // there are two views before
  const StripView back = Read<StripView>(chart, kStripViewItem);
  EXPECT_EQ(std::tuple(before.span, before.end, before.maximum), std::tuple(back.span, back.end, back.maximum));

  const double at = 10;
  EXPECT_EQ(1, Send(chart, kStripCursor | kCommandRedraw, &at));
  Drag(chart, MK_CONTROL, {plot.left + 60, 50}, {plot.left + 60, 50});  // a click
  EXPECT_NEAR(TimeAtX(layout, plot.left + 60), Read<StripReading>(chart, kStripCursorB).time, 1e-9);
  EXPECT_EQ(2, std::ranges::count(kvtest::ReadAccessible(chart).value, L'\x0394')) << "of values and times";
  SendMessageA(chart, WM_KEYDOWN, 'B', 0);
  StripReading none{};
  EXPECT_EQ(0, Send(chart, kStripCursorB | kCommandRead, &none));
  EXPECT_EQ(2, Notified(kStripNotifyCursorB));
}

TEST_F(StripCharts, ShowsEventsInTheOrderOfTheirTimesAndAPauseSign) {
  HWND chart = Create();
  Append(chart, {{0, 1}, {10, 1}});
  const auto changed = [&](auto change) {
    const Printed before(chart, 300);
    change();
    const Printed after(chart, 300);
    return after.DifferencesFrom(before);
  };
  EXPECT_LT(20, changed([&] { SendMessageA(chart, WM_KEYDOWN, VK_SPACE, 0); }));
  for (const StripEvent& event : {StripEvent{8, "Stop"}, StripEvent{2, "Start"}}) {
    EXPECT_LT(50, changed([&] { EXPECT_EQ(1, Send(chart, kStripEventItem, &event)); }));
  }
  EXPECT_STREQ("Start", Read<StripEvent>(chart, kStripEventItem, 0).text);
  EXPECT_STREQ("Stop", Read<StripEvent>(chart, kStripEventItem, 1).text);
  const StripEvent never{NAN, "x"};
  EXPECT_EQ(0, Send(chart, kStripEventItem, &never));
  for (DWORD i = 0; i < kStripMaxEvents; ++i) Send(chart, kStripEventItem, std::array{StripEvent{5, "x"}}.data());
  EXPECT_STREQ("x", Read<StripEvent>(chart, kStripEventItem, 0).text);  // the earliest were discarded
  EXPECT_EQ(1, Send(chart, kStripEventItem | kCommandRemove, nullptr));
  EXPECT_STREQ("", Read<StripEvent>(chart, kStripEventItem, 0).text);
}

TEST_F(StripCharts, CopiesItsImageAndAnEqualTable) {
  HWND chart = Create();
  StripChannel info{kStripVersion, kStripVisible, "Speed", "m/s", RGB(0, 0, 255), 0, 0};
  Send(chart, kStripChannel, &info);
  Append(chart, {{1, 5}, {2, NAN}, {3, 7.25}});
  Append(chart, {{2, 1}, {2, 2}}, 3);
  const kvtest::CommaLocale comma;  // the program's locale; the user's has a point
  SendMessageA(chart, WM_COPY, 0, MAKELPARAM(8, 120));
  EXPECT_EQ(16, kvtest::ClipboardBitmapSize(parent_).cx);
  EXPECT_EQ(120, kvtest::ClipboardBitmapSize(parent_).cy);
  EXPECT_EQ(L"s\tSpeed (m/s)\t4\r\n1\t5\t\r\n2\t\t1\r\n2\t\t2\r\n3\t7.25\t\r\n", kvtest::ClipboardText(parent_));

  std::vector<StripSample> many;
  for (DWORD i = 0; i <= kStripMaxTextRows; ++i) many.push_back({4 + i * 0.001, i % 100 * 1.0});
  Append(chart, many);
  SendMessageA(chart, WM_COPY, 0, 0);
  EXPECT_EQ(300, kvtest::ClipboardBitmapSize(parent_).cx);
  const std::wstring text = kvtest::ClipboardText(parent_);
  EXPECT_EQ(0u, text.find(L"s\tSpeed (m/s) min\tSpeed (m/s) max\t"));
  EXPECT_NE(std::wstring::npos, text.find(L"\t0\t99\t"));
  EXPECT_LT(std::ranges::count(text, L'\n'), 300);
}

TEST_F(StripCharts, SurvivesUnusualSizesAndDestructionUnderTheMouse) {
  for (const int size : {0, 1, 2, 6, 13, 40}) {
    for (const auto& [width, height] : {std::pair{size, size}, {size, 200}, {300, size}}) {
      HWND chart = Create(kStripSeparateAxes, width, height);
      for (int i = 0; i < 4; ++i) Append(chart, {{i * 1.0, 1e300}, {i + 0.5, -1e300}, {i + 1.0, 5}}, i);
      const StripTimeRange selection{0, 2};
      Send(chart, kStripSelection | kCommandRedraw, &selection);
      Append(chart, {{500, 5}});
      EXPECT_EQ(1, Send(chart, kStripRender, nullptr));
      DestroyWindow(chart);
    }
  }
  HWND chart = Create();
  Append(chart, {{0, 1}, {10, 2}});
  SendMessageA(chart, WM_MOUSEMOVE, 0, MAKELPARAM(100, 50));
  SendMessageA(chart, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(100, 50));
  const StripSamples none{0, nullptr};
  Send(chart, kStripAppend, &none);  // its timer runs
  DestroyWindow(chart);
  EXPECT_EQ(nullptr, GetCapture());
  kvtest::PumpMessages();
}

}  // namespace
}  // namespace kv
