#include "camera/optical_flow_chart.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::RecordingParent;
using kvtest::TestBitmap;

constexpr COLORREF kBlack = RGB(0, 0, 0);

class ChartTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_TRUE(RegisterChartClass(GetModuleHandleA(nullptr), TRUE)); }
  static void TearDownTestSuite() { EXPECT_TRUE(RegisterChartClass(GetModuleHandleA(nullptr), FALSE)); }

  LRESULT Command(WPARAM wParam, void* address = nullptr) {
    return SendMessageA(chart_, kControlCommand, wParam, reinterpret_cast<LPARAM>(address));
  }
  FlowPoints Read() {
    FlowPoints points{.mask = 0xFFFF};
    EXPECT_EQ(0, Command(kCommandRead | kChartPoints, &points));
    return points;
  }
  RecordingParent parent_{true};
  HWND chart_ = kvtest::CreateControl(parent_, kChartClass, "", 0, {0, 0, 512, 384}, 1100);
};

bool IsHidden(const CameraPoint& point) {
  return point.x == kNoPoint && point.y == kNoPoint;
}

TEST_F(ChartTest, ExchangesPointsThroughItsMask) {
  FlowPoints read = Read();
  EXPECT_EQ(0u, read.mask);
  for (const CameraPoint& point : read.points) EXPECT_TRUE(IsHidden(point));

  FlowPoints set{.mask = 0b1011, .points = {{2000, -5}, {40, 900}, {7, 8}, {300, 1023}}};
  EXPECT_EQ(0, Command(kChartPoints, &set));
  read = Read();
  EXPECT_EQ(std::tuple(1023, 0, 900), std::tuple(read.points[0].x, read.points[0].y, read.points[1].y))
      << "clamped to 1023 only";
  EXPECT_TRUE(IsHidden(read.points[2])) << "not in the mask";
  EXPECT_EQ((kvtest::AccessibleProperties{L"Optical flow", L"2: 40, 900", 0x11}), kvtest::ReadAccessible(chart_));
  EXPECT_EQ(0b0010u, read.mask) << "a point with one coordinate at 1023 is not shown";

  FlowPoints remove{.mask = 0b0010, .points = {{1, 1}, {1, 1}, {1, 1}, {1, 1}}};
  EXPECT_EQ(0, Command(kCommandRemove | kChartPoints, &remove));
  EXPECT_TRUE(IsHidden(Read().points[1]));
  EXPECT_EQ(0, Read().points[0].y) << "others are unchanged";
  EXPECT_EQ(0, Command(kChartClear));
  EXPECT_TRUE(IsHidden(Read().points[0]));
}

TEST_F(ChartTest, DrawsEachPointAtItsPositionAndNothingElse) {
  TestBitmap bitmap(512, 384);
  Command(kChartClear);
  SendMessageA(chart_, WM_COPY, 0, 0);
  kvtest::ClipboardBitmapSize(parent_, &bitmap);
  EXPECT_EQ(512 * 384, bitmap.CountOf(kBlack)) << "without points the field is plain black";

  FlowPoints set{.mask = 15, .points = {{100, 100}, {900, 100}, {512, 600}, {kNoPoint, 300}}};
  Command(kChartPoints, &set);
  SendMessageA(chart_, WM_COPY, 0, 0);
  kvtest::ClipboardBitmapSize(parent_, &bitmap);
  for (const POINT place : {POINT{50, 50}, {450, 50}, {256, 300}}) EXPECT_NE(kBlack, bitmap.At(place.x, place.y));
  // A marker is 32 camera units wide, which is 16 pixels here.
  EXPECT_GT(bitmap.CountOf(kBlack), 512 * 384 - 3 * 20 * 20);
}

TEST_F(ChartTest, CopiesAtTheRequestedSizeWithinLimits) {
  for (const auto& [asked, made] :
       {std::pair{SIZE{10, 10000}, SIZE{64, 5120}}, {{200, 100}, {200, 100}}, {{0, 0}, {512, 384}}}) {
    SendMessageA(chart_, WM_COPY, 0, MAKELPARAM(asked.cx, asked.cy));
    const SIZE size = kvtest::ClipboardBitmapSize(parent_);
    EXPECT_TRUE(size.cx == made.cx && size.cy == made.cy) << size.cx << " x " << size.cy;
  }
}

TEST_F(ChartTest, RedrawsOnlyOnDemand) {
  UpdateWindow(chart_);
  FlowPoints set{.mask = 1, .points = {{512, 384}}};
  Command(kChartPoints, &set);
  const WindowDc dc(chart_);
  EXPECT_EQ(kBlack, GetPixel(dc, 256, 192)) << "shown only at the next paint";
  Command(kCommandRedraw | kChartPoints, &set);
  EXPECT_FALSE(GetUpdateRect(chart_, nullptr, FALSE)) << "painted at once";
  EXPECT_NE(kBlack, GetPixel(dc, 256, 192));
  // A refresh renders the whole image.
  struct StateHead {
    void* unused[3];
    HBITMAP hBackBuffer;
  };
  const auto* state = reinterpret_cast<const StateHead*>(GetWindowLongA(chart_, GWL_USERDATA));
  const std::vector<BYTE> white(512 * 4, 0xFF);
  SetBitmapBits(state->hBackBuffer, 512 * 4, white.data());
  Command(kChartRefresh);
  EXPECT_EQ(kBlack, GetPixel(dc, 5, 0));
  SendMessageA(chart_, WM_CREATE, 0, 0);  // the state must not be allocated twice
  EXPECT_EQ(reinterpret_cast<LONG>(state), GetWindowLongA(chart_, GWL_USERDATA));
}

// A partial redraw must give the same image as a full redraw.
TEST_F(ChartTest, PartialRedrawEqualsFullRedraw) {
  std::mt19937 random(7);
  const auto coordinate = [&] { return static_cast<LONG>(random() % 8 ? random() % 1100 : kNoPoint); };
  TestBitmap shown(512, 384), anew(512, 384);
  for (int round = 0; round < 40; ++round) {
    FlowPoints change{.mask = static_cast<DWORD>(random() % 16), .points = {}};
    // Sometimes close together, so that markers overlap.
    const LONG near_ = round % 3 ? 0 : 500;
    for (CameraPoint& point : change.points) point = {coordinate() / (near_ ? 20 : 1) + near_, coordinate() / 2};
    if (round == 20) MoveWindow(chart_, 0, 0, 0, 0, TRUE);  // no client area
    if (round == 21) MoveWindow(chart_, 0, 0, 500, 380, TRUE);
    Command((round % 5 ? 0 : kCommandRemove) | (round % 4 ? kCommandRedraw : 0) | kChartPoints, &change);
    if (round % 4 == 0) continue;
    BitBlt(shown.dc(), 0, 0, 512, 384, WindowDc(chart_), 0, 0, SRCCOPY);
    SendMessageA(chart_, WM_COPY, 0, 0);
    const SIZE size = kvtest::ClipboardBitmapSize(parent_, &anew);
    ASSERT_TRUE(size.cx >= 500 && size.cy >= 380);
    for (int y = 0; y < size.cy; ++y) {
      for (int x = 0; x < size.cx; ++x) ASSERT_EQ(anew.At(x, y), shown.At(x, y)) << round << ": " << x << "," << y;
    }
  }
}

TEST_F(ChartTest, ShowsTheFocusOnItsEdgeOnly) {
  SetWindowLongA(chart_, GWL_STYLE, GetWindowLongA(chart_, GWL_STYLE) | WS_BORDER);
  SetWindowPos(chart_, nullptr, 0, 0, 0, 0, SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER);
  SetForegroundWindow(parent_);
  for (const bool focused : {true, false, true}) {
    SetFocus(focused ? chart_ : static_cast<HWND>(parent_));
    HDC dc = GetWindowDC(chart_);
    EXPECT_EQ(focused, GetPixel(dc, 0, 20) == GetSysColor(COLOR_HIGHLIGHT));
    EXPECT_EQ(kBlack, GetPixel(dc, 1, 20));
    ReleaseDC(chart_, dc);
  }
}

TEST_F(ChartTest, RejectsBadAddressesIgnoresInputAndForwardsDroppedFiles) {
  kvtest::GuardedBytes tooSmall(sizeof(FlowPoints) - 1), readOnly(sizeof(FlowPoints));
  readOnly.MakeReadOnly();
  EXPECT_EQ(1, Command(kChartPoints, nullptr));
  EXPECT_EQ(1, Command(kCommandRead | kChartPoints, tooSmall.data()));
  EXPECT_EQ(1, Command(kChartPoints, readOnly.data()));
  EXPECT_EQ(0, Command(0x55, nullptr)) << "unknown operations do nothing";
  parent_.Answer([](HWND, UINT message, WPARAM wParam, LPARAM, LRESULT* result) {
    *result = 4711;
    return message == WM_DROPFILES && wParam == 12;
  });
  const std::pair<UINT, LRESULT> cases[] = {{WM_COMMAND, 0},       {WM_MOUSEMOVE, 0}, {WM_LBUTTONDOWN, 0},
                                            {WM_LBUTTONDBLCLK, 0}, {WM_MBUTTONUP, 0}, {WM_GETDLGCODE, DLGC_STATIC},
                                            {WM_DROPFILES, 4711}};
  for (const auto& [message, result] : cases) EXPECT_EQ(result, SendMessageA(chart_, message, 12, 0)) << message;
}

}  // namespace
}  // namespace kv
