// Layout and colors of a strip chart.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/painting.h"

namespace kv {

namespace {

constexpr double kDigitWidth = 0.56;  // relative to the character height
constexpr int kLabelCharacters = 10;  // the width of a time with the gap to the next

LONG CharacterCount(const AxisRange& range, double step) {
  size_t most = 1;
  for (const double value : {range.low, range.high}) {
    most = std::max(most, TickText(std::round(value / step) * step, step).size());
  }
  return static_cast<LONG>(most);
}

LONG TextLength(const std::vector<AxisTick>& ticks) {
  size_t most = 1;
  for (const AxisTick& tick : ticks) most = std::max(most, tick.text.size());
  return static_cast<LONG>(most);
}

// Axes from the outside inwards, as long as the plot keeps most of the width.
void LayoutAxes(StripLayout& layout, const StripModel& model, RECT* plot) {
  const bool numbers = layout.labelsPx > 0;
  const int ticks = std::max(2, static_cast<int>((plot->bottom - plot->top) / (2.2 * layout.fontPx)));
  const auto add = [&](int channel) {
    StripAxis& axis = layout.axis[layout.axes++];
    axis.channel = channel;
    axis.range = RangeOf(model, channel, ticks);
    axis.step = NiceStep((axis.range.high - axis.range.low) / ticks);
    const LONG count = layout.isLogarithmic ? TextLength(AxisTicks(axis.range, axis.step, true))
                                            : CharacterCount(axis.range, axis.step);
    const LONG digits = std::max(count, static_cast<LONG>(model.axisDigits));
    const LONG width = numbers ? (digits + 1) * layout.digitPx : 0;
    axis.area = {plot->left, plot->top, plot->left + width, plot->bottom};
    if (axis.area.right * 2 > layout.size.cx) axis.area.right = plot->left;
    plot->left = axis.area.right;
  };
  if (model.style & kStripSeparateAxes) {
    for (int i = 0; i < kStripChannels; ++i) {
      if (IsShown(model.channels[i])) add(i);
    }
  }
  if (layout.axes == 0) add(-1);
}

double Luminance(COLORREF color) {
  const auto channel = [](BYTE value) { return std::pow(value / 255.0, 2.2); };
  return 0.2126 * channel(GetRValue(color)) + 0.7152 * channel(GetGValue(color)) + 0.0722 * channel(GetBValue(color));
}

// Blends the color with `ink` until it contrasts with `ground`.
COLORREF Readable(COLORREF color, COLORREF ground, COLORREF ink, double minContrast) {
  const double background = Luminance(ground) + 0.05;
  for (int percent = 0; percent < 100; percent += 20) {
    const COLORREF mixed = MixColors(color, ink, percent);
    const double contrast = (Luminance(mixed) + 0.05) / background;
    if (std::max(contrast, 1 / contrast) >= minContrast) return mixed;
  }
  return ink;
}

COLORREF Gray(COLORREF color) {
  const int lightness = (GetRValue(color) * 30 + GetGValue(color) * 59 + GetBValue(color) * 11) / 100;
  return RGB(lightness, lightness, lightness);
}

}  // namespace

StripLayout LayoutStrip(const StripModel& model, SIZE size) {
  StripLayout layout;
  std::fill_n(reinterpret_cast<BYTE*>(&layout), sizeof(layout), BYTE{0});  // layouts are compared byte by byte
  layout.size = size;
  layout.fontPx = std::clamp(static_cast<int>(std::min(size.cx, size.cy * 3 / 2)) / 38, 11, 40);
  layout.digitPx = std::max(1, static_cast<int>(std::ceil(layout.fontPx * kDigitWidth)));
  if (model.style & kStripSymbols) layout.symbolPx = std::max(4, layout.fontPx * 3 / 8);
  layout.lineWidth = std::max(1.2, layout.fontPx / 9.0);
  const int lineHeight = layout.fontPx * 3 / 2, margin = layout.fontPx / 2;
  const bool isLarge = size.cy >= 8 * layout.fontPx && size.cx >= 14 * layout.digitPx;
  RECT plot{margin, margin, size.cx - margin, size.cy - margin};
  if (isLarge && !(model.style & kStripNoLegend)) {
    plot.top = lineHeight + margin / 2;
    layout.legend = {0, 0, size.cx, plot.top};
  }
  if (isLarge) {
    layout.labelsPx = lineHeight;
    plot.bottom = size.cy - lineHeight;
    plot.left = margin / 2;
  }
  plot.right = std::max(plot.right, plot.left);
  plot.bottom = std::max(plot.bottom, plot.top);
  layout.isLogarithmic = IsLogarithmic(model);
  LayoutAxes(layout, model, &plot);
  layout.plot = plot;
  const StripTimeRange shown = ShownTimes(model);
  const LONG width = std::max(plot.right - plot.left, 1L);
  layout.secondsPerColumn = (shown.to - shown.from) / width;
  layout.timeStep = TimeStep(layout.secondsPerColumn * layout.digitPx * kLabelCharacters, TimeFormatOf(model.style));
  layout.lastColumn = static_cast<long long>(std::floor(shown.to / layout.secondsPerColumn));
  layout.sweeps = IsSweep(model);
  layout.gapPx = layout.sweeps ? std::max(3L, width / 60) : 0;
  return layout;
}

double TimeAtX(const StripLayout& layout, LONG x) {
  const LONG width = std::max(layout.plot.right - layout.plot.left, 1L), place = x - layout.plot.left;
  long long column = layout.lastColumn - width + 1 + place;
  if (layout.sweeps) {
    const long long start = layout.lastColumn - ((layout.lastColumn % width) + width) % width;
    column = start + place;
    if (column > layout.lastColumn) column -= width;
  }
  return (static_cast<double>(column) + 0.5) * layout.secondsPerColumn;
}

LONG XOfTime(const StripLayout& layout, double time) {
  const LONG width = std::max(layout.plot.right - layout.plot.left, 1L);
  const double ago = static_cast<double>(layout.lastColumn) - std::floor(time / layout.secondsPerColumn);
  if (!(ago > -1) || !(ago < width)) return ago < 0 ? layout.size.cx + 1 : -1;
  const auto column = layout.lastColumn - static_cast<long long>(ago);
  return layout.sweeps ? layout.plot.left + static_cast<LONG>((column % width + width) % width)
                       : layout.plot.right - 1 - static_cast<LONG>(ago);
}

double ReadingStep(const StripLayout& layout, int channel, double value) {
  constexpr double kParts = 1000;
  if (layout.isLogarithmic && value != 0) return NiceStep(std::fabs(value) / kParts);
  return AxisOf(layout, channel).step / 100;
}

const StripAxis& AxisOf(const StripLayout& layout, int channel) {
  for (int i = 0; i < layout.axes; ++i) {
    if (layout.axis[i].channel == channel) return layout.axis[i];
  }
  return layout.axis[0];
}

StripColors ColorsOf(const StripModel& model) {
  const bool disabled = (model.style & kStripDisabled) != 0, contrast = IsHighContrast();
  StripColors colors{};
  colors.panel = GetSysColor(COLOR_BTNFACE);
  colors.text = GetSysColor(disabled ? COLOR_GRAYTEXT : COLOR_BTNTEXT);
  colors.ground = GetSysColor(disabled ? COLOR_BTNFACE : COLOR_WINDOW);
  colors.ink = GetSysColor(disabled ? COLOR_GRAYTEXT : COLOR_WINDOWTEXT);
  colors.grid = MixColors(colors.ground, colors.ink, contrast ? 50 : 14);
  colors.frame = MixColors(colors.ground, colors.ink, contrast ? 100 : 45);
  colors.tooltip = GetSysColor(COLOR_INFOBK);
  colors.tooltipText = GetSysColor(COLOR_INFOTEXT);
  colors.selection = GetSysColor(COLOR_HIGHLIGHT);
  colors.hidden = GetSysColor(COLOR_GRAYTEXT);
  for (int i = 0; i < kStripChannels; ++i) {
    const COLORREF own = model.channels[i].info.color & 0xFFFFFF;
    colors.lines[i] = disabled ? MixColors(Gray(own), colors.ground, 40) : own;
    colors.lines[i] = Readable(colors.lines[i], colors.ground, colors.ink, contrast ? 4.5 : disabled ? 1.3 : 1.8);
  }
  for (int i = 0; i < kStripZones; ++i) {
    const COLORREF own = disabled ? Gray(model.zones[i].color & 0xFFFFFF) : model.zones[i].color & 0xFFFFFF;
    // In high contrast a zone is drawn faintly.
    colors.zones[i] = MixColors(colors.ground, own, contrast ? 8 : 22);
  }
  return colors;
}

}  // namespace kv
