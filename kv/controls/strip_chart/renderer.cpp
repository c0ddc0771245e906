#include "kv/controls/strip_chart/renderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/controls/strip_chart/trace.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/utf8.h"

namespace kv {

namespace {

constexpr wchar_t kFont[] = L"Arial Unicode MS";
constexpr int kReach = 2;  // the number of columns beside a sample that its line may touch

LONG RowOf(const StripLayout& layout, const AxisRange& range, double value) {
  const RECT& plot = layout.plot;
  return plot.top + ToInt(std::floor((range.high - value) / (range.high - range.low) * (plot.bottom - plot.top)));
}

double ColumnOf(double time, double secondsPerColumn) {
  return std::floor(time / secondsPerColumn);
}

LONG PlotWidth(const StripLayout& layout) {
  return layout.plot.right - layout.plot.left;
}

// Including the columns of a sweep's gap.
long long OldestColumn(const StripLayout& layout) {
  return layout.lastColumn - PlotWidth(layout) + 1;
}

// The x coordinate of a column between the oldest and the last one.
LONG PlaceOf(const StripLayout& layout, long long column) {
  const long long width = PlotWidth(layout), place = layout.sweeps ? column % width : column - OldestColumn(layout);
  return layout.plot.left + static_cast<LONG>(place < 0 ? place + width : place);
}

// Calls function(time, column) for each tick in the columns from..to-1. The column alone decides where a tick belongs,
// so that rounding neither omits nor repeats one where a partial redraw begins.
template <class Function>
void ForTimeTicks(const StripLayout& layout, long long from, long long to, Function function) {
  const double second = layout.secondsPerColumn, step = layout.timeStep;
  const Ticks ticks =
      TicksBetween(static_cast<double>(from) * second - step, static_cast<double>(to) * second + step, step);
  for (int i = 0; i < ticks.count; ++i) {
    const double column = ColumnOf(ticks.At(i), second);
    if (column < static_cast<double>(from) || column >= static_cast<double>(to)) continue;
    function(ticks.At(i), static_cast<long long>(column));
  }
}

}  // namespace

std::wstring ChannelName(const StripChannel& channel) {
  return Wide(channel.name);
}

std::wstring ChannelUnit(const StripChannel& channel) {
  return Wide(channel.unit);
}

LONG WidthOf(HDC dc, const std::wstring& text) {
  SIZE size{};
  GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &size);
  return size.cx;
}

void DrawTextIn(HDC dc, const std::wstring& text, RECT area, COLORREF color, UINT align) {
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, color);
  DrawTextW(dc, text.data(), static_cast<int>(text.size()), &area,
            align | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
}

void DrawSymbol(Canvas& canvas, int channel, PointD center, double radius, COLORREF color, COLORREF inside) {
  const auto draw = [&](double size, COLORREF fill) {
    const auto at = [&](double x, double y) { return PointD{center.x + x * size, center.y + y * size}; };
    switch (channel % 4) {
      case 0: return FillDisc(canvas, center, size, fill);
      case 1: return FillPolygon(canvas, std::array{at(-.9, -.9), at(.9, -.9), at(.9, .9), at(-.9, .9)}, fill);
      case 2: return FillPolygon(canvas, std::array{at(0, -1.1), at(1.1, .9), at(-1.1, .9)}, fill);
      default: return FillPolygon(canvas, std::array{at(0, -1.2), at(1.2, 0), at(0, 1.2), at(-1.2, 0)}, fill);
    }
  };
  draw(radius, color);
  if (channel >= 4) draw(radius * 0.5, inside);
}

void StripRenderer::FindFont(int heightPx) {
  font_.Reset(CreateFontW(-heightPx, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                          CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, VARIABLE_PITCH | FF_SWISS, kFont));
}

// ---- Static parts ---------------------------------------------------------------------------------------------------

void StripRenderer::DrawBackground(const StripModel& model) {
  const StripLayout& layout = key_.layout;
  const StripColors& colors = key_.colors;
  Canvas canvas(dc_, surface_, shape_);
  FillArea(canvas, {0, 0, layout.size.cx, layout.size.cy}, colors.panel);
  const RECT& plot = layout.plot;
  if (IsRectEmpty(&plot)) return;
  FillArea(canvas, {plot.left - 1, plot.top - 1, plot.right + 1, plot.bottom + 1}, colors.frame);
  const SelectedObject selected(canvas.dc(), font_);
  for (int i = 0; i < layout.axes; ++i) {
    const StripAxis& axis = layout.axis[i];
    if (axis.area.left == axis.area.right) continue;
    const COLORREF color = axis.channel < 0 ? colors.text : colors.lines[axis.channel];
    for (const AxisTick& tick : AxisTicks(axis.range, axis.step, layout.isLogarithmic)) {
      const LONG y = RowOf(layout, axis.range, tick.position);
      if (y < plot.top || y > plot.bottom || tick.text.empty()) continue;
      DrawTextIn(canvas.dc(), tick.text,
                 {axis.area.left, y - layout.fontPx, axis.area.right - layout.digitPx / 2, y + layout.fontPx}, color,
                 DT_RIGHT);
    }
  }
  DrawLegend(canvas, model);
}

// ---- Columns --------------------------------------------------------------------------------------------------------

void StripRenderer::DrawGrid(Canvas& canvas, const RECT& ground, long long from, long long to, LONG x) {
  const StripLayout& layout = key_.layout;
  const StripColors& colors = key_.colors;
  const StripAxis& axis = layout.axis[0];
  for (const AxisTick& tick : AxisTicks(axis.range, axis.step, layout.isLogarithmic)) {
    const LONG y = RowOf(layout, axis.range, tick.position);
    if (y >= ground.top && y < layout.plot.bottom) FillArea(canvas, {ground.left, y, ground.right, y + 1}, colors.grid);
  }
  ForTimeTicks(layout, from, to, [&](double, long long column) {
    const LONG place = x + static_cast<LONG>(column - from);
    FillArea(canvas, {place, layout.plot.top, place + 1, layout.plot.bottom}, colors.grid);
  });
}

// The times below the plot, except those that its edges or the gap of a sweep would cut.
void StripRenderer::DrawTimes() {
  const StripLayout& layout = key_.layout;
  if (layout.labelsPx == 0) return;
  const RECT& plot = layout.plot;
  const RECT strip{plot.left, plot.bottom + 1, plot.right, plot.bottom + layout.labelsPx};
  Canvas canvas(dc_, surface_, shape_);
  FillArea(canvas, strip, key_.colors.panel);
  const SelectedObject selected(canvas.dc(), font_);
  const long long first = OldestColumn(layout) + layout.gapPx, last = layout.lastColumn;
  const auto next = static_cast<long long>(layout.timeStep / layout.secondsPerColumn) + 1;
  timesKept_ = layout.sweeps ? 0 : next;
  ForTimeTicks(layout, first, last + 1 + next, [&](double time, long long column) {
    const std::wstring text = TimeText(time, layout.timeStep, TimeFormatOf(key_.style));
    const LONG half = (WidthOf(canvas.dc(), text) + 1) / 2 + 1;  // antialiased edges reach beyond the width
    // The next one to appear at the right, and the first one to disappear at the left.
    const long long missing = column + half - last - 1, left = column - half - first;
    if (missing > 0) timesKept_ = std::min(timesKept_, missing - 1);
    if (missing > 0 || left < 0) return;
    timesKept_ = std::min(timesKept_, left);
    const LONG place = PlaceOf(layout, column);
    if (place - half < plot.left || place + half > plot.right) return;
    DrawTextIn(canvas.dc(), text, {place - half, strip.top, place + half, strip.bottom}, key_.colors.text, DT_CENTER);
  });
}

// Draws columns from..to-1, with `from` at x.
void StripRenderer::DrawSpan(Canvas& canvas, const StripModel& model, long long from, long long to, LONG x) {
  const StripLayout& layout = key_.layout;
  const StripColors& colors = key_.colors;
  const RECT& plot = layout.plot;
  const RECT ground{x, plot.top, x + static_cast<LONG>(to - from), plot.bottom + 1};
  canvas.ClipTo(ground);
  FillArea(canvas, {ground.left, plot.top, ground.right, plot.bottom}, colors.ground);
  FillArea(canvas, {ground.left, plot.bottom, ground.right, plot.bottom + 1}, colors.frame);
  for (int i = 0; i < kStripZones; ++i) {
    if (!model.zoneShown[i]) continue;
    const StripZone& zone = model.zones[i];
    const AxisRange& range = AxisOf(layout, static_cast<int>(zone.channel)).range;
    const auto row = [&](double value) {
      return std::clamp(RowOf(layout, range, AxisPosition(value, layout.isLogarithmic)), plot.top, plot.bottom);
    };
    FillArea(canvas,
             {ground.left, row(std::max(zone.lower, zone.upper)), ground.right, row(std::min(zone.lower, zone.upper))},
             colors.zones[i]);
  }
  if (model.hasSelection) {
    const double first = ColumnOf(model.selection.from, layout.secondsPerColumn) - static_cast<double>(from);
    const double last = ColumnOf(model.selection.to, layout.secondsPerColumn) - static_cast<double>(from);
    const double width = static_cast<double>(to - from);
    canvas.FinishGdi();
    BlendArea(
        surface_,
        {x + ToInt(std::clamp(first, 0.0, width)), plot.top, x + ToInt(std::clamp(last + 1, 0.0, width)), plot.bottom},
        colors.selection, 60);
  }
  DrawGrid(canvas, ground, from, to, x);
  for (unsigned i = 0; i < kStripChannels; ++i) {
    if (!IsShown(model.channels[i])) continue;
    const TraceView view = ViewOf(model, i);
    WithSamples(model, i, [&](const auto& samples) {
      DrawTrace(canvas, rows_, samples, view, plot, from, to, x, colors.lines[i]);
    });
    if (layout.symbolPx) DrawSymbols(canvas, model, i, from, to, x);
  }
}

TraceView StripRenderer::ViewOf(const StripModel& model, unsigned channel) const {
  const StripLayout& layout = key_.layout;
  return {layout.secondsPerColumn, AxisOf(layout, static_cast<int>(channel)).range, layout.lineWidth,
          layout.isLogarithmic != 0, ShownCount(model, channel)};
}

// Also the parts of symbols whose centers are beside these columns.
void StripRenderer::DrawSymbols(Canvas& canvas, const StripModel& model, unsigned channel, long long from, long long to,
                                LONG x) {
  const StripLayout& layout = key_.layout;
  const RECT& plot = layout.plot;
  const long long distance = std::max(layout.fontPx * 8, 64), offset = distance * channel / kStripChannels;
  const TraceView view = ViewOf(model, channel);
  canvas.ClipTo({x, plot.top, x + static_cast<LONG>(to - from), plot.bottom});
  const long long first = from - layout.symbolPx - 1;
  long long column = first + ((offset - first) % distance + distance) % distance;
  for (; column < to + layout.symbolPx + 1; column += distance) {
    const Extent line =
        WithSamples(model, channel, [&](const auto& samples) { return LineInColumn(samples, view, column); });
    if (line.empty() || (layout.isLogarithmic && line.low <= 0)) continue;
    const double position =
        (AxisPosition(line.low, layout.isLogarithmic) + AxisPosition(line.high, layout.isLogarithmic)) / 2;
    const double y =
        plot.top + (view.range.high - position) / (view.range.high - view.range.low) * (plot.bottom - plot.top);
    DrawSymbol(canvas, static_cast<int>(channel), {x + static_cast<double>(column - from) + 0.5, y}, layout.symbolPx,
               key_.colors.lines[channel], key_.colors.ground);
  }
}

// Draws the displayed part of these columns and, in a sweep, the gap after the newest sample.
void StripRenderer::DrawColumns(const StripModel& model, long long from, long long to) {
  const StripLayout& layout = key_.layout;
  const long long oldest = OldestColumn(layout);
  from = std::max(from, oldest + layout.gapPx);
  to = std::min(to, layout.lastColumn + 1);
  Canvas canvas(dc_, surface_, shape_);
  while (from < to) {
    const LONG x = PlaceOf(layout, from);
    const long long end = std::min(to, from + layout.plot.right - x);
    DrawSpan(canvas, model, from, end, x);
    from = end;
  }
  for (long long column = oldest; column < oldest + layout.gapPx; ++column) {
    const LONG x = PlaceOf(layout, column);
    canvas.ClipTo({x, layout.plot.top, x + 1, layout.size.cy});
    FillArea(canvas, {x, layout.plot.top, x + 1, layout.plot.bottom}, key_.colors.ground);
    FillArea(canvas, {x, layout.plot.bottom, x + 1, layout.plot.bottom + 1}, key_.colors.frame);
  }
}

void StripRenderer::Scroll(long long columns) {
  const RECT& plot = key_.layout.plot;
  const size_t kept = static_cast<size_t>(plot.right - plot.left - columns);
  const LONG bottom = plot.bottom + std::max(key_.layout.labelsPx, 1);
  GdiFlush();
  for (LONG y = plot.top; y < bottom; ++y) {
    DWORD* row = surface_.Row(y) + plot.left;
    std::memmove(row, row + columns, kept * sizeof(DWORD));
    if (y > plot.bottom) std::fill_n(row + kept, columns, PixelOfColor(key_.colors.panel));
  }
  timesKept_ -= columns;
}

// ---- Update ---------------------------------------------------------------------------------------------------------

RECT StripRenderer::Update(StripModel& model, SIZE size, bool redrawAll) {
  Key key;
  std::fill_n(reinterpret_cast<BYTE*>(&key), sizeof(key), BYTE{0});  // including padding bytes
  key.layout = LayoutStrip(model, size);
  key.colors = ColorsOf(model);
  key.style = model.style;
  if (model.hasSelection) key.selection = model.selection;
  key.hasSelection = model.hasSelection;
  for (int i = 0; i < kStripChannels; ++i) {
    key.channels |= (IsShown(model.channels[i]) ? 1u << i : 0u) | (model.channels[i].used ? 0x100u << i : 0u);
    key.infos[i] = model.channels[i].info;
  }
  for (int i = 0; i < kStripZones; ++i) {
    if (model.zoneShown[i]) key.zones[i] = model.zones[i];
  }
  const long long last = key.layout.lastColumn, before = key_.layout.lastColumn;
  key.layout.lastColumn = before;
  const bool same = drawn_ && !redrawAll && std::memcmp(&key, &key_, sizeof(key)) == 0;
  key.layout.lastColumn = last;
  const LONG width = IsRectEmpty(&key.layout.plot) ? 0 : key.layout.plot.right - key.layout.plot.left;
  const double second = key.layout.secondsPerColumn;
  const RECT whole{0, 0, size.cx, size.cy};
  const RECT ground{key.layout.plot.left, key.layout.plot.top, key.layout.plot.right, size.cy};
  if (!same || last < before || last - before >= width || model.removedTo == kNever) {
    surface_.Resize(size);
    drawn_ = surface_.bitmap() && rows_.Create(key.layout.plot.bottom - key.layout.plot.top);
    if (!font_ || key.layout.fontPx != key_.layout.fontPx) FindFont(key.layout.fontPx);
    std::memcpy(&key_, &key, sizeof(key));
    if (!drawn_) return {};
    DrawBackground(model);
    if (width > 0) {
      DrawColumns(model, last - width, last + 1);
      DrawTimes();
    }
    model.undrawnFrom = kNever;
    model.removedTo = -kNever;
    return whole;
  }
  if (model.undrawnFrom == kNever && model.removedTo == -kNever && last == before) return {};
  key_.layout.lastColumn = last;
  const int reach = kReach + (key_.layout.symbolPx ? 2 * key_.layout.symbolPx : 0);
  if (!key_.layout.sweeps && last > before) Scroll(last - before);
  const double undrawn = std::min(ColumnOf(model.undrawnFrom, second), static_cast<double>(before + 1)) - reach;
  const long long from = std::max(static_cast<long long>(std::max(undrawn, -9e15)), last - width);
  const double removed = ColumnOf(model.removedTo, second) + reach + 1;
  const long long removedTo =
      removed > static_cast<double>(last - width) ? std::min(static_cast<long long>(removed), from) : from;
  if (removedTo > last - width && removed > static_cast<double>(last - width))
    DrawColumns(model, last - width, removedTo);
  DrawColumns(model, from, last + 1);
  // Drawing text takes longer than the rest.
  if (last > before && (key_.layout.sweeps || timesKept_ < 0)) DrawTimes();
  model.undrawnFrom = kNever;
  model.removedTo = -kNever;
  return ground;
}

}  // namespace kv
