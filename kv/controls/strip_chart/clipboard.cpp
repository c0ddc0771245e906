// Copies a strip chart to the clipboard: its image, and the displayed values as a table.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <string>

#include "kv/controls/strip_chart/axis.h"
#include "kv/controls/strip_chart/control.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/framework/canvas.h"

namespace kv {

namespace {

constexpr int kMinCopySize = 16, kMaxCopySize = 5120;

// Formats numbers for the user's spreadsheet.
struct Table {
  std::wstring text;
  wchar_t separator[4] = L".";

  Table() { GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator, ARRAYSIZE(separator)); }
  void Add(std::wstring number) {
    if (const size_t point = number.find(L'.'); point != number.npos) number.replace(point, 1, separator);
    text += number;
  }
  void AddNumber(double value) {
    wchar_t number[40] = L"";
    if (std::isfinite(value)) FormatPlain(number, sizeof(number), L"%.15g", value);
    Add(number);
  }
  void AddTime(double time, TimeFormat format) {
    // Spreadsheets would take elapsed minutes for hours.
    if (format == TimeFormat::kTimeOfDay) return Add(TimeText(time, 0.001, format));
    AddNumber(time);
  }
};

void AddHead(Table& table, const StripModel& model, bool byColumn) {
  table.text = TimeFormatOf(model.style) == TimeFormat::kTimeOfDay ? L"h:min:s" : L"s";
  for (const StripChannelData& channel : model.channels) {
    if (!IsShown(channel)) continue;
    const std::wstring unit = ChannelUnit(channel.info);
    std::wstring name = L"\t" + ChannelName(channel.info);
    if (!unit.empty()) name.append(L" (").append(unit).append(L")");
    table.text += name;
    if (byColumn) table.text.append(L" min").append(name).append(L" max");
  }
  table.text += L"\r\n";
}

struct IndexRange {
  unsigned from, to;
};

// The displayed samples of each channel.
std::array<IndexRange, kStripChannels> ShownSamples(const StripModel& model) {
  const StripTimeRange shown = ShownTimes(model);
  std::array<IndexRange, kStripChannels> ranges{};
  for (unsigned i = 0; i < kStripChannels; ++i) {
    if (!IsShown(model.channels[i])) continue;
    ranges[i] = WithSamples(model, i, [&](const auto& samples) {
      return IndexRange{samples.FirstFrom(shown.from), std::min(samples.FirstAfter(shown.to), ShownCount(model, i))};
    });
  }
  return ranges;
}

// One row for each time at which a channel has a sample; samples of a channel with equal times have separate rows.
void AddSamples(Table& table, const StripModel& model, std::array<IndexRange, kStripChannels> left) {
  for (;;) {
    double time = kNever;
    std::array<StripSample, kStripChannels> next;
    for (unsigned i = 0; i < kStripChannels; ++i) {
      next[i].time = kNever;
      if (left[i].from >= left[i].to) continue;
      WithSamples(model, i, [&](const auto& samples) {
        next[i] = {samples.TimeAt(left[i].from), samples.ValueAt(left[i].from)};
      });
      time = std::min(time, next[i].time);
    }
    if (time == kNever) return;
    table.AddTime(time, TimeFormatOf(model.style));
    for (int i = 0; i < kStripChannels; ++i) {
      if (!IsShown(model.channels[i])) continue;
      table.text += L'\t';
      if (next[i].time != time) continue;
      table.AddNumber(next[i].value);
      ++left[i].from;
    }
    table.text += L"\r\n";
  }
}

void AddColumns(Table& table, const StripModel& model, const StripLayout& layout) {
  const long long width = std::max(layout.plot.right - layout.plot.left, 1L);
  for (long long column = layout.lastColumn - width + 1; column <= layout.lastColumn; ++column) {
    const double start = static_cast<double>(column) * layout.secondsPerColumn;
    table.AddTime(start, TimeFormatOf(model.style));
    for (unsigned i = 0; i < kStripChannels; ++i) {
      if (!IsShown(model.channels[i])) continue;
      const Extent extent = WithSamples(model, i, [&](const auto& samples) {
        const unsigned to = std::min(samples.FirstFrom(start + layout.secondsPerColumn), ShownCount(model, i));
        return samples.ExtentOf(samples.FirstFrom(start), to);
      });
      for (const double value : {extent.low, extent.high}) {
        table.text += L'\t';
        table.AddNumber(value);
      }
    }
    table.text += L"\r\n";
  }
}

std::wstring TableOf(const StripModel& model, const StripLayout& layout) {
  const auto shown = ShownSamples(model);
  DWORD most = 0;
  for (const IndexRange& each : shown) most = std::max(most, DWORD{each.to > each.from ? each.to - each.from : 0});
  Table table;
  const bool byColumn = most > kStripMaxTextRows;
  AddHead(table, model, byColumn);
  if (byColumn) {
    AddColumns(table, model, layout);
  } else {
    AddSamples(table, model, shown);
  }
  return table.text;
}

}  // namespace

LRESULT CopyStrip(StripChart& chart, LPARAM requested) {
  const SIZE size = RequestedCopySize(requested, ClientSize(chart.window), kMinCopySize, kMaxCopySize);
  // Rendered at the requested size by a separate renderer: the control's state does not change.
  const double undrawn = chart.model.undrawnFrom, removed = chart.model.removedTo;
  const std::unique_ptr<StripRenderer> renderer(new (std::nothrow) StripRenderer);
  if (!renderer) return 0;
  renderer->Update(chart.model, size, true);
  chart.model.undrawnFrom = undrawn;
  chart.model.removedTo = removed;
  const Surface& surface = renderer->WithOverlay(chart.model, {}, false);
  // Before opening the clipboard, which notifies its previous owner, who may destroy the control.
  const std::wstring table = TableOf(chart.model, renderer->layoutShown());
  HWND window = chart.window;
  if (surface.bitmap() && CopyBitmapToClipboard(window, surface.bitmap(), size, size))
    CopyTextToClipboard(window, table, TRUE);
  return 0;
}

}  // namespace kv
