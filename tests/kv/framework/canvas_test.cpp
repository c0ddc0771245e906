// Drawing with exact area coverage.
#include "kv/framework/canvas.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "kv/framework/coverage.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"

namespace kv {
namespace {

constexpr COLORREF kBlack = RGB(0, 0, 0), kWhite = RGB(255, 255, 255);

// A black surface.
struct Board {
  Board(int width, int height) : room(std::make_unique<CoverageShape>()) {
    EXPECT_TRUE(surface.Create({width, height}));
    canvas = std::make_unique<Canvas>(dc, surface, *room);
    FillArea(*canvas, {0, 0, width, height}, kBlack);
  }
  int At(int x, int y) const { return static_cast<int>(surface.Row(y)[x] & 0xFFFFFF); }
  int Blue(int x, int y) const { return At(x, y) & 0xFF; }
  double Covered() const {
    double sum = 0;
    for (int i = 0; i < surface.size().cx * surface.size().cy; ++i) {
      sum += Blue(i % surface.size().cx, i / surface.size().cx);
    }
    return sum / 255;
  }

  Surface surface;
  MemoryDc dc{nullptr};
  std::unique_ptr<CoverageShape> room;
  std::unique_ptr<Canvas> canvas;
};

TEST(Canvas, ClippingDoesNotChangeAShape) {
  Board whole(90, 70), parts(90, 70);
  const auto glyph = std::make_unique<GlyphOutline>();
  ASSERT_TRUE(OutlineOfCharacter(L"Arial Unicode MS", FW_BOLD, L'8', glyph.get()));
  const auto draw = [&](Canvas& canvas) {
    FillGradientDisc(canvas, {40.3, 35.7}, 31.2, kWhite, RGB(200, 20, 90));
    FillAnnularSector(canvas, {50, 30}, 11.5, 60.25, -70, 215, RGB(40, 250, 30));
    FillLine(canvas, {-300, -17}, {500, 83.4}, 0.7, kWhite);
    FillAreaAcross(canvas, {10, 50, 80, 60}, kBlack, kWhite);
    BeginShape(canvas);  // more overlapping glyphs than a shape's capacity
    for (int x = 0; x < 90; x += 2) AddGlyph(canvas, *glyph, {x + 0.3, 20}, 0, 18, 0, RGB(90, 80, 7));
    FillShape(canvas, RGB(90, 80, 7));
  };
  draw(*whole.canvas);
  for (const RECT& clip : {RECT{0, 0, 33, 70}, RECT{33, 0, 90, 41}, RECT{33, 41, 47, 70}, RECT{47, 41, 999, 999}}) {
    parts.canvas->ClipTo(clip);
    draw(*parts.canvas);
  }
  EXPECT_EQ(0, memcmp(whole.surface.Row(0), parts.surface.Row(0), 90 * 70 * 4));
}

TEST(Canvas, ShapesCoverTheirArea) {
  for (const double radius : {0.3, 3.0, 20.0, 45.0}) {
    Board disc(100, 100);
    FillDisc(*disc.canvas, {50.2, 49.7}, radius, kWhite);
    EXPECT_NEAR(3.14159265 * radius * radius, disc.Covered(), 0.02 + radius * 0.02) << radius;
  }
  Board ring(100, 100);
  FillAnnularSector(*ring.canvas, {50, 50}, 30, 40, 0, 90, kWhite);
  EXPECT_NEAR(3.14159265 * 700 / 4, ring.Covered(), 0.5);
  EXPECT_TRUE(ring.At(75, 25) && !ring.At(75, 75) && !ring.At(25, 25));

  Board line(100, 100);
  FillLine(*line.canvas, {10, 90.5}, {90, 10.5}, 0.5, kWhite);
  EXPECT_NEAR(0.5 * 80 * std::sqrt(2.0), line.Covered(), 0.5);

  Board blended(10, 100);
  FillGradientDisc(*blended.canvas, {5, 50}, 50, RGB(200, 0, 0), RGB(0, 0, 100));
  EXPECT_EQ(0x650032, blended.At(5, 49));  // half a pixel above the middle
  FillAreaDown(*blended.canvas, {0, 0, 10, 100}, kBlack, kWhite);
  EXPECT_TRUE(blended.Blue(5, 0) == 1 && blended.Blue(5, 99) == 254);
}

TEST(Canvas, InvalidInputAndTooManyEdgesDrawNothing) {
  Board board(20, 20);
  Canvas& canvas = *board.canvas;
  std::vector<PointD> zigzag;
  for (int i = 0; i <= CoverageShape::kMaxEdges; ++i) zigzag.push_back({i * 0.01, i % 2 * 20.0});
  FillPolygon(canvas, zigzag, kWhite);
  FillPolygon(canvas, {}, kWhite);
  FillDisc(canvas, {10, 10}, NAN, kWhite);
  FillDisc(canvas, {NAN, 10}, 5, kWhite);
  FillDisc(canvas, {10, 10}, -5, kWhite);
  FillAnnularSector(canvas, {10, 10}, 3, 8, 90, 80, kWhite);
  FillAnnularSector(canvas, {10, 10}, 3, 8, NAN, 80, kWhite);
  FillLine(canvas, {1, 1}, {1, 1}, 5, kWhite);
  FillArea(canvas, {5, 5, 5, 9}, kWhite);
  canvas.ClipTo({30, 0, 40, 20});
  FillDisc(canvas, {10, 10}, 100, kWhite);
  EXPECT_EQ(0, board.Covered());
  canvas.ClipTo({0, 0, 20, 20});
  const PointD huge[] = {{-INFINITY, -1e300}, {1e300, -INFINITY}, {1e300, 1e300}, {-1e300, 1e300}};
  FillPolygon(canvas, huge, kWhite);
  EXPECT_EQ(20 * 20, board.Covered());
  Surface none;
  EXPECT_FALSE(none.Create({0, 5}));
}

TEST(Canvas, GdiAndShapesTakeTurnsWithinTheClip) {
  Board board(30, 10);
  board.canvas->ClipTo({5, 0, 25, 10});
  for (int i = 0; i < 3; ++i) {
    FillSolid(board.canvas->dc(), {0, 0, 20, 10}, RGB(0, 0, 200));
    FillArea(*board.canvas, {10, 0, 30, 10}, RGB(0, 0, 100));
  }
  const int expected[] = {0, 200, 100, 0};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(expected[i], board.Blue(std::vector{4, 9, 24, 25}[i], 5)) << i;
}

TEST(Glyphs, OutlinesCanBeRotated) {
  const auto glyph = std::make_unique<GlyphOutline>();
  for (const wchar_t hollow : {L'8', L'0', L'E'}) {
    ASSERT_TRUE(OutlineOfCharacter(L"Arial Unicode MS", FW_BOLD, hollow, glyph.get()));
    EXPECT_EQ(hollow == L'8' ? 3 : hollow == L'0' ? 2 : 1, glyph->contours);
    EXPECT_TRUE(glyph->advance > 0.5 && glyph->advance < 1.5);
  }
  // An E has its stem at the left: upright it is left of the center, rotated by 90 degrees above it.
  for (const double turn : {0.0, 90.0}) {
    Board board(60, 60);
    FillGlyph(*board.canvas, *glyph, {30, 30}, 0, 40, turn, kWhite);
    int more = 0;
    for (int i = 0; i < 60 * 60; ++i) {
      if (board.Blue(i % 60, i / 60) == 255) more += (turn == 0 ? i % 60 : i / 60) < 30 ? 1 : -1;
    }
    EXPECT_GT(more, 50);
  }
  EXPECT_FALSE(OutlineOfCharacter(L"Arial Unicode MS", FW_BOLD, L' ', glyph.get()));
  EXPECT_EQ(0, glyph->contours);
}

TEST(Glyphs, GlyphsBeyondTheCapacityAreDrawnToo) {
  const auto glyph = std::make_unique<GlyphOutline>();
  ASSERT_TRUE(OutlineOfCharacter(L"Arial Unicode MS", FW_BOLD, L'8', glyph.get()));
  Board together(400, 20), each(400, 20);
  BeginShape(*together.canvas);
  for (double x = 5; x < 400; x += 10) {
    AddGlyph(*together.canvas, *glyph, {x, 10}, 0, 8, 0, kWhite);
    FillGlyph(*each.canvas, *glyph, {x, 10}, 0, 8, 0, kWhite);
  }
  FillShape(*together.canvas, kWhite);
  EXPECT_EQ(each.Covered(), together.Covered());
}

}  // namespace
}  // namespace kv
