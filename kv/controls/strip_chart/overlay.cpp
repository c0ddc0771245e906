// The overlay of a strip chart: events, cursors, and a tooltip with values or statistics.
#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <numeric>
#include <string>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"
#include "kv/framework/guards.h"
#include "kv/framework/painting.h"
#include "kv/framework/utf8.h"

namespace kv {

namespace {

constexpr int kColumns = 6;
constexpr wchar_t kNothing[] = L"\x2013";

// As precise as a reading of `size`.
std::wstring ValueText(double value, const StripLayout& layout, int channel, double size) {
  return std::isnan(value) ? std::wstring(kNothing) : TickText(value, ReadingStep(layout, channel, size));
}

std::wstring ValueText(double value, const StripLayout& layout, int channel) {
  return ValueText(value, layout, channel, value);
}

// A row of the tooltip: the channel whose color precedes it, or -1, and its texts from left to right.
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
  tooltip.rows[tooltip.count++] = {-1, {L"", L"min", L"max", L"\x00B5", L"\x03C3", L"n"}};
  for (int i = 0; i < kStripChannels; ++i) {
    if (!IsShown(model.channels[i])) continue;
    const StripStatistics statistics = ChannelStatistics(model, static_cast<unsigned>(i));
    wchar_t count[32];
    FormatBounded(count, sizeof(count), L"%.0f", statistics.count);
    tooltip.rows[tooltip.count++] = {i,
                                     {ChannelName(model.channels[i].info), ValueText(statistics.minimum, layout, i),
                                      ValueText(statistics.maximum, layout, i), ValueText(statistics.mean, layout, i),
                                      ValueText(statistics.deviation, layout, i), count}};
  }
  return tooltip;
}

// Values at the cursor or, with a second one, at both, and the differences.
Tooltip CursorTooltip(const StripModel& model, const StripLayout& layout) {
  const bool isDouble = model.cursorBShown;
  const TimeFormat format = TimeFormatOf(model.style);
  Tooltip tooltip{.columns = isDouble ? 4 : 2};
  const StripReading reading = ReadingAt(model, model.cursor), other = ReadingAt(model, model.cursorB);
  const double step = std::max(layout.timeStep / 100, 1e-6);
  const std::wstring time = TimeText(reading.time, step, format);
  TooltipRow& head = tooltip.rows[tooltip.count++];
  head = {-1, {time}};
  if (isDouble) {
    head.texts = {L"", L"A " + time, L"B " + TimeText(other.time, step, format),
                  L"\x0394 " + TimeText(other.time - reading.time, step, TimeFormat::kSeconds)};
  }
  for (int i = 0; i < kStripChannels; ++i) {
    const StripChannel& info = model.channels[i].info;
    if (!IsShown(model.channels[i])) continue;
    const double a = reading.values[i], b = other.values[i], last = isDouble ? b - a : a;
    const std::wstring unit = std::isnan(last) ? L"" : L" " + ChannelUnit(info), value = ValueText(a, layout, i);
    TooltipRow& row = tooltip.rows[tooltip.count++];
    row = {i, {ChannelName(info), value + unit}};
    if (isDouble) {
      row.texts = {ChannelName(info), value, ValueText(b, layout, i),
                   ValueText(last, layout, i, std::max(std::fabs(a), std::fabs(b))) + unit};
    }
  }
  return tooltip;
}

bool HasStatistics(const StripModel& model) {
  return model.hasSelection && !(model.style & kStripNoStatistics);
}

// Makes the tooltip fit into the plot, beside the axes: shortens the names, then omits the last columns and channels.
// Returns the width of all columns together.
LONG FitTooltip(HDC dc, const StripLayout& layout, Tooltip* tooltip, std::array<LONG, kColumns>* widths, SIZE space) {
  const auto sum = [&] { return std::accumulate(widths->begin(), widths->begin() + tooltip->columns, 0L); };
  const LONG name = widths->front(), least = std::min<LONG>(name, layout.digitPx * 8);
  const LONG rows = std::max(space.cy / (layout.fontPx * 4 / 3), 2L);
  if (tooltip->count > rows) {
    tooltip->rows[rows - 1] = {-1, {L"+" + std::to_wstring(tooltip->count - rows + 1)}};
    tooltip->count = static_cast<int>(rows);
  }
  while (tooltip->columns > 2 && sum() - name + least > space.cx) --tooltip->columns;
  if (sum() <= space.cx) return sum();
  widths->front() = std::max<LONG>(layout.fontPx, name - (sum() - space.cx));
  for (int i = 0; i < tooltip->count; ++i) {
    if (tooltip->rows[i].channel < 0) continue;
    std::wstring& text = tooltip->rows[i].texts[0];
    text = ShortenedText(dc, text, widths->front() - layout.fontPx / 2 * 2);
  }
  return sum();
}

}  // namespace

bool HasOverlay(const StripModel& model) {
  return model.cursorShown || model.cursorBShown || HasStatistics(model) || IsFrozen(model) || !model.events.empty();
}

// Beside the columns from..to or the `other` one, where the box covers the fewest pixels of lines; within the plot if
// it is wide enough.
RECT StripRenderer::PlaceTooltip(SIZE size, LONG bottom, LONG from, LONG to, LONG other) const {
  const StripLayout& layout = key_.layout;
  const RECT& plot = layout.plot;
  const LONG margin = layout.fontPx / 2, width = plot.right - plot.left;
  const LONG least = size.cx <= width ? plot.left : 0,
             most = (size.cx <= width ? plot.right : layout.size.cx) - size.cx;
  const auto coveredPixels = [&](const RECT& box) {
    int count = 0;
    for (LONG y = std::max(box.top, plot.top); y < std::min(box.bottom, plot.bottom); y += 2) {
      const DWORD* row = surface_.Row(y);
      for (LONG x = std::max(box.left, plot.left); x < std::min(box.right, plot.right); x += 2) {
        count += std::ranges::any_of(key_.colors.lines, [&](COLORREF line) { return row[x] == PixelOfColor(line); });
      }
    }
    return count;
  };
  RECT best{};
  LONG fewest = LONG_MAX;
  for (const LONG top : {plot.top + margin, std::max(bottom - size.cy, plot.top)}) {
    for (const LONG left :
         {to + margin * 2, from - margin * 2 - size.cx, other + margin * 2, other - margin * 2 - size.cx}) {
      const LONG inside = std::max(std::min(left, most), least);
      const RECT box{inside, top, inside + size.cx, top + size.cy};
      // Rather on a line than on a cursor, and rather where it was, at the right and the top.
      const auto isOn = [&](LONG first, LONG last) { return inside <= last && inside + size.cx > first; };
      const LONG covered = coveredPixels(box) + (isOn(from, to) ? 1 << 21 : 0) + (isOn(other, other) ? 1 << 20 : 0) +
                           (best.right ? size.cx / 16 : 0);
      if (covered >= fewest) continue;
      fewest = covered;
      best = box;
    }
  }
  return best;
}

void StripRenderer::DrawTooltip(Canvas& canvas, const StripModel& model) {
  const StripLayout& layout = key_.layout;
  const StripColors& colors = key_.colors;
  const RECT& plot = layout.plot;
  const bool statistics = HasStatistics(model);
  Tooltip tooltip = statistics ? StatisticsTooltip(model, layout) : CursorTooltip(model, layout);
  HDC dc = canvas.dc();
  const SelectedObject selected(dc, font_);
  const LONG line = layout.fontPx * 4 / 3, margin = layout.fontPx / 2, swatch = layout.fontPx;
  std::array<LONG, kColumns> widths{};
  const bool hasTitle = !tooltip.rows[0].texts[0].empty();  // the time, which may use the whole width
  for (int row = hasTitle; row < tooltip.count; ++row) {
    for (int column = 0; column < tooltip.columns; ++column) {
      widths[column] = std::max(widths[column], WidthOf(dc, tooltip.rows[row].texts[column]) + margin * 2);
    }
  }
  // The names of two cursors are at the bottom.
  const LONG bottom = plot.bottom - (model.cursorBShown ? layout.labelsPx : margin);
  const SIZE space{plot.right - plot.left - margin - swatch, bottom - plot.top - margin};
  const LONG columns = FitTooltip(dc, layout, &tooltip, &widths, space);
  const LONG width = std::max(margin + swatch + columns, WidthOf(dc, tooltip.rows[0].texts[0]) + margin * 2);
  const LONG height = line * tooltip.count + margin;
  const StripTimeRange place = statistics ? model.selection : StripTimeRange{model.cursor, model.cursor};
  const auto inPlot = [&](double time) { return std::clamp(XOfTime(layout, time), plot.left, plot.right); };
  const double other = !statistics && model.cursorBShown ? model.cursorB : place.from;
  const RECT box = PlaceTooltip({width, height}, bottom, inPlot(place.from), inPlot(place.to), inPlot(other));
  FillArea(canvas, box, colors.frame);
  FillArea(canvas, {box.left + 1, box.top + 1, box.right - 1, box.bottom - 1}, colors.tooltip);
  for (int row = 0; row < tooltip.count; ++row) {
    const LONG top = box.top + margin / 2 + row * line;
    const bool head = row == 0 && hasTitle;
    LONG from = head ? box.left : box.left + margin + swatch;
    if (tooltip.rows[row].channel >= 0) {
      const double middle = top + line / 2.0;
      FillLine(canvas, {box.left + 0.0 + margin, middle}, {box.left + 0.0 + margin + swatch, middle},
               layout.lineWidth * 1.6, colors.lines[tooltip.rows[row].channel]);
    }
    for (int column = 0; column < tooltip.columns; ++column) {
      const LONG to = head ? box.right : from + widths[column];
      DrawTextIn(canvas.dc(), tooltip.rows[row].texts[column], {from + margin, top, to - margin, top + line},
                 colors.tooltipText, column == 0 ? DT_LEFT : DT_RIGHT);
      from = to;
    }
  }
}

// The texts are in up to three rows, beside the sign of a frozen display; one that would cover another is omitted.
void StripRenderer::DrawEvents(Canvas& canvas, const StripModel& model) {
  constexpr int kRows = 3;
  const StripLayout& layout = key_.layout;
  const RECT& plot = layout.plot;
  const SelectedObject selected(canvas.dc(), font_);
  const LONG line = layout.fontPx * 4 / 3, right = plot.right - (IsFrozen(model) ? layout.fontPx * 2 : 0);
  std::array<LONG, kRows> ends;
  ends.fill(plot.left - 1);
  for (const StripEvent& event : model.events) {
    const LONG x = XOfTime(layout, event.time);
    if (x < plot.left || x >= plot.right) continue;
    for (LONG y = plot.top; y < plot.bottom; y += 4) {
      FillArea(canvas, {x, y, x + 1, std::min(y + 2, plot.bottom)}, key_.colors.ink);
    }
    const std::wstring text = Wide(event.text);
    const LONG width = WidthOf(canvas.dc(), text) + layout.digitPx, left = std::min(x + 2, right - width);
    const auto row = std::ranges::find_if(ends, [&](LONG end) { return left > end; });
    if (row == ends.end() || left < plot.left || text.empty()) continue;
    *row = left + width;
    RECT area{left, plot.top + 1 + static_cast<LONG>(row - ends.begin()) * line, left + width, 0};
    area.bottom = area.top + line;
    canvas.FinishGdi();
    BlendArea(overlaid_, area, key_.colors.ground, 200);
    DrawTextIn(canvas.dc(), text, area, key_.colors.ink, DT_CENTER);
  }
}

void StripRenderer::DrawCursor(Canvas& canvas, double time, const wchar_t* name) {
  const RECT& plot = key_.layout.plot;
  const LONG x = XOfTime(key_.layout, time);
  if (x < plot.left || x >= plot.right) return;
  FillArea(canvas, {x, plot.top, x + 1, plot.bottom}, key_.colors.ink);
  if (!*name || key_.layout.labelsPx == 0) return;
  // Within the plot: beside it are the axes.
  const LONG half = key_.layout.digitPx, left = std::max(std::min(x + half, plot.right) - 2 * half, plot.left);
  const RECT area{left, plot.bottom - key_.layout.labelsPx, left + 2 * half, plot.bottom};
  FillArea(canvas, area, key_.colors.ink);
  const SelectedObject selected(canvas.dc(), font_);
  DrawTextIn(canvas.dc(), name, area, key_.colors.ground, DT_CENTER);
}

const Surface& StripRenderer::WithOverlay(const StripModel& model, const RECT& zoomed, bool focused) {
  const StripLayout& layout = key_.layout;
  const RECT& plot = layout.plot;
  if (!drawn_ || IsRectEmpty(&plot) || !(HasOverlay(model) || focused || !IsRectEmpty(&zoomed))) return surface_;
  overlaid_.Resize(surface_.size());
  if (!overlaid_.bitmap()) return surface_;
  Canvas canvas(dc_, overlaid_, shape_);
  CopyFrom(canvas, surface_);
  DrawEvents(canvas, model);
  const bool isDouble = model.cursorShown && model.cursorBShown;
  if (model.cursorBShown) DrawCursor(canvas, model.cursorB, L"B");
  if (model.cursorShown) DrawCursor(canvas, model.cursor, isDouble ? L"A" : L"");
  // No tooltip if it would cover the whole plot.
  if ((model.cursorShown || HasStatistics(model)) && layout.labelsPx > 0) DrawTooltip(canvas, model);
  if (!IsRectEmpty(&zoomed)) {
    canvas.FinishGdi();
    BlendArea(overlaid_, zoomed, key_.colors.selection, 60);
  }
  if (IsFrozen(model)) {  // the sign of a pause
    const LONG unit = std::max(layout.fontPx / 4, 2), right = plot.right - 2 * unit, top = plot.top + 2 * unit;
    const RECT area{right - 5 * unit, top - unit, right + unit, top + 5 * unit};
    FillArea(canvas, area, key_.colors.ground);
    for (const LONG bar : {right - 4 * unit, right - unit}) {
      FillArea(canvas, {bar, top, bar + unit, top + 4 * unit}, key_.colors.ink);
    }
  }
  if (focused) {
    DrawFocusFrame(canvas.dc(), {plot.left - 1, plot.top - 1, plot.right + 1, plot.bottom + 1});
  }
  return overlaid_;
}

}  // namespace kv
