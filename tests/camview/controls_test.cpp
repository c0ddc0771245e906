// camview's field, distributions and timeline as controls: pixels, keys, mouse, and what they reject.
#include <gtest/gtest.h>
#include <windows.h>

#include <oleacc.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/events.h"
#include "camview/camera_field.h"
#include "camview/distribution_view.h"
#include "camview/record_store.h"
#include "camview/timeline.h"
#include "camview/view_time.h"
#include "kv/framework/control_class.h"
#include "kv/framework/painting.h"
#include "tests/support/control_test.h"
#include "tests/support/replaced_import.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

using kvtest::GuardedBytes;
using kvtest::Send;
using kvtest::TestBitmap;

constexpr kv::CameraPoint kDark{kv::kNoPoint, kv::kNoPoint};
constexpr COLORREF kBlack = RGB(0, 0, 0);

class CameraFieldTest : public kvtest::ControlTest<RegisterCameraFieldClass> {
 protected:
  // The field fills it but for a frame of a pixel: two camera units are a pixel.
  HWND field_ = kvtest::CreateControl(parent_, kCameraFieldClass, "Field", 0, {0, 0, 514, 386}, 7);

  LRESULT Show(const std::vector<StoredRecord>& records, double now, double trail) {
    const FieldContent content{static_cast<DWORD>(records.size()), records.data(), now, trail};
    return Send(field_, kFieldShow, &content);
  }
  static bool IsLit(const TestBitmap& bitmap, int x, int y) {
    for (int i = -2; i <= 2; ++i) {
      if (bitmap.At(1 + x / 2, 1 + y / 2 + i) != kBlack) return true;
    }
    return false;
  }
};

TEST_F(CameraFieldTest, ShowsMarkersAndTrailsThatFadeAndBreak) {
  std::vector<StoredRecord> records;
  for (int i = 0; i <= 100; ++i) {
    StoredRecord record{i * 0.1, {{i * 8, 290}, kDark, {500, 700}, kDark}, 0};
    if (i >= 40 && i <= 60) record.points[0] = kDark;
    records.push_back(record);
  }
  TestBitmap bitmap(514, 386);
  const auto draw = [&] { SendMessageA(field_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0); };
  EXPECT_EQ(1, Show(records, 10, 8));
  draw();
  EXPECT_EQ(0, bitmap.CountOf(0xCCCCCC));
  EXPECT_LT(20, bitmap.CountOf(PointColor(0)));
  EXPECT_LT(20, bitmap.CountOf(PointColor(2)));
  EXPECT_EQ(0, bitmap.CountOf(PointColor(1)));
  EXPECT_TRUE(IsLit(bitmap, 740, 290) && IsLit(bitmap, 520, 290) && IsLit(bitmap, 220, 290));
  EXPECT_FALSE(IsLit(bitmap, 400, 290)) << "not seen there";
  EXPECT_FALSE(IsLit(bitmap, 120, 290)) << "too old";
  const auto red = [&](int x) { return GetRValue(bitmap.At(1 + x / 2, 1 + 290 / 2)); };
  EXPECT_GT(red(700), red(520));
  EXPECT_GT(red(520), red(220));

  EXPECT_EQ(1, Show(records, 10, 0));
  draw();
  EXPECT_FALSE(IsLit(bitmap, 740, 290));
  EXPECT_TRUE(IsLit(bitmap, 800, 290));
  EXPECT_EQ((kvtest::AccessibleProperties{L"Field", L"1: 800, 290; 3: 500, 700", ROLE_SYSTEM_CHART}),
            kvtest::ReadAccessible(field_));
  SendMessageA(field_, WM_COPY, 0, MAKELPARAM(257, 193));
  EXPECT_EQ(257, kvtest::ClipboardBitmapSize(parent_).cx);
}

// SystemParametersInfoW of a user who wants high contrast.
BOOL WINAPI WantHighContrast(UINT action, UINT, void* parameter, UINT) {
  if (action != SPI_GETHIGHCONTRAST) return FALSE;
  static_cast<HIGHCONTRASTW*>(parameter)->dwFlags = HCF_HIGHCONTRASTON;
  return TRUE;
}

TEST_F(CameraFieldTest, HasNoColorsButTheSystemsInHighContrast) {
  const kvtest::ReplacedImport contrast("SystemParametersInfoW", reinterpret_cast<void*>(WantHighContrast));
  Show({{1, {{200, 200}, {400, 200}, {600, 600}, {900, 100}}, 0}}, 1, 1);
  TestBitmap bitmap(514, 386);
  SendMessageA(field_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0);
  for (int point = 0; point < kv::kPointCount; ++point) EXPECT_EQ(0, bitmap.CountOf(PointColor(point)));
  EXPECT_LT(200, bitmap.CountOf(GetSysColor(COLOR_WINDOWTEXT)));
  EXPECT_LT(100'000, bitmap.CountOf(GetSysColor(COLOR_WINDOW)));
}

TEST_F(CameraFieldTest, KeepsItsProportionsAndRejectsWhatIsBad) {
  MoveWindow(field_, 0, 0, 600, 200, TRUE);  // wider than the field
  TestBitmap bitmap(600, 200);
  SendMessageA(field_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0);
  // In the middle, within a frame around the control.
  for (const int x : {20, 580}) EXPECT_TRUE(bitmap.At(x, 98) != kBlack && bitmap.At(x, 98) != bitmap.At(0, 98)) << x;
  for (const int x : {180, 420}) EXPECT_EQ(kBlack, bitmap.At(x, 98)) << x;
  const StoredRecord record{1, {{1, 2}, kDark, kDark, kDark}, 0};
  EXPECT_EQ(1, Show({record}, 1, 1));
  GuardedBytes tooShort(sizeof(FieldContent) - 1);
  EXPECT_EQ(0, Send(field_, kFieldShow, tooShort.data()));
  for (const FieldContent& bad : {FieldContent{2, reinterpret_cast<const StoredRecord*>(16), 0, 1},
                                  {kFieldMaxRecords + 1, &record, 0, 1},
                                  {1, &record, NAN, 1},
                                  {1, &record, 0, -1}}) {
    EXPECT_EQ(0, Send(field_, kFieldShow, &bad));
  }
  EXPECT_EQ(L"1: 1, 2", kvtest::ReadAccessible(field_).value);
  EXPECT_EQ(1, Show({}, 1, 1));
  EXPECT_EQ(L"", kvtest::ReadAccessible(field_).value);
  // Numbers as records with invalid numbers hold them, and times without an order.
  EXPECT_EQ(1, Show({{INFINITY, {{-99999, 9999}}, 0}, {-1e300, {{2147483647, 5}}, 0}, {NAN, {{5, 5}}, 0}}, 0, 1e-300));
  SendMessageA(field_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0);
}

class DistributionTest : public kvtest::ControlTest<RegisterDistributionClass> {
 protected:
  HWND histogram_ = kvtest::CreateControl(parent_, kDistributionClass, "x", kDistributionOfX, {0, 0, 500, 300}, 7);
  HWND scatter_ = kvtest::CreateControl(parent_, kDistributionClass, "Places", 0, {0, 0, 500, 300}, 8);
  static constexpr DWORD kCounts[] = {1, 3, 0, 4}, kFar[] = {5}, kPlaces[] = {0, 2, 6, 0, 1, 1};

  void SetUp() override {
    const DistributionContent content{{{510, 0, 4, 1, kCounts}, {LONG_MIN, LONG_MAX}, {100, 0, 1, 1, kFar}}};
    ASSERT_EQ(1, Send(histogram_, kDistributionShow, &content));
    const DistributionContent places{{{510, 20, 2, 3, kPlaces}}};
    ASSERT_EQ(1, Send(scatter_, kDistributionShow, &places));
  }
  static std::wstring Value(HWND control) { return kvtest::ReadAccessible(control).value; }
  static void Press(HWND control, std::initializer_list<WPARAM> keys) {
    for (const WPARAM key : keys) SendMessageA(control, WM_KEYDOWN, key, 0);
  }
};

TEST_F(DistributionTest, TellsItsFiguresAndReadsCellsByKeysAndPointer) {
  EXPECT_EQ(L"x1: mean 511.88, spread 1.25, 510 to 513; x2: –; x3: mean 100.00, spread 0.00, 100 to 100; x4: –",
            Value(histogram_));
  EXPECT_EQ(L"x1: mean 510.30, spread 0.48, 510 to 511; y1: mean 21.00, spread 0.67, 20 to 22; x2",
            Value(scatter_).substr(0, 83));
  Press(histogram_, {VK_RIGHT});
  EXPECT_EQ(L"x1: mean", Value(histogram_).substr(0, 8)) << "no cursor for four points";
  Press(histogram_, {'1', VK_RIGHT});
  EXPECT_EQ(L"x1 = 512: 0 records, 0.0 %", Value(histogram_)) << "begins at the mean";
  Press(histogram_, {VK_RIGHT, VK_RIGHT});
  EXPECT_EQ(L"x1 = 513: 4 records, 50.0 %", Value(histogram_)) << "stays within the values";
  Press(histogram_, {VK_HOME});
  EXPECT_EQ(L"x1 = 510: 1 record, 12.5 %", Value(histogram_));
  EXPECT_TRUE(SendMessageA(histogram_, WM_GETDLGCODE, VK_ESCAPE, 0) & DLGC_WANTMESSAGE);
  Press(histogram_, {VK_ESCAPE});
  EXPECT_EQ(L"x1: mean 511.88, spread 1.25, 510 to 513", Value(histogram_));
  Press(histogram_, {VK_ESCAPE});
  EXPECT_FALSE(SendMessageA(histogram_, WM_GETDLGCODE, VK_ESCAPE, 0) & DLGC_WANTMESSAGE);
  Press(histogram_, {VK_NUMPAD2, VK_RIGHT});
  EXPECT_EQ(L"x2: –", Value(histogram_));

  Press(scatter_, {'1', VK_UP, VK_DOWN, VK_LEFT, VK_UP});
  POINT pointer{};
  GetCursorPos(&pointer);
  ScreenToClient(scatter_, &pointer);
  SendMessageA(scatter_, WM_MOUSEMOVE, 0, MAKELPARAM(pointer.x, pointer.y));
  EXPECT_EQ(L"1 = 510, 21: 6 records, 60.0 %", Value(scatter_)) << "the pointer rests";
  SendMessageA(scatter_, WM_LBUTTONDBLCLK, 0, MAKELPARAM(100, 100));
  // The middle of the first panel's plot, at 133, 72, is between the values 510 and 511.
  SendMessageA(scatter_, WM_MOUSEMOVE, 0, MAKELPARAM(138, 72));
  EXPECT_EQ(L"1 = 511, 21: 0 records, 0.0 %", Value(scatter_));
  SendMessageA(scatter_, WM_MOUSELEAVE, 0, 0);
  EXPECT_EQ(L"x1: mean", Value(scatter_).substr(0, 8));
}

TEST_F(DistributionTest, DrawsBarsInProportionAndCopiesItsCounts) {
  TestBitmap bitmap(500, 300);
  const auto draw = [&](HWND control) {
    SendMessageA(control, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0);
    EXPECT_EQ(0, bitmap.CountOf(0xCCCCCC));
  };
  Press(histogram_, {'1'});
  draw(histogram_);
  const COLORREF bar = kv::MixColors(PointColor(0), GetSysColor(COLOR_WINDOWTEXT), 20);
  std::vector<int> heights;
  int before = 0;
  for (int x = 0; x < 500; ++x) {
    int height = 0;
    for (int y = 0; y < 300; ++y) height += bitmap.At(x, y) == bar;
    if (height > 0 && before == 0) heights.push_back(0);
    if (height > 0) heights.back() = std::max(heights.back(), height);
    before = height;
  }
  ASSERT_EQ(3u, heights.size());
  EXPECT_NEAR(3, heights[1] / static_cast<double>(heights[0]), 0.1);
  EXPECT_NEAR(4, heights[2] / static_cast<double>(heights[0]), 0.1);
  draw(scatter_);
  EXPECT_LT(40, bitmap.CountOf(PointColor(0))) << "the cell with the highest count";
  {
    const kvtest::ReplacedImport contrast("SystemParametersInfoW", reinterpret_cast<void*>(WantHighContrast));
    SendMessageA(scatter_, WM_SYSCOLORCHANGE, 0, 0);
    draw(scatter_);
    EXPECT_EQ(0, bitmap.CountOf(PointColor(0)));
    EXPECT_LT(40, bitmap.CountOf(GetSysColor(COLOR_WINDOWTEXT)));
  }
  SendMessageA(histogram_, WM_COPY, 0, MAKELPARAM(200, 100));
  EXPECT_EQ(200, kvtest::ClipboardBitmapSize(parent_).cx);
  EXPECT_EQ(L"x\tx1\r\n510\t1\r\n511\t3\r\n512\t0\r\n513\t4\r\n", kvtest::ClipboardText(parent_));
  SendMessageA(scatter_, WM_COPY, 0, 0);
  EXPECT_EQ(
      L"x\ty\t1\t2\t3\t4\r\n511\t20\t2\t0\t0\t0\r\n510\t21\t6\t0\t0\t0\r\n510\t22\t1\t0\t0\t0\r\n"
      L"511\t22\t1\t0\t0\t0\r\n",
      kvtest::ClipboardText(parent_));
  // Every cell of the field: larger cells, none lost.
  const std::vector<DWORD> all(1023 * 767, 1);
  const DistributionContent whole{{{}, {0, 0, 1023, 767, all.data()}}};
  ASSERT_EQ(1, Send(scatter_, kDistributionShow, &whole));
  SendMessageA(scatter_, WM_COPY, 0, MAKELPARAM(64, 64));
  draw(scatter_);
  EXPECT_LT(4000, bitmap.CountOf(PointColor(1))) << "a copy has other cells";
  const std::wstring table = kvtest::ClipboardText(parent_);
  EXPECT_EQ(1 + 256 * 192, std::ranges::count(table, L'\n'));
  EXPECT_EQ(L"\r\n1020\t764\t0\t9\t0\t0\r\n", table.substr(table.size() - 20));

  GuardedBytes tooShort(sizeof(DistributionContent) - 1);
  EXPECT_EQ(0, Send(histogram_, kDistributionShow, tooShort.data()));
  for (const DistributionCounts& bad : {DistributionCounts{-1, 0, 4, 1, kCounts},
                                        {1021, 0, 4, 1, kCounts},
                                        {0, 0, 2, 2, kCounts},
                                        {0, 0, 4, 0, kCounts},
                                        {0, 0, 4, 1, nullptr}}) {
    const DistributionContent content{{bad}};
    EXPECT_EQ(0, Send(histogram_, kDistributionShow, &content));
  }
  EXPECT_EQ(L"x1: mean 511.88", Value(histogram_).substr(0, 15));
}

class TimelineTest : public kvtest::ControlTest<RegisterTimelineClass> {
 protected:
  HWND timeline_ = kvtest::CreateControl(parent_, kTimelineClass, "Position", 0, {0, 0, 400, 30}, 9);

  void SetUp() override {
    const TimeRange range{0, 100};
    ASSERT_EQ(1, Send(timeline_, kTimelineRange, &range));
  }
  double Position() const { return kvtest::Read<double>(timeline_, kTimelinePosition); }
  std::pair<double, double> Selection() const {
    TimeRange selection{-1, -1};
    Send(timeline_, kTimelineSelection | kv::kCommandRead, &selection);
    return {selection.from, selection.to};
  }
  void Key(WPARAM key, bool shift = false) const {
    kvtest::HoldKey(shift ? VK_SHIFT : 0);
    SendMessageA(timeline_, WM_KEYDOWN, key, 0);
  }
  int Notified(WORD code) {
    kvtest::PumpMessages();
    int count = 0;
    for (const auto& each : parent_.seen()) count += each.message == WM_COMMAND && each.wParam == MAKEWPARAM(9, code);
    parent_.seen().clear();
    return count;
  }
};

TEST_F(TimelineTest, MovesSelectsAndAsksForSteps) {
  double position = 40;
  EXPECT_EQ(1, Send(timeline_, kTimelinePosition, &position));
  EXPECT_EQ(0, Notified(kTimelineNotifyPosition)) << "not the user's";
  EXPECT_EQ((kvtest::AccessibleProperties{L"Position", L"0:40.000", ROLE_SYSTEM_SLIDER}),
            kvtest::ReadAccessible(timeline_));
  Key(VK_RIGHT);
  EXPECT_EQ(1, Notified(kTimelineNotifyForward));
  Key(VK_LEFT);
  EXPECT_EQ(1, Notified(kTimelineNotifyBack));
  EXPECT_EQ(40, Position());
  Key(VK_NEXT);
  EXPECT_EQ(45, Position());
  EXPECT_EQ(1, Notified(kTimelineNotifyPosition));
  Key(VK_PRIOR, true);
  Key(VK_PRIOR, true);
  EXPECT_EQ(std::pair(35.0, 45.0), Selection());
  EXPECT_EQ(2, Notified(kTimelineNotifySelection));
  Key(VK_END);
  Key(VK_NEXT);
  EXPECT_EQ(100, Position());
  Key(VK_HOME);
  EXPECT_EQ(0, Position());

  const auto mouse = [&](UINT message, WPARAM keys, int x) {
    SendMessageA(timeline_, message, keys, MAKELPARAM(x, 15));
  };
  mouse(WM_LBUTTONDOWN, MK_LBUTTON, 200);
  EXPECT_NEAR(50, Position(), 0.5);
  mouse(WM_MOUSEMOVE, MK_LBUTTON, 4000);
  EXPECT_EQ(100, Position());
  mouse(WM_LBUTTONUP, 0, 4000);
  mouse(WM_MOUSEMOVE, 0, 100);
  EXPECT_EQ(100, Position());
  Notified(0);
  mouse(WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, 300);
  mouse(WM_MOUSEMOVE, MK_LBUTTON | MK_SHIFT, 105);
  mouse(WM_LBUTTONUP, MK_SHIFT, 105);
  EXPECT_NEAR(25, Selection().first, 0.7);
  EXPECT_NEAR(76, Selection().second, 0.7);
  EXPECT_EQ(2, Notified(kTimelineNotifySelection)) << "removed and selected";
  EXPECT_EQ(100, Position());
  mouse(WM_LBUTTONDOWN, MK_LBUTTON, 200);
  SendMessageA(timeline_, WM_CAPTURECHANGED, 0, 0);
  mouse(WM_MOUSEMOVE, MK_LBUTTON, 300);
  EXPECT_NEAR(50, Position(), 0.5) << "the capture was taken away";
  const TimeRange selection{20, 30};
  EXPECT_EQ(1, Send(timeline_, kTimelineSelection, &selection));
  Key(VK_END, true);
  EXPECT_EQ(std::pair(20.0, 100.0), Selection());
}

TEST_F(TimelineTest, MarksEventsByHeightAndRejectsWhatIsBad) {
  using enum camera::EventKind;
  const std::vector<TimelineMark> list{{kDamage, 10, 20}, {kMalformed, 30, 40}, {kSilence, 50, 60},
                                       {kUnseen, 62, 70}, {kLoss, 75, 75},      {kDamage, 100, 100}};  // of no length
  const TimelineMarks marks{6, list.data()};
  EXPECT_EQ(1, Send(timeline_, kTimelineShowMarks, &marks));
  double position = 90;
  Send(timeline_, kTimelinePosition, &position);
  TestBitmap bitmap(400, 30);
  SendMessageA(timeline_, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(bitmap.dc()), 0);
  EXPECT_EQ(0, bitmap.CountOf(0xCCCCCC));
  const auto height = [&](double time) {
    const int x = 9 + static_cast<int>(time / 100 * 382);  // the track lies within 9 pixels of either end
    int rows = 0;
    for (int y = 6; y < 24; ++y) rows += bitmap.At(x, y) != GetSysColor(COLOR_WINDOW);
    return rows;
  };
  EXPECT_EQ(0, height(5));
  EXPECT_LT(9, height(10.3));
  EXPECT_NEAR(9, height(35), 1);
  EXPECT_NEAR(6, height(50.05), 1);
  EXPECT_NEAR(1, height(55), 1) << "hollow";
  EXPECT_NEAR(2, height(62.5), 1) << "a dashed line";
  EXPECT_NEAR(12, height(75.1), 1);
  EXPECT_EQ(18, height(99.6)) << "however short, also at the end";
  const TimeRange shorter{0, 30};
  EXPECT_EQ(1, Send(timeline_, kTimelineRange, &shorter));
  EXPECT_EQ(30, Position());

  GuardedBytes tooShort(7);
  const TimeRange backwards{2, 1}, endless{0, INFINITY};
  const TimelineMark unknown{static_cast<camera::EventKind>(5), 1, 2}, wrong{kSilence, NAN, 2};
  const TimelineMarks badMarks[] = {{1, &unknown}, {1, &wrong}, {9, reinterpret_cast<const TimelineMark*>(16)}};
  for (const TimeRange* bad : {&backwards, &endless}) {
    EXPECT_EQ(0, Send(timeline_, kTimelineRange, bad));
    EXPECT_EQ(0, Send(timeline_, kTimelineSelection, bad));
  }
  for (const TimelineMarks& bad : badMarks) EXPECT_EQ(0, Send(timeline_, kTimelineShowMarks, &bad));
  for (const WPARAM code : {kTimelineRange, kTimelinePosition, kTimelineSelection}) {
    EXPECT_EQ(0, Send(timeline_, code, tooShort.data()));
  }
  EXPECT_EQ(0, Send(timeline_, kTimelineSelection | kv::kCommandRead, &position));
  EXPECT_EQ(30, Position());
}

}  // namespace
}  // namespace camview
