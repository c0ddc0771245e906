// Draws shapes from a file, white on black, so that `benchmarks/run edge_accuracy` can compare them with another
// renderer's.
//   drawn_shapes SHAPES PICTURES
// Each line of SHAPES is one image: its size, then a shape with its parameters.
//   60 60 polygon x y x y ...   60 60 disc x y radius   60 60 ring x y inner outer from to   60 60 line x y x y width
//   60 60 glyph CHARACTER-CODE x y height degrees
// PICTURES gets one byte for each pixel of all images. The flattened outline of a glyph is printed to standard output:
// its number of contours, then a line for each.
#include <windows.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "kv/controls/instrument/cache.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/guards.h"

namespace {

void PrintContours(const kv::GlyphOutline& glyph) {
  printf("%d\n", glyph.contours);
  for (int contour = 0, i = 0; contour < glyph.contours; ++contour) {
    for (; i < glyph.ends[contour]; ++i) printf("%.9g %.9g ", glyph.points[i].x, glyph.points[i].y);
    printf("\n");
  }
}

void Draw(kv::Canvas& canvas, const std::string& shape, const std::vector<double>& n) {
  const COLORREF white = RGB(255, 255, 255);
  if (shape == "polygon") {
    std::vector<kv::PointD> corners;
    for (size_t i = 0; i + 1 < n.size(); i += 2) corners.push_back({n[i], n[i + 1]});
    kv::FillPolygon(canvas, corners, white);
  } else if (shape == "disc" && n.size() == 3) {
    kv::FillDisc(canvas, {n[0], n[1]}, n[2], white);
  } else if (shape == "ring" && n.size() == 6) {
    kv::FillAnnularSector(canvas, {n[0], n[1]}, n[2], n[3], n[4], n[5], white);
  } else if (shape == "line" && n.size() == 5) {
    kv::FillLine(canvas, {n[0], n[1]}, {n[2], n[3]}, n[4], white);
  } else if (shape == "glyph" && n.size() == 5) {
    const auto glyph = std::make_unique<kv::GlyphOutline>();
    kv::OutlineOfCharacter(kv::kInstrumentFont, FW_BOLD, static_cast<wchar_t>(n[0]), glyph.get());
    PrintContours(*glyph);
    kv::FillGlyph(canvas, *glyph, {n[1], n[2]}, 0, n[3], n[4], white);
  } else {
    printf("unknown shape %s\n", shape.c_str());
  }
}

bool WriteImage(const std::string& line, kv::CoverageShape& coverage, FILE* to) {
  std::istringstream words(line);
  SIZE size{};
  std::string shape;
  words >> size.cx >> size.cy >> shape;
  std::vector<double> numbers;
  for (double number; words >> number;) numbers.push_back(number);
  kv::Surface surface;
  if (!surface.Create(size)) return false;
  const kv::MemoryDc dc(nullptr);
  kv::Canvas canvas(dc, surface, coverage);
  kv::FillArea(canvas, {0, 0, size.cx, size.cy}, RGB(0, 0, 0));
  Draw(canvas, shape, numbers);
  for (LONG y = 0; y < size.cy; ++y) {
    for (LONG x = 0; x < size.cx; ++x) fputc(static_cast<int>(surface.Row(y)[x] & 0xFF), to);
  }
  return true;
}

}  // namespace

int main(int count, char** arguments) {
  FILE* from = count > 2 ? fopen(arguments[1], "r") : nullptr;
  FILE* to = from ? fopen(arguments[2], "wb") : nullptr;
  if (!to) return 1;
  const auto coverage = std::make_unique<kv::CoverageShape>();
  static char line[1 << 16];
  bool drawn = true;
  while (drawn && fgets(line, sizeof(line), from)) drawn = WriteImage(line, *coverage, to);
  fclose(from);
  return fclose(to) == 0 && drawn ? 0 : 1;
}
