#include "kv/lists/extended_list_layout.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>
#include <utility>

namespace kv {
namespace {

TEST(ExtendedListLayout, RowsStartAtTheOffsetAndEndPastTheSurface) {
  // A row whose top equals the height is included. Only whole rows: an offset within a row has no effect.
  const std::tuple<DWORD, LONG, LONG, LONG, RowRun> cases[] = {{100, 20, 0, 100, {0, 5, 20}},
                                                               {100, 20, 0, 99, {0, 4, 20}},
                                                               {100, 20, 39, 100, {1, 5, 20}},
                                                               {3, 20, 0, 100, {0, 3, 20}},
                                                               {3, 20, 60, 100, {0, 0, 0}},
                                                               {100, 20, -19, 100, {0, 5, 20}},
                                                               {100, 20, -40, 100, {0, 3, 60}},
                                                               {100, 20, INT_MIN, 100, {0, 0, 0}},
                                                               {100, 20, 0, 0, {0, 0, 0}},
                                                               {UINT_MAX, 1, INT_MAX, INT_MAX, {INT_MAX, INT_MAX, 1}},
                                                               {UINT_MAX, INT_MAX, 0, INT_MAX, {0, 1, INT_MAX}}};
  for (const auto& [rowCount, rowHeight, offset, surfaceHeight, expected] : cases) {
    const RowRun run = VisibleRows(rowCount, rowHeight, offset, surfaceHeight);
    EXPECT_EQ(std::tie(expected.first, expected.count, expected.top), std::tie(run.first, run.count, run.top));
  }
  EXPECT_EQ(INT_MAX, RowRect(5, 2, INT_MAX).bottom);
  EXPECT_EQ(17, UsableRowHeight(0));
  EXPECT_EQ(16384, UsableSurfaceWidth(20000));
}

TEST(ExtendedListLayout, OffsetsMayExceedTheEndsButNotTheNumberRange) {
  const SCROLLINFO bar{.nPos = 300, .nTrackPos = 400};
  const LONG expected[] = {-17, 17, -170, 170, 0, 400, 0, 0, 300, 0};
  for (int request = 0; request < 10; ++request) EXPECT_EQ(expected[request], ScrolledOffset(request, 0, 17, bar));
  EXPECT_EQ(INT_MIN, ScrolledOffset(SB_PAGEUP, INT_MIN + 5, 17, bar));
  EXPECT_EQ(INT_MAX, ScrolledOffset(SB_PAGEDOWN, 0, INT_MAX, bar));

  EXPECT_TRUE(HorizontalBar(300, 100, 0).nMax == 299 && HorizontalBar(300, 100, 0).fMask == 31);
  EXPECT_EQ(0, HorizontalBar(0, 100, 0).nMax);
  EXPECT_EQ(170000000, VerticalBar(10000000, 17, 400, 0).nMax);
  EXPECT_EQ(INT_MAX - 1, VerticalBar(UINT_MAX, INT_MAX, 400, 0).nMax);
  const std::pair<LONG, LONG> lefts[] = {{-17, 17}, {INT_MIN, 100}, {INT_MAX, -300}};
  for (const auto& [offset, left] : lefts) EXPECT_EQ(left, SurfaceLeft(offset, 300, 100));
}

}  // namespace
}  // namespace kv
