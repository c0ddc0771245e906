#include "kv/lists/extended_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/framework/guards.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr COLORREF kHeaderColor = RGB(10, 20, 30);
constexpr UINT kListId = 4711;

COLORREF RowColor(UINT row) {
  return row == kHeaderRow ? kHeaderColor : RGB(200, row & 0xFF, 100);
}

// A list with 100 x 85 pixels between its bars. Its parent returns `height_`, draws each row in a different color and
// records its number.
class ExtendedList : public kvtest::ControlTest<RegisterExtendedListClass> {
 protected:
  ExtendedList() {
    parent_.Answer([this](HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT*) {
      if (message == WM_MEASUREITEM) Measure(wParam, reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
      if (message == WM_DRAWITEM) Draw(wParam, reinterpret_cast<DRAWITEMSTRUCT*>(lParam));
      return message == WM_MEASUREITEM || message == WM_DRAWITEM;
    });
    RECT place{0, 0, 100 + GetSystemMetrics(SM_CXVSCROLL), 85 + GetSystemMetrics(SM_CYHSCROLL)};
    list_ = CreateControl(parent_, kExtendedListClass, "", WS_HSCROLL | WS_VSCROLL, place, static_cast<int>(kListId));
    Forget();
  }

  void Measure(WPARAM wParam, MEASUREITEMSTRUCT* request) {
    ++measured_;
    EXPECT_TRUE(wParam == kListId && request->CtlID == kListId && request->itemHeight == 17);
    if (height_ != 17) request->itemHeight = static_cast<UINT>(height_);
  }
  void Draw(WPARAM wParam, DRAWITEMSTRUCT* request) {
    EXPECT_TRUE(wParam == kListId && request->hwndItem == list_);
    EXPECT_EQ(0u, request->CtlType | request->itemAction | request->itemState | request->itemData);
    rows_.push_back(static_cast<int>(request->itemID));
    const OwnedBrush brush(CreateSolidBrush(RowColor(request->itemID)));
    FillRect(request->hDC, &request->rcItem, brush);
    if (const auto react = react_) react();  // a copy: it may replace itself
    request->rcItem = {-1, -1, -1, -1};      // a parent may overwrite the request
  }

  void Forget() {
    kvtest::PumpMessages();
    rows_.clear();
    measured_ = 0;
  }
  LRESULT Send(UINT message, WPARAM wParam = 0) { return SendMessageA(list_, message, wParam, 0); }
  std::vector<int> RowsAfter(UINT message, WPARAM wParam = 0) {
    Forget();
    EXPECT_EQ(0, Send(message, wParam));
    return rows_;
  }
  COLORREF PixelAt(int x, int y) {
    const WindowDc dc(list_);
    return GetPixel(dc, x, y);
  }

  HWND list_ = nullptr;
  int height_ = 17, measured_ = 0;
  std::vector<int> rows_;
  std::function<void()> react_;
};

using Rows = std::vector<int>;
const Rows kTopRows{-1, 0, 1, 2, 3, 4};
const COLORREF kWindowColor = GetSysColor(COLOR_WINDOW);

TEST_F(ExtendedList, RequestsOneHeaderAndOneScreenfulOfRows) {
  EXPECT_EQ(Rows{}, RowsAfter(LB_RESETCONTENT));
  EXPECT_EQ(1, measured_);
  EXPECT_EQ(kWindowColor, PixelAt(50, 5));
  EXPECT_EQ((Rows{-1, 0, 1}), RowsAfter(LB_SETCOUNT, 2));
  EXPECT_EQ(kHeaderColor, PixelAt(0, 0));
  EXPECT_EQ(RowColor(1), PixelAt(99, 50));
  EXPECT_EQ(kWindowColor, PixelAt(0, 51));
  for (WPARAM count : {WPARAM{10000000}, WPARAM{UINT_MAX}}) EXPECT_EQ(kTopRows, RowsAfter(LB_SETCOUNT, count));
  height_ = 40;
  EXPECT_EQ((Rows{-1, 0, 1}), RowsAfter(WM_LBUTTONUP));
  height_ = -40;
  EXPECT_EQ(kTopRows, RowsAfter(WM_LBUTTONUP));
  EXPECT_EQ(Rows{}, RowsAfter(WM_MOUSEMOVE));  // nothing has changed
}

TEST_F(ExtendedList, ScrollsByWholeRowsAndPastBothEnds) {
  Send(LB_SETCOUNT, 10000000);
  const std::tuple<WPARAM, Rows, int> steps[] = {{SB_LINEDOWN, {-1, 1, 2, 3, 4, 5}, 17},
                                                 {SB_PAGEDOWN, {-1, 11, 12, 13, 14, 15}, 187},
                                                 {SB_PAGEUP, {-1, 1, 2, 3, 4, 5}, 17},
                                                 {SB_PAGEUP, {-1}, 0},  // only blank rows above the first
                                                 {SB_ENDSCROLL, kTopRows, 0}};
  for (const auto& [request, rows, position] : steps) {
    EXPECT_EQ(rows, RowsAfter(WM_VSCROLL, request)) << request;
    EXPECT_EQ(position, GetScrollPos(list_, SB_VERT)) << request;
  }
  // The bar's position is clamped to its range, which ends a page before the last row's lower edge.
  SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_POS, .nPos = INT_MAX};
  SetScrollInfo(list_, SB_VERT, &bar, FALSE);
  EXPECT_EQ((Rows{-1, 9999995, 9999996, 9999997, 9999998, 9999999}), RowsAfter(WM_VSCROLL, SB_ENDSCROLL));
}

TEST_F(ExtendedList, ScrollsSidewaysWithoutARedraw) {
  Send(LB_SETCOUNT, 10);
  EXPECT_EQ(kTopRows, RowsAfter(LB_SETHORIZONTALEXTENT, 300));
  EXPECT_EQ(Rows{}, RowsAfter(WM_HSCROLL, SB_LINELEFT));
  EXPECT_EQ(kWindowColor, PixelAt(16, 0));
  EXPECT_EQ(kHeaderColor, PixelAt(17, 0));
  EXPECT_EQ(Rows{}, RowsAfter(WM_HSCROLL, SB_PAGERIGHT));
  EXPECT_EQ(153, GetScrollPos(list_, SB_HORZ));
  Send(WM_HSCROLL, SB_PAGERIGHT);
  EXPECT_EQ(kWindowColor, PixelAt(0, 0));
  Send(WM_HSCROLL, SB_ENDSCROLL);
  EXPECT_EQ(kHeaderColor, PixelAt(0, 0));

  for (const int none : {0, -1}) EXPECT_EQ(Rows{}, RowsAfter(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(none)));
  EXPECT_EQ(kTopRows, RowsAfter(LB_SETHORIZONTALEXTENT, 20000));
}

TEST_F(ExtendedList, SizeChangesOnlyTheSurfacesHeight) {
  Send(LB_SETCOUNT, 100);
  Forget();
  MoveWindow(list_, 0, 0, 200, 51 + GetSystemMetrics(SM_CYHSCROLL), TRUE);
  kvtest::PumpMessages();
  EXPECT_EQ((Rows{-1, 0, 1, 2}), Rows(rows_.begin(), rows_.begin() + 4));
  EXPECT_EQ(kHeaderColor, PixelAt(99, 0));
  EXPECT_EQ(kWindowColor, PixelAt(100, 0));
  int first = 0, last = 0;
  GetScrollRange(list_, SB_VERT, &first, &last);
  EXPECT_EQ(1700, last);
}

TEST_F(ExtendedList, TheParentMayChangeOrDestroyTheListWhileItDraws) {
  react_ = [&] { Send(LB_SETCOUNT, 2); };
  EXPECT_EQ((Rows{-1, 0, 1}), RowsAfter(LB_SETCOUNT, 100));
  react_ = nullptr;
  EXPECT_TRUE(kvtest::WaitUntil([&] { return rows_ == Rows{-1, 0, 1, -1, 0, 1}; }));

  Send(LB_SETHORIZONTALEXTENT, 20);
  react_ = [&] {
    react_ = nullptr;
    Send(LB_SETHORIZONTALEXTENT, 90);
  };
  Send(LB_SETCOUNT, 100);
  kvtest::PumpMessages();
  EXPECT_EQ(RowColor(0), PixelAt(89, 20));
  EXPECT_EQ(kWindowColor, PixelAt(90, 20));

  react_ = [&] { DestroyWindow(list_); };
  EXPECT_EQ((Rows{-1}), RowsAfter(WM_LBUTTONUP));
  EXPECT_FALSE(IsWindow(list_));
}

TEST_F(ExtendedList, CreatesItsSettingsKeyAndIgnoresMessagesWithoutState) {
  SetCapture(list_);
  for (UINT message : {WM_LBUTTONUP, WM_DESTROY}) {
    RegDeleteKeyA(HKEY_CURRENT_USER, kExtendedListSettingsPath);
    EXPECT_FALSE(OpenExtendedListSettings());
    const auto* state = reinterpret_cast<HGLOBAL*>(GetWindowLongA(list_, GWL_USERDATA));
    const HGLOBAL memory = *state;
    Send(WM_CREATE);  // the state must not be allocated twice
    EXPECT_EQ(reinterpret_cast<LONG>(state), GetWindowLongA(list_, GWL_USERDATA));
    Send(message);
    EXPECT_EQ(message == WM_DESTROY, GlobalFlags(memory) == GMEM_INVALID_HANDLE);
    EXPECT_TRUE(OpenExtendedListSettings());
    EXPECT_EQ(nullptr, GetCapture());
  }
  InvalidateRect(list_, nullptr, FALSE);
  for (UINT message : {WM_PAINT, WM_SIZE, WM_COMMAND, WM_VSCROLL, WM_MOUSEMOVE, LB_SETCOUNT}) {
    EXPECT_EQ(1, Send(message)) << message;
  }
  EXPECT_FALSE(GetUpdateRect(list_, nullptr, FALSE));
}

TEST_F(ExtendedList, ReportsVisibleRowsToScreenReaders) {
  constexpr LONG kRoleList = 0x21;
  EXPECT_EQ((kvtest::AccessibleProperties{L"", L"", kRoleList}), kvtest::ReadAccessible(list_));
  SetWindowTextA(list_, "Readings");
  Send(LB_SETCOUNT, 1000);
  EXPECT_EQ((kvtest::AccessibleProperties{L"Readings", L"1 - 5 / 1000", kRoleList}), kvtest::ReadAccessible(list_));
}

TEST_F(ExtendedList, IsDrawnFromTheRightWhenMirrored) {
  Send(LB_SETCOUNT, 3);
  UpdateWindow(list_);
  parent_.Answer([](HWND, UINT message, WPARAM, LPARAM lParam, LRESULT*) {
    if (message != WM_DRAWITEM) return false;
    const auto* row = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
    EXPECT_EQ(static_cast<DWORD>(LAYOUT_RTL), GetLayout(row->hDC));  // otherwise letters would be mirrored
    const RECT begin{0, row->rcItem.top, 10, row->rcItem.bottom};
    FillRect(row->hDC, &begin, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    return true;
  });
  SetWindowLongA(list_, GWL_EXSTYLE, WS_EX_LAYOUTRTL);
  SetWindowPos(list_, nullptr, 0, 0, 0, 0, SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER);
  InvalidateRect(list_, nullptr, FALSE);
  UpdateWindow(list_);
  const WindowDc dc(list_);
  SetLayout(dc, 0);
  RECT client{};
  GetClientRect(list_, &client);
  EXPECT_EQ(0u, GetPixel(dc, client.right - 5, 8));
  EXPECT_EQ(kWindowColor, GetPixel(dc, 5, 8));
}

}  // namespace
}  // namespace kv
