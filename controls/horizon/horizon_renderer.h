// The picture of an artificial horizon: its geometry, which is pure, and its drawing. The thread that owns the control.
#pragma once

#include <windows.h>

#include <array>
#include <memory>

#include "controls/horizon/horizon.h"
#include "framework/canvas.h"
#include "framework/glyph_outline.h"
#include "framework/guards.h"

namespace kv {

// In pixels, places as the edges between them.
struct HorizonLayout {
  RECT area;                 // of what moves: all that is drawn anew
  RECT tape;                 // of the heading; empty without
  PointD centre;             // of the aircraft symbol
  double rim, ring, radius;  // of the case, the ring with the roll scale, and sky and ground
  double pixelsPerDegree;
  bool round;
};
HorizonLayout LayoutHorizon(SIZE size, DWORD style);

// Where a place stands that is `right` of the symbol along the horizon and `up` across it, both in pixels.
PointD HorizonPoint(const HorizonLayout& layout, double roll, double right, double up);
// Degrees between the ladder's marks: 10, 5 or 2.5, as the size allows.
double LadderStep(double pixelsPerDegree);

// The same attitude with what is out of range brought into it: roll -180..180, heading 0..360 without 360.
HorizonAttitude NormalAttitude(const HorizonAttitude& attitude);
// The next attitude on the way to `target`, and whether it is not there yet.
bool GlideAttitude(HorizonAttitude* shown, const HorizonAttitude& target);

class HorizonRenderer {
 public:
  // Brings the picture up to date and returns what changed of it; with `redrawAll` it is all drawn.
  RECT Update(const HorizonAttitude& attitude, DWORD style, SIZE size, bool redrawAll);

  const Surface& surface() const { return surface_; }
  HDC dc() const { return dc_; }

 private:
  void DrawCase();
  void DrawAttitude(Canvas& canvas);
  void DrawGround(Canvas& canvas);
  void DrawLadder(Canvas& canvas);
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
