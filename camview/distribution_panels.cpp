#include "camview/distribution_panels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/camera_field.h"
#include "camview/distributions.h"
#include "kv/controls/strip_chart/axis.h"
#include "kv/framework/canvas.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

constexpr LONG kLeastValues = 10;  // in a plot, so that a point at rest is not one large cell
constexpr double kLeastCellPx = 2, kMostCellPx = 32;
constexpr LONG kLeastPlotPx = 16;
constexpr wchar_t kNone[] = L"\x2013";

LONG XOf(const PanelLayout& layout, double value) {
  return std::lround(layout.originX + value * layout.unitPx);
}

LONG YOf(const PanelLayout& layout, double value) {
  return std::lround(layout.originY + value * layout.unitPx);
}

// The part of the plot's width or height in which a cell of values lies.
RECT CellRect(const PanelLayout& layout, LONG column, LONG row) {
  return {XOf(layout, static_cast<double>(column * layout.bin)), YOf(layout, static_cast<double>(row * layout.bin)),
          XOf(layout, static_cast<double>((column + 1) * layout.bin)),
          YOf(layout, static_cast<double>((row + 1) * layout.bin))};
}

void DrawTextAt(kv::Canvas& canvas, const std::wstring& text, const RECT& area, UINT format) {
  RECT place = area;
  DrawTextW(canvas.dc(), text.c_str(), -1, &place, format | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
}

// Calls `draw` with each number on an axis and its pixel, numbers being at least `gapPx` apart.
template <class Draw>
void ForTicks(LONG fromPx, LONG toPx, double origin, double unitPx, double gapPx, const Draw& draw) {
  const double step = std::max(kv::NiceStep(gapPx / unitPx), 1.0);
  const double first = std::max(std::ceil((static_cast<double>(fromPx) - origin) / unitPx / step) * step, 0.0);
  for (double value = first; value < kv::kNoPoint; value += step) {
    const LONG at = std::lround(origin + (value + 0.5) * unitPx);
    if (at >= toPx) return;
    draw(static_cast<LONG>(value), at);
  }
}

DWORD HighestOf(const CountGrid& cells) {
  return cells.counts.empty() ? 0 : *std::ranges::max_element(cells.counts);
}

LONG TopOfBars(const PanelLayout& layout) {
  return layout.plot.top + layout.fontPx / 2;
}

void DrawAxes(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors, const CountGrid& cells) {
  const RECT& plot = layout.plot;
  const LONG tick = std::max(layout.fontPx / 4, 2), half = 3 * layout.digitPx;
  SetTextColor(canvas.dc(), colors.text);
  ForTicks(plot.left, plot.right, layout.originX, layout.unitPx, 6.0 * layout.digitPx, [&](LONG value, LONG x) {
    if (layout.isScatter) kv::FillArea(canvas, {x, plot.top, x + 1, plot.bottom}, colors.grid);
    kv::FillArea(canvas, {x, plot.bottom, x + 1, plot.bottom + tick}, colors.frame);
    DrawTextAt(canvas, std::to_wstring(value), {x - half, plot.bottom + tick, x + half, plot.bottom + tick},
               DT_CENTER | DT_TOP);
  });
  const auto name = [&](const std::wstring& text, LONG y, UINT format) {
    kv::FillArea(canvas, {plot.left - tick, y, plot.left, y + 1}, colors.frame);
    DrawTextAt(canvas, text, {plot.left - tick - 1, y, plot.left - tick - 1, y}, DT_RIGHT | format);
  };
  if (!layout.isScatter) {
    name(L"0", plot.bottom, DT_BOTTOM);
    return name(kv::NumberText(HighestOf(cells)), TopOfBars(layout), DT_VCENTER);
  }
  ForTicks(plot.top, plot.bottom, layout.originY, layout.unitPx, 1.8 * layout.fontPx, [&](LONG value, LONG y) {
    kv::FillArea(canvas, {plot.left, y, plot.right, y + 1}, colors.grid);
    name(std::to_wstring(value), y, DT_VCENTER);
  });
}

// ---- Scatter --------------------------------------------------------------------------------------------------------

void DrawCells(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors, const PanelContent& content) {
  constexpr int kFaintest = 35;  // percent; a single record is seen
  const CountGrid& cells = content.cells;
  const double most = std::log2(1.0 + HighestOf(cells));
  for (LONG row = 0; row < cells.height; ++row) {
    for (LONG column = 0; column < cells.width; ++column) {
      const DWORD count = cells.At(column, row);
      if (count == 0) continue;
      const double part = most > 1 ? (std::log2(1.0 + count) - 1) / (most - 1) : 1;
      kv::FillArea(canvas, CellRect(layout, cells.left + column, cells.top + row),
                   kv::MixColors(colors.plot, content.color, kFaintest + static_cast<int>((100 - kFaintest) * part)));
    }
  }
}

// With an outline, to be seen on every shade.
void DrawMean(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors, const GridFigures& figures) {
  const LONG least = std::max(layout.fontPx / 3, 3);
  const auto arm = [&](const camera::Spread& spread) {
    return std::max(std::lround(camera::Deviation(spread, figures.count) * layout.unitPx), least);
  };
  const LONG x = XOf(layout, camera::Mean(figures.x, figures.count) + 0.5), across = arm(figures.x);
  const LONG y = YOf(layout, camera::Mean(figures.y, figures.count) + 0.5), down = arm(figures.y);
  for (const LONG edge : {1, 0}) {
    const COLORREF color = edge ? colors.plot : colors.ink;
    kv::FillArea(canvas, {x - across - edge, y - edge, x + across + 1 + edge, y + 1 + edge}, color);
    kv::FillArea(canvas, {x - edge, y - down - edge, x + 1 + edge, y + down + 1 + edge}, color);
  }
}

// ---- Histogram ------------------------------------------------------------------------------------------------------

void DrawBars(kv::Canvas& canvas, const PanelLayout& layout, const PanelContent& content) {
  constexpr LONG kSeparatedPx = 4;
  const CountGrid& cells = content.cells;
  const RECT& plot = layout.plot;
  const double most = std::max(HighestOf(cells), 1uL);
  const LONG top = TopOfBars(layout);
  for (LONG column = 0; column < cells.width; ++column) {
    const DWORD count = cells.At(column, 0);
    if (count == 0) continue;
    RECT bar = CellRect(layout, cells.left + column, 0);
    if (bar.right - bar.left >= kSeparatedPx) --bar.right;
    bar.bottom = plot.bottom;
    bar.top = bar.bottom - std::max(std::lround(count / most * static_cast<double>(plot.bottom - top)), 1L);
    kv::FillArea(canvas, bar, content.color);
  }
}

void DrawMeanAndDeviation(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors,
                          const GridFigures& figures) {
  constexpr LONG kDash = 4;
  const RECT& plot = layout.plot;
  const double mean = camera::Mean(figures.x, figures.count) + 0.5;
  const double deviation = camera::Deviation(figures.x, figures.count);
  for (const double value : {mean - deviation, mean + deviation}) {
    const LONG x = XOf(layout, value);
    for (LONG y = plot.top; y < plot.bottom; y += 2 * kDash) kv::FillArea(canvas, {x, y, x + 1, y + kDash}, colors.ink);
  }
  const LONG x = XOf(layout, mean);
  kv::FillArea(canvas, {x, plot.top, x + 2, plot.bottom}, colors.ink);
}

// Lines at the edges of the cell that is read.
void DrawReading(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors, const CellPlace& reading) {
  const RECT cell = CellRect(layout, reading.x / layout.bin, reading.y / layout.bin);
  const RECT& plot = layout.plot;
  for (const LONG x : {cell.left - 1, cell.right}) kv::FillArea(canvas, {x, plot.top, x + 1, plot.bottom}, colors.ink);
  if (!layout.isScatter) return;
  for (const LONG y : {cell.top - 1, cell.bottom}) kv::FillArea(canvas, {plot.left, y, plot.right, y + 1}, colors.ink);
}

}  // namespace

PanelLayout LayoutPanel(const RECT& area, int fontPx, size_t digits, bool isScatter, const CountGrid& grid) {
  PanelLayout layout{.fontPx = fontPx, .digitPx = std::max(fontPx * 56 / 100, 1), .bin = 1, .isScatter = isScatter};
  const LONG gap = std::max(fontPx / 4, 2);
  layout.header = {area.left + gap, area.top, area.right, area.top + fontPx + 2 * gap};
  RECT& plot = layout.plot;
  plot = {area.left + static_cast<LONG>(digits) * layout.digitPx + 2 * gap, layout.header.bottom,
          area.right - 2 * layout.digitPx, area.bottom - fontPx - 3 * gap};
  const LONG width = plot.right - plot.left, height = plot.bottom - plot.top;
  if (width < kLeastPlotPx || height < kLeastPlotPx) plot = {};
  const LONG across = std::max(grid.width + 2, kLeastValues), down = std::max(grid.height + 2, kLeastValues);
  double unitPx = std::min(static_cast<double>(std::max(width, 1L)) / static_cast<double>(across), kMostCellPx);
  if (isScatter) unitPx = std::min(unitPx, static_cast<double>(std::max(height, 1L)) / static_cast<double>(down));
  if (unitPx < kLeastCellPx) layout.bin = std::lround(std::ceil(kLeastCellPx / unitPx));
  const double bin = static_cast<double>(layout.bin);
  layout.unitPx = std::floor(unitPx * bin + 1e-9) / bin;
  const auto origin = [&](LONG from, LONG to, LONG first, LONG count) {
    const double middle = static_cast<double>(first) + static_cast<double>(count) / 2;
    return std::round(static_cast<double>(from + to) / 2 - middle * layout.unitPx);
  };
  layout.originX = origin(plot.left, plot.right, grid.left, grid.width);
  layout.originY = origin(plot.top, plot.bottom, grid.top, grid.height);
  return layout;
}

std::optional<CellPlace> PlaceAt(const PanelLayout& layout, POINT pixel) {
  if (!PtInRect(&layout.plot, pixel)) return std::nullopt;
  const auto value = [&](LONG at, double origin) {
    return static_cast<LONG>(std::floor((static_cast<double>(at) - origin) / layout.unitPx));
  };
  const CellPlace place{value(pixel.x, layout.originX), layout.isScatter ? value(pixel.y, layout.originY) : 0};
  const auto isValue = [](LONG coordinate) { return coordinate >= 0 && coordinate < kv::kNoPoint; };
  return isValue(place.x) && isValue(place.y) ? std::optional(place) : std::nullopt;
}

PanelColors ColorsOfPanels(bool isScatter) {
  const bool contrast = kv::IsHighContrast(), isDark = isScatter && !contrast;
  PanelColors colors{};
  colors.around = GetSysColor(COLOR_BTNFACE);
  colors.text = GetSysColor(COLOR_BTNTEXT);
  colors.plot = isDark ? RGB(0, 0, 0) : GetSysColor(COLOR_WINDOW);
  colors.ink = isDark ? RGB(255, 255, 255) : GetSysColor(COLOR_WINDOWTEXT);
  colors.frame = contrast ? colors.ink : GetSysColor(COLOR_BTNSHADOW);
  colors.grid = kv::MixColors(colors.plot, colors.ink, contrast ? 30 : 18);
  constexpr int kBarShade = 45, kReadable = 20;  // percent
  for (int i = 0; i < kv::kPointCount; ++i) {
    colors.points[i] = isDark     ? PointColor(i)
                       : contrast ? kv::MixColors(colors.plot, colors.ink, isScatter ? 100 : kBarShade)
                                  : kv::MixColors(PointColor(i), colors.ink, kReadable);
  }
  return colors;
}

void DrawPanel(kv::Canvas& canvas, const PanelLayout& layout, const PanelColors& colors, const PanelContent& content) {
  const SIZE size = canvas.surface().size();
  const RECT& plot = layout.plot;
  SetTextColor(canvas.dc(), colors.text);
  kv::DrawFitted(canvas.dc(), content.header, layout.header, DT_LEFT | DT_VCENTER | DT_SINGLELINE);
  if (IsRectEmpty(&plot)) return;
  kv::FillArea(canvas, {plot.left - 1, plot.top - 1, plot.right + 1, plot.bottom + 1}, colors.frame);
  kv::FillArea(canvas, plot, colors.plot);
  if (content.counts.grid.counts.empty()) {
    SetTextColor(canvas.dc(), colors.ink);
    DrawTextAt(canvas, kNone, plot, DT_CENTER | DT_VCENTER);
    return;
  }
  DrawAxes(canvas, layout, colors, content.cells);
  canvas.ClipTo(plot);
  if (layout.isScatter) {
    DrawCells(canvas, layout, colors, content);
    DrawMean(canvas, layout, colors, content.counts.figures);
  } else {
    DrawBars(canvas, layout, content);
    DrawMeanAndDeviation(canvas, layout, colors, content.counts.figures);
  }
  if (content.reading) DrawReading(canvas, layout, colors, *content.reading);
  canvas.ClipTo({0, 0, size.cx, size.cy});
}

}  // namespace camview
