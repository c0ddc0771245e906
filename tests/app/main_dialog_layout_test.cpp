#include "app/main_dialog_layout.h"

#include <gtest/gtest.h>
#include <array>

namespace kv {
namespace {

TEST(MainDialogGeometry, StatusPartsAndButtonsShareTheWidth) {
  const auto edges = StatusPartEdges(656);
  EXPECT_EQ((std::array<int, 5>{130, 258, 386, 514, 642}), edges);
  EXPECT_EQ(128 + 1, StatusPartEdges(652)[0]) << "fractions are cut, not rounded";

  const SIZE client{656, 400};
  const RECT first = StatusButtonPlace(0, client), second = StatusButtonPlace(1, client);
  EXPECT_EQ(3, first.left);
  EXPECT_EQ(130 - 2, first.right);
  EXPECT_EQ(383, first.top);
  EXPECT_EQ(399, first.bottom);
  EXPECT_EQ(130 + 4, second.left);
  EXPECT_EQ(258 - 2, second.right);
}

TEST(MainDialogGeometry, BackgroundFollowsTheScales) {
  const SIZE design{600, 500};
  const RECT tab{24, 60, 580, 440};
  const BackgroundShape same = ShapeBackground(design, design, 30, 20, tab);
  EXPECT_EQ(14, same.frame.left);
  EXPECT_EQ(52, same.frame.top);
  EXPECT_EQ(608, same.frame.right);
  EXPECT_EQ(448, same.frame.bottom);
  EXPECT_EQ(7, same.frameRadius);
  EXPECT_EQ(28, same.topLines[0].y);
  EXPECT_EQ(500 - 20 - 7 + 2, same.bottomLines[7].y);
  EXPECT_EQ(609, same.shadowLines[0].fromX);
  EXPECT_EQ(14 + 8, same.shadowLines[0].toX);
  EXPECT_EQ(14 + 3 + 8, same.shadowLines[3].toX);
  EXPECT_EQ(451, same.shadowLines[3].y);

  // Half as wide, twice as high between the bars: the average scale is 1.25, the shadow is spread by 2.
  const BackgroundShape tall = ShapeBackground({300, 950}, design, 30, 20, tab);
  EXPECT_EQ(19, tall.frame.left);
  EXPECT_EQ(456, tall.frame.bottom);
  EXPECT_EQ(8, tall.frameRadius);
  EXPECT_EQ(19 + 15, tall.shadowLines[4].toX);
  EXPECT_EQ(456 + 8, tall.shadowLines[4].y);
  // A flat window never lets the shadow lines fall together.
  const BackgroundShape flat = ShapeBackground({600, 275}, design, 30, 20, tab);
  EXPECT_EQ(flat.frame.bottom + 7, flat.shadowLines[7].y);
}

TEST(MainDialogGeometry, ADesignWithoutRoomDoesNotDivideByZero) {
  const BackgroundShape shape = ShapeBackground({300, 200}, {0, 50}, 30, 20, {0, 0, 100, 100});
  EXPECT_EQ(-10, shape.frame.left);
  EXPECT_EQ(108, shape.frame.bottom);
}

}  // namespace
}  // namespace kv
