#include "framework/supersample.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "framework/painting.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr COLORREF kBlack = RGB(0, 0, 0), kWhite = RGB(255, 255, 255), kUntouched = RGB(0xCC, 0xCC, 0xCC);

TEST(Supersample, EdgesAreAveragedAndTheRestComesBackUnchanged) {
  kvtest::Picture picture(40, 40);
  FillSolid(picture.dc(), {0, 0, 40, 40}, RGB(10, 200, 30));
  picture.Fill(0xCC);
  FillSolid(picture.dc(), {10, 10, 30, 30}, kBlack);
  {
    const Supersample canvas(picture.dc(), {10, 10, 30, 30});
    ASSERT_EQ(4, canvas.factor());
    // From x = 15 to 20.5, y = 12 to 25.25: the last column is half covered, the last row a quarter.
    const PointD corners[] = {{15, 12}, {20.5, 12}, {20.5, 25.25}, {15, 25.25}};
    FillPolygon(canvas, corners, kWhite);
  }
  EXPECT_EQ(kWhite, picture.At(15, 12));
  EXPECT_EQ(kBlack, picture.At(14, 12));
  EXPECT_EQ(RGB(128, 128, 128), picture.At(20, 15));
  EXPECT_EQ(RGB(64, 64, 64), picture.At(16, 25));
  EXPECT_EQ(kBlack, picture.At(21, 15));
  EXPECT_EQ(kUntouched, picture.At(9, 15));
  EXPECT_EQ(kUntouched, picture.At(30, 15));
}

TEST(Supersample, DiscsAndRingsCoverWhatTheyShould) {
  kvtest::Picture picture(100, 100);
  FillSolid(picture.dc(), {0, 0, 100, 100}, kBlack);
  {
    const Supersample canvas(picture.dc(), {0, 0, 100, 100});
    FillDisc(canvas, {50, 50}, 20, kWhite);
    FillRingSector(canvas, {50, 50}, 30, 40, 0, 90, RGB(255, 0, 0));
    FillRingSector(canvas, {50, 50}, 30, 40, 90, 80, kWhite);  // backwards: nothing
    FillLine(canvas, {10, 90}, {30, 90}, 2, RGB(0, 0, 255));
    FillGradientDisc(canvas, {20, 20}, 10, kWhite, RGB(1, 1, 1));
  }
  double covered = 0;
  for (int y = 30; y < 70; ++y) {
    for (int x = 30; x < 70; ++x) covered += GetGValue(picture.At(x, y)) / 255.0;
  }
  EXPECT_NEAR(3.14159 * 20 * 20, covered, 12);
  EXPECT_EQ(kBlack, picture.At(50 - 22, 50));
  EXPECT_EQ(RGB(255, 0, 0), picture.At(50 + 25, 50 - 25));
  EXPECT_EQ(kBlack, picture.At(50 + 25, 50 + 25));
  EXPECT_EQ(RGB(0, 0, 255), picture.At(20, 89));
  EXPECT_EQ(kBlack, picture.At(20, 92));
  EXPECT_GT(GetRValue(picture.At(20, 12)), GetRValue(picture.At(20, 28)) + 100);
  EXPECT_EQ(kBlack, picture.At(11, 11));
}

TEST(Supersample, FactorShrinksWithTheAreaAndOddInputIsHarmless) {
  EXPECT_EQ(4, SupersampleFactor(500, 500));
  EXPECT_EQ(3, SupersampleFactor(600, 600));
  EXPECT_EQ(2, SupersampleFactor(2000, 2000));
  EXPECT_EQ(1, SupersampleFactor(4000, 4000));
  EXPECT_EQ(0, SupersampleFactor(32767, 32767));
  EXPECT_EQ(0, SupersampleFactor(0, 10));
  EXPECT_EQ(0, SupersampleFactor(10, -1));

  kvtest::Picture picture(10, 10);
  {
    const Supersample none(picture.dc(), {5, 5, 5, 9});
    FillDisc(none, {5, 5}, 3, kWhite);
    const Supersample canvas(picture.dc(), {0, 0, 10, 10});
    const double infinite = std::numeric_limits<double>::infinity();
    const PointD corners[] = {{NAN, 1}, {infinite, 1e300}, {-infinite, -1e300}};
    FillPolygon(canvas, corners, kUntouched);
    FillDisc(canvas, {5, 5}, NAN, kWhite);
    FillLine(canvas, {1, 1}, {1, 1}, 5, kWhite);
  }
  EXPECT_EQ(100, picture.CountOf(kUntouched));
}

TEST(Supersample, PicturesOfAllSizesAndNestedOnesKeepApart) {
  kvtest::Picture picture(700, 300);
  FillSolid(picture.dc(), {0, 0, 700, 300}, kBlack);
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
    kvtest::Picture picture(60, 60);
    FillSolid(picture.dc(), {0, 0, 60, 60}, kBlack);
    {
      const Supersample canvas(picture.dc(), {0, 0, 60, 60});
      FillGlyph(canvas, glyph, {30, 30}, 0, 40, turn, kWhite);
    }
    int left = 0, right = 0, above = 0, below = 0;
    for (int i = 0; i < 60 * 60; ++i) {
      const int x = i % 60, y = i / 60;
      if (picture.At(x, y) != kWhite) continue;
      ++(x < 30 ? left : right);
      ++(y < 30 ? above : below);
    }
    EXPECT_GT(turn == 0 ? left : above, (turn == 0 ? right : below) + 50);
  }
}

}  // namespace
}  // namespace kv
