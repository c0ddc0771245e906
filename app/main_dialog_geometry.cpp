#include "app/main_dialog_geometry.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kv {

namespace {

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

double Ratio(int now, int design) {
  return design > 0 ? static_cast<double>(now) / design : 1.0;
}

}  // namespace

std::array<int, kStatusPartCount> StatusPartEdges(int clientWidth) {
  const double width = clientWidth - 16;
  const auto edge = [width](double share) { return static_cast<int>(width * share + 2); };
  return {edge(0.2), edge(0.4), edge(0.6), edge(0.8), clientWidth - 14};
}

RECT StatusButtonPlace(int index, SIZE client) {
  constexpr int kHeight = 16, kFromBottom = 17;
  const auto edges = StatusPartEdges(client.cx);
  const int left = index == 0 ? 2 : edges[index - 1];
  const int inset = index == 0 ? 1 : 4;
  const int top = client.cy - kFromBottom;
  // Right edge less two: the part's width without the inset.
  return {left + inset, top, edges[index] - 2, top + kHeight};
}

BackgroundShape ShapeBackground(SIZE client, SIZE design, int toolbarHeight, int statusHeight, const RECT& tab) {
  const double scaleX = Ratio(client.cx, design.cx);
  const double scaleY = Ratio(client.cy - statusHeight - toolbarHeight, design.cy - statusHeight - toolbarHeight);
  const double scale = (scaleX + scaleY) / 2;

  BackgroundShape shape{};
  shape.toolbarBand = {0, 0, client.cx, toolbarHeight};
  shape.frame = {tab.left - Round(scaleX * 10), tab.top - Round(scaleX * 8), client.cx + 8,
                 tab.bottom + Round(8 * scaleY)};
  shape.frameRadius = Round(scale * 6 + 0.5);
  for (int i = 0; i < kBlendSteps; ++i) {
    shape.topLines[i] = {-1, client.cx + 1, toolbarHeight + i - 2};
    shape.bottomLines[i] = {-1, client.cx + 1, client.cy - statusHeight - i + 2};
    shape.shadowLines[i] = {shape.frame.right + 1, shape.frame.left + Round(i * scale + 8 * scale),
                            shape.frame.bottom + Round(i * std::max(scaleY, 1.0))};
  }
  return shape;
}

}  // namespace kv
