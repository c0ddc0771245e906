#include "app/main_dialog_layout.h"

#include <gtest/gtest.h>
#include <array>
#include <tuple>

namespace kv {
namespace {

bool Is(const RECT& place, const RECT& expected) {
  return EqualRect(&place, &expected) != 0;
}

TEST(MainDialogGeometry, StatusPartsAndButtonsShareTheWidth) {
  EXPECT_EQ((std::array<int, 5>{130, 258, 386, 514, 642}), StatusPartEdges(656));
  EXPECT_EQ(128 + 1, StatusPartEdges(652)[0]) << "fractions are truncated, not rounded";
  EXPECT_TRUE(Is(StatusButtonRect(0, {656, 400}), {3, 383, 128, 399}));
  EXPECT_TRUE(Is(StatusButtonRect(1, {656, 400}), {134, 383, 256, 399}));
}

TEST(MainDialogGeometry, BackgroundFollowsTheScales) {
  const SIZE design{600, 500};
  const RECT tab{24, 60, 580, 440};
  const BackgroundShape same = ShapeBackground(design, design, 30, 20, tab);
  EXPECT_TRUE(Is(same.frame, {14, 52, 608, 448}));
  EXPECT_EQ(std::tuple(7, 28, 475), std::tuple(same.frameRadius, same.topLines[0].y, same.bottomLines[7].y));
  const BackgroundLine& shadow = same.shadowLines[3];
  EXPECT_EQ(std::tuple(609, 14 + 3 + 8, 451), std::tuple(shadow.fromX, shadow.toX, shadow.y));
  // Half as wide, twice as high between the bars: the average scale is 1.25, the shadow's scale is 2.
  const BackgroundShape tall = ShapeBackground({300, 950}, design, 30, 20, tab);
  EXPECT_TRUE(Is(tall.frame, {19, 56, 308, 456}));
  EXPECT_EQ(std::tuple(8, 19 + 15, 456 + 8),
            std::tuple(tall.frameRadius, tall.shadowLines[4].toX, tall.shadowLines[4].y));
  // In a flat window the shadow lines remain distinct, and a design of height 0 causes no division by zero.
  const BackgroundShape flat = ShapeBackground({600, 275}, design, 30, 20, tab);
  EXPECT_EQ(flat.frame.bottom + 7, flat.shadowLines[7].y);
  EXPECT_TRUE(Is(ShapeBackground({300, 200}, {0, 50}, 30, 20, {0, 0, 100, 100}).frame, {-10, -8, 308, 108}));
}

}  // namespace
}  // namespace kv
