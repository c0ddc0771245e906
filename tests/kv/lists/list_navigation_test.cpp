#include "kv/lists/list_navigation.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

#include "kv/lists/extended_list.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr int kListId = 4712;
constexpr UINT kRows = 1000;

// A navigated list of 1000 rows with 100 x 85 pixels between its bars: a header and four whole rows of 17.
class ListNavigation : public kvtest::ControlTest<RegisterExtendedListClass> {
 protected:
  ListNavigation() {
    parent_.Answer([this](HWND, UINT message, WPARAM, LPARAM lParam, LRESULT*) {
      if (message == WM_MEASUREITEM) reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = height_;
      if (message != WM_DRAWITEM) return message == WM_MEASUREITEM;
      const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item->itemID == kHeaderRow) drawn_.clear(), states_.clear();
      drawn_.push_back(item->itemID);
      states_.push_back(item->itemState);
      return true;
    });
    RECT place{0, 0, 100 + GetSystemMetrics(SM_CXVSCROLL), 85 + GetSystemMetrics(SM_CYHSCROLL)};
    list_ = CreateControl(parent_, kExtendedListClass, "", WS_HSCROLL | WS_VSCROLL, place, kListId);
    EXPECT_TRUE(AddListNavigation(list_));
    Send(LB_SETCOUNT, kRows);
    kvtest::PumpMessages();
    parent_.seen().clear();
  }

  void Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) { SendMessageA(list_, message, wParam, lParam); }
  void Click(int x, int y, UINT press = WM_LBUTTONDOWN) {
    Send(press, MK_LBUTTON, MAKELPARAM(x, y));
    Send(WM_LBUTTONUP, 0, MAKELPARAM(x, y));
  }
  UINT TopRow() { return ListRowAt(list_, {0, 17}); }
  std::vector<int> Notifications() {
    kvtest::PumpMessages();
    std::vector<int> codes;
    for (const auto& [message, wParam, lParam] : std::exchange(parent_.seen(), {})) {
      if (message != WM_COMMAND) continue;
      EXPECT_EQ(std::tuple(kListId, reinterpret_cast<LPARAM>(list_)), std::tuple(LOWORD(wParam), lParam));
      codes.push_back(HIWORD(wParam));
    }
    return codes;
  }
  SCROLLINFO Bar(int kind) {
    SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_ALL};
    GetScrollInfo(list_, kind, &bar);
    return bar;
  }
  // The vertical bar's range, page and position.
  std::tuple<int, int, int> Down() {
    const SCROLLINFO bar = Bar(SB_VERT);
    return {bar.nMax, bar.nPage, bar.nPos};
  }

  HWND list_ = nullptr;
  UINT height_ = 17;
  std::vector<UINT> drawn_, states_;
};

using Codes = std::vector<int>;

TEST_F(ListNavigation, BarsAreCorrectBeforeAnyPaintAndAfterEveryChange) {
  EXPECT_EQ(std::tuple(16999, 68, 0), Down());
  ShowWindow(list_, SW_HIDE);  // from here on no paint, and so no WM_MEASUREITEM
  height_ = 20;
  Send(LB_SETCOUNT, 50);
  EXPECT_EQ(std::tuple(999, 60, 0), Down());
  MoveWindow(list_, 0, 0, 100 + GetSystemMetrics(SM_CXVSCROLL), 140 + GetSystemMetrics(SM_CYHSCROLL), FALSE);
  EXPECT_EQ(std::tuple(999, 120, 0), Down());
  ScrollListTo(list_, 49);
  EXPECT_EQ(std::tuple(999, 120, 880), Down());
  SelectListRow(list_, 20);
  Send(LB_SETCOUNT, 10);
  EXPECT_EQ(std::tuple(199, 120, 80), Down());
  EXPECT_EQ(kNoRow, SelectedListRow(list_));
  height_ = 10;
  EXPECT_TRUE(RedrawList(list_));
  EXPECT_EQ(std::tuple(99, 100, 0), Down());
  Send(LB_RESETCONTENT);
  EXPECT_EQ(std::tuple(0, 1, 0), Down());
  EXPECT_EQ(kNoRow, ListRowAt(list_, {0, 5}));
}

TEST_F(ListNavigation, KeysMoveTheSelectionAndKeepItVisible) {
  const std::tuple<UINT, UINT, UINT> steps[] = {{VK_UP, 0, 0},       {VK_DOWN, 1, 0},   {VK_NEXT, 5, 2},
                                                {VK_DOWN, 6, 3},     {VK_PRIOR, 2, 2},  {VK_END, 999, 996},
                                                {VK_NEXT, 999, 996}, {VK_UP, 998, 996}, {VK_PRIOR, 994, 994},
                                                {VK_HOME, 0, 0},     {VK_PRIOR, 0, 0}};
  for (const auto& [key, selected, top] : steps) {
    Send(WM_KEYDOWN, key);
    EXPECT_EQ(std::tuple(selected, top), std::tuple(SelectedListRow(list_), TopRow())) << key;
  }
  EXPECT_EQ(Codes(9, LBN_SELCHANGE), Notifications());
  EXPECT_EQ(static_cast<LRESULT>(DLGC_WANTARROWS), SendMessageA(list_, WM_GETDLGCODE, 0, 0));
  SetFocus(list_);
  kvtest::PumpMessages();
  EXPECT_EQ((std::vector<UINT>{0, ODS_SELECTED | ODS_FOCUS, 0, 0, 0, 0}), states_);
  SetFocus(parent_);
  kvtest::PumpMessages();
  EXPECT_EQ(static_cast<UINT>(ODS_SELECTED), states_[1]);
  drawn_.clear();
  Send(WM_SYSCOLORCHANGE);
  kvtest::PumpMessages();
  EXPECT_FALSE(drawn_.empty());
  Send(WM_KEYDOWN, 'A');
  EXPECT_EQ(0u, SelectedListRow(list_));
}

TEST_F(ListNavigation, ScrollsWithinItsEndsByBarAndWheel) {
  UINT rows = 0;
  SystemParametersInfoA(SPI_GETWHEELSCROLLLINES, 0, &rows, 0);
  ASSERT_EQ(3u, rows);
  Send(LB_SETHORIZONTALEXTENT, 300);
  Send(WM_VSCROLL, SB_BOTTOM);
  EXPECT_EQ((std::vector<UINT>{kHeaderRow, 996, 997, 998, 999}), drawn_);
  EXPECT_EQ(std::tuple(16999, 68, 16932), Down());
  // The message, then the top row and the position of the horizontal bar.
  const std::tuple<const char*, UINT, WPARAM, UINT, int> steps[] = {
      {"a line past the end", WM_VSCROLL, SB_LINEDOWN, 996, 0},
      {"a page past the end", WM_VSCROLL, SB_PAGEDOWN, 996, 0},
      {"end", WM_VSCROLL, SB_ENDSCROLL, 996, 0},
      {"thumb", WM_VSCROLL, SB_THUMBPOSITION, 996, 0},
      {"page", WM_VSCROLL, SB_PAGEUP, 992, 0},
      {"top", WM_VSCROLL, SB_TOP, 0, 0},
      {"a line past the top", WM_VSCROLL, SB_LINEUP, 0, 0},
      {"notch", WM_MOUSEWHEEL, MAKEWPARAM(0, -120), 3, 0},
      {"three quarters of a notch, 1", WM_MOUSEWHEEL, MAKEWPARAM(0, -30), 3, 0},
      {"three quarters of a notch, 2", WM_MOUSEWHEEL, MAKEWPARAM(0, -30), 4, 0},
      {"three quarters of a notch, 3", WM_MOUSEWHEEL, MAKEWPARAM(0, -30), 5, 0},
      {"back, which forgets what is left of a turn", WM_MOUSEWHEEL, MAKEWPARAM(0, 30), 5, 0},
      {"sideways", WM_MOUSEWHEEL, MAKEWPARAM(MK_SHIFT, -120), 5, 51},
      {"past the right end", WM_MOUSEHWHEEL, MAKEWPARAM(0, 1200), 5, 200},
      {"key", WM_KEYDOWN, VK_LEFT, 5, 183},
      {"page to the left", WM_HSCROLL, SB_PAGELEFT, 5, 83},
      {"past the left end", WM_HSCROLL, SB_PAGELEFT, 5, 0}};
  for (const auto& [step, message, wParam, top, left] : steps) {
    Send(message, wParam);
    EXPECT_EQ(std::tuple(top, left), std::tuple(TopRow(), Bar(SB_HORZ).nPos)) << step;
  }
}

TEST_F(ListNavigation, ReportsClicks) {
  ScrollListTo(list_, 100);
  Send(LB_SETHORIZONTALEXTENT, 300);
  Send(WM_HSCROLL, SB_LINERIGHT);
  parent_.seen().clear();
  EXPECT_EQ(kHeaderRow, ListRowAt(list_, {0, 16}));
  EXPECT_EQ(103u, ListRowAt(list_, {0, 84}));
  Click(5, 16);
  EXPECT_EQ(22, ListHeaderX(list_));
  EXPECT_EQ(kNoRow, SelectedListRow(list_));
  EXPECT_EQ(Codes{kListHeader}, Notifications());
  Send(WM_LBUTTONDOWN, 0, MAKELPARAM(5, 16));  // dragged off the header
  Send(WM_LBUTTONUP, 0, MAKELPARAM(5, 60));
  EXPECT_EQ(Codes{}, Notifications());
  Click(5, 60);
  Click(5, 60);
  EXPECT_EQ(102u, SelectedListRow(list_));
  Click(5, 60, WM_LBUTTONDBLCLK);
  Click(5, 16, WM_LBUTTONDBLCLK);
  EXPECT_EQ((Codes{LBN_SELCHANGE, LBN_DBLCLK, kListHeader}), Notifications());
  Send(LB_SETCOUNT, 2);
  Click(5, 60);
  EXPECT_EQ(Codes{}, Notifications());
}

TEST_F(ListNavigation, IsAsWideAsTheWindowOrTheRequestedWidth) {
  // The width of the window and the requested one, then the list's width, and its position after scrolling to the
  // right.
  const std::tuple<int, WPARAM, int, int> cases[] = {
      {100, 0, 100, 0}, {220, 0, 220, 0}, {220, 150, 220, 0}, {90, 150, 150, 60}, {140, 150, 150, 10}};
  for (const auto& [window, asked, width, position] : cases) {
    MoveWindow(list_, 0, 0, window + GetSystemMetrics(SM_CXVSCROLL), 100, TRUE);
    if (asked) Send(LB_SETHORIZONTALEXTENT, asked);
    EXPECT_EQ(width, Bar(SB_HORZ).nMax + 1) << window;
    if (window < 140) Send(WM_HSCROLL, SB_BOTTOM);  // a larger window scrolls back automatically
    EXPECT_EQ(position, Bar(SB_HORZ).nPos) << window;
  }
}

TEST_F(ListNavigation, AcceptsOnlyExtendedLists) {
  EXPECT_FALSE(AddListNavigation(parent_));
  EXPECT_FALSE(RedrawList(nullptr));
  EXPECT_FALSE(ScrollListTo(parent_, 0));
  EXPECT_EQ(kNoRow, ListRowAt(parent_, {0, 0}));
  EXPECT_FALSE(SelectListRow(list_, kRows));
  EXPECT_FALSE(ScrollListTo(list_, kRows));

  const HWND plain = CreateControl(parent_, kExtendedListClass, "", WS_VSCROLL, {0, 0, 100, 85}, kListId);
  SendMessageA(plain, LB_SETCOUNT, kRows, 0);
  EXPECT_FALSE(SelectListRow(plain, 1));
  EXPECT_TRUE(ScrollListTo(plain, kRows - 1));  // past the bar's end, which is allowed without navigation
  EXPECT_EQ(kRows - 1, ListRowAt(plain, {0, 17}));
}

}  // namespace
}  // namespace kv
