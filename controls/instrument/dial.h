// The round case that gauge and compass share: where it stands in a rectangle, and its metal rim and face.
#pragma once

#include "controls/instrument/view.h"
#include "framework/canvas.h"

namespace kv {

// In pixels, places as the edges between them.
struct Dial {
  PointD centre;
  double radius;      // outside of the rim
  double faceRadius;  // the face within the rim, to which everything else is in proportion
};

// The largest dial in the middle of the area; radius 0 when there is no room for one.
Dial DialIn(const RECT& area);

void DrawDialCase(Canvas& canvas, const Dial& dial, const DialColors& colors);

}  // namespace kv
