#include "controls/instrument/dial.h"

#include <algorithm>
#include "controls/instrument/view.h"
#include "framework/canvas.h"
#include "framework/coverage.h"

namespace kv {

Dial DialIn(const RECT& area) {
  const int width = area.right - area.left, height = area.bottom - area.top;
  const PointD centre{area.left + width / 2.0, area.top + height / 2.0};
  const double side = std::min(width, height);
  if (side < 4) return {centre, 0, 0};
  const double radius = side / 2 - (side < 64 ? 0.5 : 1.0 + side / 200);
  return {centre, radius, radius - std::max(1.25, radius * 0.07)};
}

void DrawDialCase(Canvas& canvas, const Dial& dial, const DialColors& colors) {
  const double rim = dial.radius - dial.faceRadius;
  FillGradientDisc(canvas, dial.centre, dial.radius, colors.rimTop, colors.rimBottom);
  // The inner slope of the rim catches the light from the other side.
  FillGradientDisc(canvas, dial.centre, dial.faceRadius + rim * 0.45, colors.rimBottom, colors.rimTop);
  FillDisc(canvas, dial.centre, dial.faceRadius + rim * 0.12, RGB(10, 11, 13));
  FillGradientDisc(canvas, dial.centre, dial.faceRadius, colors.faceTop, colors.faceBottom);
}

}  // namespace kv
