// Geometry (pure functions) and drawing of an artificial horizon. The thread that owns the control.
#pragma once

#include <windows.h>

#include <array>
#include <memory>

#include "kv/controls/horizon/horizon.h"
#include "kv/framework/canvas.h"
#include "kv/framework/glyph_outline.h"
#include "kv/framework/guards.h"

namespace kv {

// In pixels; coordinates are edges between pixels.
struct HorizonLayout {
  RECT area;                 // the moving part, which is redrawn for a new attitude
  RECT tape;                 // of the heading; empty without kHorizonTape
  PointD center;             // of the aircraft symbol
  double rim, ring, radius;  // of the case, the ring with the roll scale, and sky and ground
  double pixelsPerDegree;
  bool round;
};
HorizonLayout LayoutHorizon(SIZE size, DWORD style);

// The position of a point that is `right` of the symbol along the horizon and `up` perpendicular to it, in pixels.
PointD HorizonPoint(const HorizonLayout& layout, double roll, double right, double up);
// Degrees between the ladder's marks: 10, 5 or 2.5, depending on the size.
double LadderStep(double pixelsPerDegree);

// The attitude with roll normalized to -180..180 and heading to 0 up to, not including, 360; other fields are clamped.
HorizonAttitude NormalAttitude(const HorizonAttitude& attitude);
// The next attitude of an animation to `target`, and whether the animation continues.
bool AnimateAttitude(HorizonAttitude* shown, const HorizonAttitude& target);

class HorizonRenderer {
 public:
  // Updates the image and returns the changed rectangles; with `redrawAll` draws everything.
  RECT Update(const HorizonAttitude& attitude, DWORD style, SIZE size, bool redrawAll);

  const Surface& surface() const { return surface_; }
  HDC dc() const { return dc_; }

 private:
  void DrawCase();
  void DrawAttitude(Canvas& canvas);
  void DrawGround(Canvas& canvas);
  double EdgeDistance() const;
  bool IsCovered(PointD place, double reach) const;
  void AddRung(Canvas& canvas, double degrees);
  void DrawLadder(Canvas& canvas);
  void DrawChevrons(Canvas& canvas);
  void DrawRollScale(Canvas& canvas);
  void DrawSymbol(Canvas& canvas);
  void DrawTape(Canvas& canvas);
  void DrawFlag(Canvas& canvas);
  void AddText(Canvas& canvas, const wchar_t* text, PointD place, double height, double degrees, COLORREF color);
  COLORREF Shown(COLORREF color) const;

  Surface surface_, case_;
  MemoryDc dc_{nullptr};
  CoverageShape shape_;
  std::array<std::unique_ptr<GlyphOutline>, 128> glyphs_;
  HorizonLayout layout_{};
  HorizonAttitude attitude_{};
  DWORD style_ = 0;
  COLORREF panel_ = 0;
};

}  // namespace kv
