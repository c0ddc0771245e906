// The overlay of a strip chart: cursor, selection, and a tooltip with values or statistics.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"
#include "kv/framework/guards.h"

namespace kv {

namespace {

constexpr int kColumns = 6;
constexpr wchar_t kNothing[] = L"\x2013";

std::wstring ValueText(double value, const StripAxis& axis) {
  return std::isnan(value) ? std::wstring(kNothing) : TickText(value, axis.step / 100);
}

// A row of the tooltip: the channel whose colour precedes it, or -1, and its texts from left to right.
struct TooltipRow {
  int channel;
  std::array<std::wstring, kColumns> texts;
};

struct Tooltip {
  std::array<TooltipRow, kStripChannels + 1> rows;
  int count = 0, columns = 0;
};

Tooltip StatisticsTooltip(const StripModel& model, const StripLayout& layout) {
  Tooltip tooltip{.columns = 6};
  // Symbols, so that no translation is needed.
  tooltip.rows[tooltip.count++] = {-1, {L"", L"n", L"min", L"max", L"\x00B5", L"\x03C3"}};
  for (int i = 0; i < kStripChannels; ++i) {
    if (!IsShown(model.channels[i])) continue;
    const StripStatistics statistics = ChannelStatistics(model, static_cast<unsigned>(i));
    const StripAxis& axis = AxisOf(layout, i);
    wchar_t count[32];
    FormatBounded(count, sizeof(count), L"%.0f", statistics.count);
    tooltip.rows[tooltip.count++] = {
        i,
        {ChannelName(model.channels[i].info), count, ValueText(statistics.minimum, axis),
         ValueText(statistics.maximum, axis), ValueText(statistics.mean, axis), ValueText(statistics.deviation, axis)}};
  }
  return tooltip;
}

Tooltip CursorTooltip(const StripModel& model, const StripLayout& layout) {
  Tooltip tooltip{.columns = 2};
  const StripReading reading = ReadingAt(model, model.cursor);
  const double step = std::max(layout.timeStep / 100, 1e-6);
  tooltip.rows[tooltip.count++] = {-1, {TimeText(reading.time, step, (model.style & kStripTimeOfDay) != 0)}};
  for (int i = 0; i < kStripChannels; ++i) {
    const StripChannel& info = model.channels[i].info;
    if (!IsShown(model.channels[i])) continue;
    const std::wstring value = ValueText(reading.values[i], AxisOf(layout, i));
    tooltip.rows[tooltip.count++] = {i, {ChannelName(info), value + L" " + ChannelUnit(info)}};
  }
  return tooltip;
}

bool HasStatistics(const StripModel& model) {
  return model.hasSelection && !(model.style & kStripNoStatistics);
}

void BlendArea(const Surface& surface, const RECT& area, COLORREF color, DWORD coverage) {
  RECT seen;
  const RECT whole{0, 0, surface.size().cx, surface.size().cy};
  if (!IntersectRect(&seen, &area, &whole)) return;
  for (LONG y = seen.top; y < seen.bottom; ++y) {
    BlendPixels(surface.Row(y) + seen.left, seen.right - seen.left, PixelOfColor(color), coverage);
  }
}

}  // namespace

void StripRenderer::DrawTooltip(Canvas& canvas, const StripModel& model) {
  const StripLayout& layout = key_.layout;
  const StripColors& colors = key_.colors;
  const RECT& plot = layout.plot;
  const bool statistics = HasStatistics(model);
  const Tooltip tooltip = statistics ? StatisticsTooltip(model, layout) : CursorTooltip(model, layout);
  HDC dc = canvas.dc();
  const SelectedObject selected(dc, font_);
  const LONG line = layout.fontPx * 4 / 3, margin = layout.fontPx / 2, swatch = layout.fontPx;
  std::array<LONG, kColumns> widths{};
  for (int row = 0; row < tooltip.count; ++row) {
    if (!statistics && row == 0) continue;  // the time may use the whole width
    for (int column = 0; column < tooltip.columns; ++column) {
      widths[column] = std::max(widths[column], WidthOf(dc, tooltip.rows[row].texts[column]) + margin * 2);
    }
  }
  LONG width = margin + swatch;
  for (const LONG each : widths) width += each;
  width = std::max(width, WidthOf(dc, tooltip.rows[0].texts[0]) + margin * 2);
  const LONG height = line * tooltip.count + margin;
  const double place = statistics ? model.selection.to : model.cursor;
  const LONG x = std::clamp(XOfTime(layout, place), plot.left, plot.right);
  // To the right of the cursor or, if there is no space, to the left; within the control if possible.
  LONG left = x + margin * 2;
  if (left + width > layout.size.cx) left = x - margin * 2 - width;
  left = std::max(left, 0L);
  const RECT box{left, plot.top + margin, left + width, plot.top + margin + height};
  FillArea(canvas, box, colors.frame);
  FillArea(canvas, {box.left + 1, box.top + 1, box.right - 1, box.bottom - 1}, colors.tooltip);
  SetBkMode(canvas.dc(), TRANSPARENT);
  SetTextColor(canvas.dc(), colors.tooltipText);
  for (int row = 0; row < tooltip.count; ++row) {
    const LONG top = box.top + margin / 2 + row * line;
    const bool head = row == 0 && !statistics;
    LONG from = head ? box.left : box.left + margin + swatch;
    if (tooltip.rows[row].channel >= 0) {
      const double middle = top + line / 2.0;
      FillLine(canvas, {box.left + 0.0 + margin, middle}, {box.left + 0.0 + margin + swatch, middle},
               layout.lineWidth * 1.6, colors.lines[tooltip.rows[row].channel]);
    }
    for (int column = 0; column < tooltip.columns; ++column) {
      const LONG to = head ? box.right : from + widths[column];
      RECT cell{from + margin, top, to - margin, top + line};
      const std::wstring& text = tooltip.rows[row].texts[column];
      DrawTextW(canvas.dc(), text.data(), static_cast<int>(text.size()), &cell,
                (column == 0 ? DT_LEFT : DT_RIGHT) | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP);
      from = to;
    }
  }
}

const Surface& StripRenderer::WithOverlay(const StripModel& model, bool focused) {
  const StripLayout& layout = key_.layout;
  const RECT& plot = layout.plot;
  if (!drawn_ || IsRectEmpty(&plot) || !(model.cursorShown || model.hasSelection || focused)) return surface_;
  const SIZE size = surface_.size();
  if ((overlaid_.size().cx != size.cx || overlaid_.size().cy != size.cy) && !overlaid_.Create(size)) return surface_;
  Canvas canvas(dc_, overlaid_, shape_);
  CopyFrom(canvas, surface_);
  if (model.hasSelection) {
    LONG from = std::clamp(XOfTime(layout, model.selection.from), plot.left, plot.right);
    const LONG to = std::clamp(XOfTime(layout, model.selection.to), plot.left - 1, plot.right - 1) + 1;
    if (from < to) {
      BlendArea(overlaid_, {from, plot.top, to, plot.bottom}, key_.colors.selection, 60);
    } else if (layout.sweeps) {  // the selection wraps around the edge
      BlendArea(overlaid_, {from, plot.top, plot.right, plot.bottom}, key_.colors.selection, 60);
      BlendArea(overlaid_, {plot.left, plot.top, to, plot.bottom}, key_.colors.selection, 60);
    }
  }
  if (model.cursorShown) {
    const LONG x = XOfTime(layout, model.cursor);
    if (x >= plot.left && x < plot.right) FillArea(canvas, {x, plot.top, x + 1, plot.bottom}, key_.colors.ink);
  }
  // No tooltip if it would cover the whole plot.
  if ((model.cursorShown || HasStatistics(model)) && layout.labelsPx > 0) DrawTooltip(canvas, model);
  if (focused) {
    const RECT frame{plot.left - 1, plot.top - 1, plot.right + 1, plot.bottom + 1};
    SetTextColor(canvas.dc(), RGB(0, 0, 0));
    SetBkColor(canvas.dc(), RGB(255, 255, 255));
    DrawFocusRect(canvas.dc(), &frame);
  }
  return overlaid_;
}

}  // namespace kv
