// The panels of the distribution view: where their parts are, and drawing them. Main thread only.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "camera/camera_record.h"
#include "camview/distributions.h"
#include "kv/framework/canvas.h"

namespace camview {

struct PointCounts {
  CountGrid grid;  // cells of one value
  GridFigures figures;
};

// Values of a place; of a histogram only x.
struct CellPlace {
  LONG x, y;
  bool operator==(const CellPlace&) const = default;
};

// A value v covers the pixels from originX + v * unitPx to originX + (v + 1) * unitPx, and the same with y. Cells of
// `bin` values begin at whole pixels.
struct PanelLayout {
  RECT header, plot;
  int fontPx, digitPx;
  double unitPx, originX, originY;
  LONG bin;
  bool isScatter;
};

// `digits` is the number of characters at the vertical axis.
PanelLayout LayoutPanel(const RECT& area, int fontPx, size_t digits, bool isScatter, const CountGrid& grid);

// Returns the place that a pixel shows; nothing outside the plot and where no value can be.
std::optional<CellPlace> PlaceAt(const PanelLayout& layout, POINT pixel);

struct PanelColors {
  COLORREF around, text, plot, ink, frame, grid;
  std::array<COLORREF, kv::kPointCount> points;
};
PanelColors ColorsOfPanels(bool isScatter);

// The canvas has a font of that size. `cells` is the grid in cells of `layout.bin` values.
struct PanelContent {
  const PointCounts& counts;
  const CountGrid& cells;
  std::wstring header;
  COLORREF color;
  std::optional<CellPlace> reading;
};
void DrawPanel(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors, const PanelContent& content);

}  // namespace camview
