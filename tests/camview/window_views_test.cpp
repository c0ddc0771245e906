// The views that take the places of field and charts in camview's window.
#include <gtest/gtest.h>
#include <windows.h>

#include <cmath>
#include <string>

#include "camview/camera_field.h"
#include "camview/display.h"
#include "camview/resource_ids.h"
#include "camview/view_time.h"
#include "camview/window.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/painting.h"
#include "tests/camview/window_fixture.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

TEST_F(CamviewWindow, ShowsDistributionsAndIntervalsOfTheSelection) {
  OpenFile(Recording(1000, [](int i) { return i == 499 || (i >= 600 && i < 790); }));
  SetFocus(Control(IDC_CHART_X));
  Press(VK_F8);
  Press(VK_F6);
  Settle();
  EXPECT_EQ(Control(IDC_HISTOGRAM_X), GetFocus());
  EXPECT_FALSE(IsWindowVisible(Control(IDC_CHART_X)) || IsWindowVisible(Control(IDC_CHART_Y)));
  const auto value = [&](int id) { return kvtest::ReadAccessible(Control(id)).value; };
  EXPECT_EQ(L"x1: mean 453.70, spread 302.3, 0 to 999; x2: mean 500.00, spread 0.00, 500 to 500; x3: –",
            value(IDC_HISTOGRAM_X).substr(0, 88));
  EXPECT_EQ(L"x1: mean 453.70, spread 302.3, 0 to 999; y1: mean 300.00", value(IDC_SCATTER).substr(0, 56));
  Select(&view().time, {5, 5.1});
  Update(view());
  Settle();
  EXPECT_EQ(L"x1: mean 504.50, spread 3.03, 500 to 509", value(IDC_HISTOGRAM_X).substr(0, 40));
  Press('1');
  Press(VK_HOME);
  EXPECT_EQ(L"x1 = 500: 1 record, 10.0 %", value(IDC_HISTOGRAM_X));
  Press('C', VK_CONTROL);
  EXPECT_EQ(L"x\tx1\r\n500\t1\r\n501\t1\r\n", kvtest::ClipboardText(window_).substr(0, 20));
  const kvtest::TestBitmap english(500, 500), german(500, 500);
  Draw(IDC_HISTOGRAM_Y, english);
  Command(IDM_LANGUAGE_FIRST + 1);
  Settle();
  EXPECT_EQ(L"x1 = 500: 1 Datensatz, 10,0 %", value(IDC_HISTOGRAM_X));
  Draw(IDC_HISTOGRAM_Y, german);
  EXPECT_LT(0, german.DifferencesFrom(english)) << "its numbers, too";
  Command(IDM_LANGUAGE_FIRST);
  const auto pixelsOf = [&](COLORREF color) {
    Command(IDM_COPY_IMAGE);
    view().display.TakeBack();  // what it says would have to end
    const SIZE size = kvtest::ClipboardBitmapSize(window_);
    const kvtest::TestBitmap image(size.cx, size.cy);
    kvtest::ClipboardBitmapSize(window_, &image);
    return image.CountOf(color);
  };
  const COLORREF bar = kv::MixColors(PointColor(0), GetSysColor(COLOR_WINDOWTEXT), 20);
  EXPECT_LT(20, pixelsOf(PointColor(1))) << "the scatter plot of point 2";
  EXPECT_LT(100, pixelsOf(bar));

  // The silence is a gap; after it, there is its length.
  Press(VK_F9);
  EXPECT_EQ(Control(IDC_CHART_X), GetFocus());
  EXPECT_TRUE(IsWindowVisible(Control(IDC_INTERVALS)) && !IsWindowVisible(Control(IDC_CHART_Y)));
  const auto interval = [&](double time) {
    GoTo(time);
    return kvtest::Read<kv::StripReading>(Control(IDC_INTERVALS), kv::kStripCursor).values[0];
  };
  EXPECT_NEAR(10, interval(4.5), 0.001);
  EXPECT_NEAR(20, interval(5), 0.001) << "one is lost";
  EXPECT_TRUE(std::isnan(interval(7)));
  EXPECT_NEAR(1910, interval(7.9), 0.001);
  EXPECT_TRUE(std::isnan(interval(0))) << "the first";
  EXPECT_EQ(0, pixelsOf(bar)) << "no histogram";

  // The next source is shown in the same views.
  Press(VK_F8);
  Press('0');
  Command(IDM_CLOSE_SOURCE);
  Settle();
  EXPECT_EQ(L"x1: –; x2: –; x3: –; x4: –", value(IDC_HISTOGRAM_X));
  SendMessageW(window_, WM_CLOSE, 0, 0);
  Open({});
  EXPECT_TRUE(view().options.left == LeftView::kScatter && view().options.right == RightView::kHistograms);
}

}  // namespace
}  // namespace camview
