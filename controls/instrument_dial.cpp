#include "controls/instrument_dial.h"

#include <algorithm>
#include <cmath>

namespace kv {

Dial DialIn(const RECT& area) {
  const int width = area.right - area.left, height = area.bottom - area.top;
  const PointD centre{area.left + width / 2.0, area.top + height / 2.0};
  const double side = std::min(width, height);
  if (side < 4) return {centre, 0, 0};
  const double radius = side / 2 - (side < 64 ? 0.5 : 1.0 + side / 200);
  return {centre, radius, radius - std::max(1.25, radius * 0.07)};
}

void DrawDialCase(const Supersample& canvas, const Dial& dial, const DialColors& colors) {
  const double rim = dial.radius - dial.faceRadius;
  FillGradientDisc(canvas, dial.centre, dial.radius, colors.rimTop, colors.rimBottom);
  // The inner slope of the rim catches the light from the other side.
  FillGradientDisc(canvas, dial.centre, dial.faceRadius + rim * 0.45, colors.rimBottom, colors.rimTop);
  FillDisc(canvas, dial.centre, dial.faceRadius + rim * 0.12, RGB(10, 11, 13));
  FillGradientDisc(canvas, dial.centre, dial.faceRadius, colors.faceTop, colors.faceBottom);
}

RECT BoundsOf(std::span<const PointD> places, double margin, const RECT& limit) {
  double left = limit.right, top = limit.bottom, right = limit.left, bottom = limit.top;
  for (const PointD& place : places) {
    left = std::min(left, place.x - margin);
    top = std::min(top, place.y - margin);
    right = std::max(right, place.x + margin);
    bottom = std::max(bottom, place.y + margin);
  }
  const auto within = [](double value, LONG low, LONG high) {
    return static_cast<LONG>(std::clamp(value, static_cast<double>(low), static_cast<double>(high)));
  };
  return {within(std::floor(left), limit.left, limit.right), within(std::floor(top), limit.top, limit.bottom),
          within(std::ceil(right), limit.left, limit.right), within(std::ceil(bottom), limit.top, limit.bottom)};
}

}  // namespace kv
