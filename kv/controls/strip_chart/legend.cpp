// The legend of a strip chart: every channel, shortened as far as needed, and how many did not fit.
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/canvas.h"

namespace kv {

namespace {

std::wstring LegendText(const StripChannel& info, bool hasUnit) {
  const std::wstring unit = hasUnit ? ChannelUnit(info) : L"";
  return ChannelName(info) + (unit.empty() ? L"" : L" (" + unit + L")");
}

}  // namespace

std::wstring ShortenedText(HDC dc, const std::wstring& text, LONG width) {
  if (WidthOf(dc, text) <= width) return text;
  std::wstring shown;
  for (size_t left = text.size() - 1; left > 0; --left) {
    shown = text.substr(0, left / 2) + L"\x2026" + text.substr(text.size() - (left - left / 2));
    if (WidthOf(dc, shown) <= width) break;
  }
  return shown;
}

void StripRenderer::DrawLegend(Canvas& canvas, const StripModel& model) {
  const StripLayout& layout = key_.layout;
  legendItems_.fill({});
  if (IsRectEmpty(&layout.legend)) return;
  HDC dc = canvas.dc();
  const LONG dash = layout.fontPx * 3 / 2, space = layout.digitPx, around = dash + 3 * space;
  const LONG available = layout.size.cx - layout.plot.left, least = 6 * space;
  const auto& channels = model.channels;
  const int count = static_cast<int>(std::ranges::count_if(channels, &StripChannelData::used));
  std::array<LONG, kStripChannels> widths{};
  int shown = count;
  LONG limit = available;
  const auto needed = [&] {
    LONG sum = shown < count ? 3 * space : 0;
    for (int i = 0; i < shown; ++i) sum += around + std::min(widths[i], limit);
    return sum;
  };
  const auto measure = [&](bool hasUnits) {
    int item = 0;
    for (const StripChannelData& channel : channels) {
      if (channel.used) widths[item++] = WidthOf(dc, LegendText(channel.info, hasUnits));
    }
    return needed() <= available;
  };
  // Units are left out first; then the longest names are shortened to a common width; then the last channels are
  // counted.
  const bool hasUnits = measure(true);
  if (!hasUnits) measure(false);
  while (limit > least && needed() > available) --limit;
  while (shown > 0 && needed() > available) --shown;
  const double middle = (layout.legend.top + layout.legend.bottom) / 2.0;
  LONG x = layout.plot.left;
  for (int i = 0, item = 0; item < shown; ++i) {
    const StripChannelData& channel = channels[i];
    if (!channel.used) continue;
    const LONG width = std::min(widths[item++], limit);
    const bool isOn = IsShown(channel);
    FillLine(canvas, {x + 0.0, middle}, {x + 0.0 + dash, middle}, layout.lineWidth * 1.6, key_.colors.lines[i]);
    if (layout.symbolPx) {
      DrawSymbol(canvas, i, {x + dash / 2.0, middle}, layout.symbolPx, key_.colors.lines[i], key_.colors.panel);
    }
    // A channel that is not displayed has a hollow line and a gray name.
    if (!isOn) {
      FillLine(canvas, {x + 1.0, middle}, {x - 1.0 + dash, middle}, layout.lineWidth * 1.6 - 2, key_.colors.panel);
    }
    const RECT area{x + dash + space, layout.legend.top, x + dash + space + width, layout.legend.bottom};
    DrawTextIn(dc, ShortenedText(dc, LegendText(channel.info, hasUnits), width), area,
               isOn ? key_.colors.text : key_.colors.hidden, DT_LEFT | DT_END_ELLIPSIS);
    legendItems_[i] = {x, layout.legend.top, area.right + space, layout.legend.bottom};
    x += around + width;
  }
  if (shown == count) return;
  DrawTextIn(dc, L"+" + std::to_wstring(count - shown), {x, layout.legend.top, layout.size.cx, layout.legend.bottom},
             key_.colors.text, DT_LEFT);
}

int StripRenderer::LegendItemAt(POINT place) const {
  const auto item = std::ranges::find_if(legendItems_, [&](const RECT& each) { return PtInRect(&each, place) != 0; });
  return item == legendItems_.end() ? -1 : static_cast<int>(item - legendItems_.begin());
}

}  // namespace kv
