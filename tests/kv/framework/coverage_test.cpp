#include "kv/framework/coverage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <span>
#include <vector>

namespace kv {
namespace {

constexpr int kSide = 40;

// The coverage of each pixel.
struct Levels {
  explicit Levels(CoverageShape& shape) {
    int y = 0;
    for (std::span<const CoverageSpan> spans; !(spans = shape.NextRow(&y)).empty();) {
      for (const CoverageSpan& span : spans) std::fill_n(&at[y][span.x], span.count, static_cast<int>(span.coverage));
    }
  }
  int at[kSide][kSide] = {};
};

TEST(Coverage, EachPixelGetsItsCoveredArea) {
  CoverageShape shape;
  ASSERT_TRUE(shape.Begin({0, 0, 8, 8}));
  // From x = 1.5 to 4.25, y = 2 to 3.5, with a hole in the opposite direction, and a triangle of half a pixel.
  const PointD box[] = {{1.5, 2}, {4.25, 2}, {4.25, 3.5}, {1.5, 3.5}};
  const PointD hole[] = {{3, 2}, {3, 2.5}, {4, 2.5}, {4, 2}};
  const PointD triangle[] = {{6, 6}, {7, 7}, {6, 7}};
  EXPECT_TRUE(shape.AddContour(box) && shape.AddContour(hole) && shape.AddContour(triangle));
  const PointD nowhere[] = {{NAN, 1}, {2, 3}, {4, 5}};
  EXPECT_FALSE(shape.AddContour(nowhere));
  const Levels levels(shape);
  const int expected[kSide][kSide] = {{}, {}, {0, 128, 255, 128, 64}, {0, 64, 128, 128, 32},
                                      {}, {}, {0, 0, 0, 0, 0, 0, 128}};
  EXPECT_EQ(0, memcmp(expected, levels.at, sizeof(expected)));
  EXPECT_FALSE(shape.AddContour(box));  // the shape is complete
}

// Random contours, most of them larger than the requested part: each part equals that of the whole shape.
TEST(Coverage, EveryPartEqualsThatOfTheWhole) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(-20, 60);
  for (int round = 0; round < 300; ++round) {
    std::vector<PointD> corners(3 + round % 9);
    for (PointD& corner : corners) corner = {place(random), round % 3 ? place(random) : std::floor(place(random))};
    const int x = static_cast<int>(random() % kSide), y = static_cast<int>(random() % kSide);
    const PixelArea part{x, y, kSide, std::min(y + 9, kSide)};
    CoverageShape whole, cut;
    ASSERT_TRUE(whole.Begin({0, 0, kSide, kSide}) && whole.AddContour(corners));
    ASSERT_TRUE(cut.Begin(part) && cut.AddContour(corners));
    const Levels expected(whole), found(cut);
    for (int row = part.top; row < part.bottom; ++row) {
      for (int column = x; column < kSide; ++column) {
        ASSERT_NEAR(expected.at[row][column], found.at[row][column], 1) << round << ": " << column << ", " << row;
      }
    }
  }
}

}  // namespace
}  // namespace kv
