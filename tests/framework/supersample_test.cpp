#include "framework/supersample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "framework/painting.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr COLORREF kBlack = RGB(0, 0, 0), kWhite = RGB(255, 255, 255), kUntouched = RGB(0xCC, 0xCC, 0xCC);

// A picture with a black ground.
class BlackPicture : public kvtest::Picture {
 public:
  BlackPicture(int width, int height) : Picture(width, height) { Fill(0); }
};

TEST(Supersample, EdgesAreAveragedAndTheRestComesBackUnchanged) {
  kvtest::Picture picture(40, 40);
  FillSolid(picture.dc(), {10, 10, 30, 30}, kBlack);
  {
    const Supersample canvas(picture.dc(), {10, 10, 30, 30});
    ASSERT_EQ(4, canvas.factor());
    // From x = 15 to 20.5, y = 12 to 25.25: the last column is half covered, the last row a quarter.
    const PointD corners[] = {{15, 12}, {20.5, 12}, {20.5, 25.25}, {15, 25.25}};
    FillPolygon(canvas, corners, kWhite);
  }
  const struct {
    int x, y;
    COLORREF color;
  } samples[] = {{15, 12, kWhite}, {14, 12, kBlack},    {20, 15, RGB(128, 128, 128)}, {16, 25, RGB(64, 64, 64)},
                 {21, 15, kBlack}, {9, 15, kUntouched}, {30, 15, kUntouched}};
  for (const auto& [x, y, color] : samples) EXPECT_EQ(color, picture.At(x, y)) << x << "," << y;
}

TEST(Supersample, DiscsAndRingsCoverWhatTheyShould) {
  BlackPicture picture(100, 100);
  {
    const Supersample canvas(picture.dc(), {0, 0, 100, 100});
    FillDisc(canvas, {50, 50}, 20, kWhite);
    FillRingSector(canvas, {50, 50}, 30, 40, 0, 90, RGB(255, 0, 0));
    FillRingSector(canvas, {50, 50}, 30, 40, 90, 80, kWhite);  // backwards: nothing
    FillLine(canvas, {10, 90}, {30, 90}, 2, RGB(0, 0, 255));
    FillGradientDisc(canvas, {20, 20}, 10, kWhite, RGB(1, 1, 1));
  }
  double covered = 0;
  for (int i = 0; i < 40 * 40; ++i) covered += GetGValue(picture.At(30 + i % 40, 30 + i / 40)) / 255.0;
  EXPECT_NEAR(3.14159 * 20 * 20, covered, 12);
  EXPECT_TRUE(picture.At(75, 25) == RGB(255, 0, 0) && picture.At(75, 75) == kBlack);
  EXPECT_TRUE(picture.At(20, 89) == RGB(0, 0, 255) && picture.At(20, 92) == kBlack);
  EXPECT_GT(GetRValue(picture.At(20, 12)), GetRValue(picture.At(20, 28)) + 100);
}

TEST(Supersample, FactorShrinksWithTheAreaAndOddInputIsHarmless) {
  const std::pair<int, int> factors[] = {{500, 4}, {600, 3}, {2000, 2}, {4000, 1}, {32767, 0}, {0, 0}, {-1, 0}};
  for (const auto& [side, factor] : factors) EXPECT_EQ(factor, SupersampleFactor(side, std::max(side, 10))) << side;

  kvtest::Picture picture(10, 10);
  {
    const Supersample none(picture.dc(), {5, 5, 5, 9});
    FillDisc(none, {5, 5}, 3, kWhite);
    const Supersample canvas(picture.dc(), {0, 0, 10, 10});
    const PointD corners[] = {{NAN, 1}, {INFINITY, 1e300}, {-INFINITY, -1e300}};
    FillPolygon(canvas, corners, kUntouched);
    FillDisc(canvas, {5, 5}, NAN, kWhite);
    FillLine(canvas, {1, 1}, {1, 1}, 5, kWhite);
  }
  EXPECT_EQ(100, picture.CountOf(kUntouched));
}

TEST(Supersample, PicturesOfAllSizesAndNestedOnesKeepApart) {
  BlackPicture picture(700, 300);
  const RECT areas[] = {{0, 0, 20, 20}, {30, 0, 40, 280}, {50, 0, 690, 290}, {100, 100, 200, 120}};
  const COLORREF colors[] = {RGB(1, 0, 0), RGB(0, 2, 0), RGB(0, 0, 3), RGB(4, 4, 4)};
  for (int i = 0; i < 4; ++i) {
    const Supersample outer(picture.dc(), areas[i]);
    {
      const Supersample inner(picture.dc(), {0, 290, 30, 300});
      FillDisc(inner, {15, 295}, 40, kWhite);
    }
    FillDisc(outer, {areas[i].left + 10.0, areas[i].top + 10.0}, 900, colors[i]);
  }
  EXPECT_EQ(20 * 20, picture.CountOf(colors[0]));
  EXPECT_EQ(10 * 280, picture.CountOf(colors[1]));
  EXPECT_EQ(640 * 290 - 100 * 20, picture.CountOf(colors[2]));
  EXPECT_EQ(100 * 20, picture.CountOf(colors[3]));
  EXPECT_EQ(30 * 10, picture.CountOf(kWhite));
}

TEST(Supersample, GlyphsHaveOutlinesThatTurn) {
  double advance = 0;
  const GlyphOutline glyph = OutlineOfCharacter(L"Arial Unicode MS", FW_BOLD, L'E', &advance);
  ASSERT_FALSE(glyph.empty());
  EXPECT_GT(advance, 0.5);
  EXPECT_LT(advance, 1.5);
  // An E has its stem at the left: upright it stands left of the middle, turned by 90 degrees above it.
  for (const double turn : {0.0, 90.0}) {
    BlackPicture picture(60, 60);
    {
      const Supersample canvas(picture.dc(), {0, 0, 60, 60});
      FillGlyph(canvas, glyph, {30, 30}, 0, 40, turn, kWhite);
    }
    int more = 0;
    for (int i = 0; i < 60 * 60; ++i) {
      if (picture.At(i % 60, i / 60) == kWhite) more += (turn == 0 ? i % 60 : i / 60) < 30 ? 1 : -1;
    }
    EXPECT_GT(more, 50);
  }
}

}  // namespace
}  // namespace kv
