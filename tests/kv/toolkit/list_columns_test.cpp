#include "kv/toolkit/list_columns.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "tests/support/control_test.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr ListColumn kColumns[] = {{L"A", 10}, {L"B", 30, DT_RIGHT}};

class ListColumns : public kvtest::ControlTest<RegisterExtendedListClass> {};

TEST_F(ListColumns, ShareTheWidthAndReportClicks) {
  const HWND list = CreateControl(parent_, kExtendedListClass, "", WS_HSCROLL, {0, 0, 200, 100}, 1);
  AddListNavigation(list);
  SendMessageA(list, LB_SETCOUNT, 3, 0);
  for (const auto& [x, column] : {std::pair(49, 0), {50, 1}, {199, 1}}) {
    SendMessageA(list, WM_LBUTTONDOWN, 0, MAKELPARAM(x, 3));
    EXPECT_EQ(column, ClickedListColumn(list, kColumns)) << x;
  }
  EXPECT_EQ(-1, ClickedListColumn(list, {}));
  ListSorting sorting = NextSorting({.column = 0}, 1);
  EXPECT_FALSE(sorting.descending);
  sorting = NextSorting(sorting, 1);
  EXPECT_TRUE(sorting.descending);
  EXPECT_FALSE(NextSorting(sorting, 1).descending);
}

TEST(ListRows, AreDrawnWithTheirCellsAndTheSelection) {
  kvtest::TestBitmap picture(200, 40);
  static std::string asked;
  asked.clear();
  const auto cell = [](UINT row, int column) {
    asked += std::to_string(row) + "/" + std::to_string(column) + " ";
    return std::wstring(L"x");
  };
  DRAWITEMSTRUCT item{.itemID = 8, .itemState = ODS_SELECTED, .hDC = picture.dc(), .rcItem = {0, 0, 200, 20}};
  DrawListRow(item, kColumns, cell);
  EXPECT_EQ("8/0 8/1 ", asked);
  EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), picture.At(100, 2));
  EXPECT_LT(0, picture.CountOf(GetSysColor(COLOR_HIGHLIGHTTEXT)));
  item.itemState = 0;
  DrawListRow(item, kColumns, cell);
  EXPECT_EQ(GetSysColor(COLOR_WINDOW), picture.At(100, 2));
  item.itemID = kHeaderRow;
  item.rcItem = {0, 20, 200, 40};
  DrawListRow(item, kColumns, nullptr);
  const int unmarked = picture.CountOf(GetSysColor(COLOR_BTNTEXT));
  DrawListRow(item, kColumns, nullptr, {.column = 0, .descending = true});
  EXPECT_LT(unmarked, picture.CountOf(GetSysColor(COLOR_BTNTEXT)));
  EXPECT_EQ(GetSysColor(COLOR_BTNFACE), picture.At(100, 24));
}

}  // namespace
}  // namespace kv
