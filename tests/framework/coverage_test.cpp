#include "framework/coverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace kv {
namespace {

TEST(Coverage, EachPixelGetsThePartThatIsCovered) {
  CoverageShape shape;
  ASSERT_TRUE(shape.Begin({0, 0, 8, 8}));
  // From x = 1.5 to 4.25, y = 2 to 3.5, with a hole that runs the other way, and a triangle of half a pixel.
  const PointD box[] = {{1.5, 2}, {4.25, 2}, {4.25, 3.5}, {1.5, 3.5}};
  const PointD hole[] = {{3, 2}, {3, 2.5}, {4, 2.5}, {4, 2}};
  const PointD triangle[] = {{6, 6}, {7, 7}, {6, 7}};
  EXPECT_TRUE(shape.AddFigure(box) && shape.AddFigure(hole) && shape.AddFigure(triangle));
  const PointD nowhere[] = {{NAN, 1}, {2, 3}, {4, 5}};
  EXPECT_FALSE(shape.AddFigure(nowhere));
  int level[8][8] = {};
  for (CoverageSpan span; shape.Next(&span);) {
    for (int i = 0; i < span.count; ++i) level[span.y][span.x + i] = span.coverage;
  }
  const int expected[8][8] = {{}, {}, {0, 128, 255, 128, 64},  {0, 64, 128, 128, 32},
                              {}, {}, {0, 0, 0, 0, 0, 0, 128}, {}};
  EXPECT_EQ(0, memcmp(expected, level, sizeof(level)));
  EXPECT_FALSE(shape.AddFigure(box));  // it has been handed out
}

// Random figures, most of them larger than what is wanted of them: whatever part is asked for, it is that of the whole.
TEST(Coverage, EveryPartIsThatOfTheWhole) {
  constexpr int kSide = 40;
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(-20, 60);
  for (int round = 0; round < 300; ++round) {
    std::vector<PointD> corners(3 + round % 9);
    for (PointD& corner : corners) corner = {place(random), round % 3 ? place(random) : std::floor(place(random))};
    const int x = static_cast<int>(random() % kSide), y = static_cast<int>(random() % kSide);
    int levels[2][kSide][kSide] = {};
    const PixelArea areas[] = {{0, 0, kSide, kSide}, {x, y, kSide, std::min(y + 9, kSide)}};
    for (int i = 0; i < 2; ++i) {
      CoverageShape shape;
      ASSERT_TRUE(shape.Begin(areas[i]) && shape.AddFigure(corners));
      for (CoverageSpan span; shape.Next(&span);) {
        for (int column = span.x; column < span.x + span.count; ++column) levels[i][span.y][column] = span.coverage;
      }
    }
    for (int row = areas[1].top; row < areas[1].bottom; ++row) {
      for (int column = x; column < kSide; ++column) {
        ASSERT_NEAR(levels[0][row][column], levels[1][row][column], 1) << round << ": " << column << ", " << row;
      }
    }
  }
}

}  // namespace
}  // namespace kv
