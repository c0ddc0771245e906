// The commands to a strip chart.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "kv/controls/strip_chart/control.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/sample_queue.h"
#include "kv/controls/strip_chart/sample_store.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/accessible.h"
#include "kv/framework/control_class.h"
#include "kv/framework/window_state.h"

namespace kv {

namespace {

bool ExchangeStyle(StripModel& model, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return CopyItemOut(model.style, address);
  DWORD bits = 0;
  if (!CopyItemIn(address, &bits)) return false;
  model.style = wParam & kCommandRemove ? model.style & ~bits : model.style | bits;
  return true;
}

bool ExchangeChannel(StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) {
    return index < kStripChannels && model.channels[index].used && CopyItemOut(model.channels[index].info, address);
  }
  if (wParam & kCommandRemove) return RemoveChannel(model, index);
  StripChannel info;
  return CopyItemIn(address, &info) && SetChannel(model, index, info);
}

bool Append(StripModel& model, unsigned index, LPARAM address) {
  StripSamples samples;
  constexpr DWORD kMaxCount = 0x7FFFFFFF / sizeof(StripSample);
  if (!CopyItemIn(address, &samples) || samples.count > kMaxCount ||
      (samples.count && IsBadReadPtr(samples.samples, samples.count * sizeof(StripSample)))) {
    return false;
  }
  return AppendSamples(model, index, {samples.samples, samples.count});
}

bool ExchangeSource(StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) {
    return index < kStripChannels && model.channels[index].source.numbers &&
           CopyItemOut(model.channels[index].source, address);
  }
  if (wParam & kCommandRemove) return SetSource(model, index, nullptr);
  StripSource source;
  if (!CopyItemIn(address, &source)) return false;
  const auto isCode = [](auto* function) { return !IsBadReadPtr(reinterpret_cast<const void*>(function), 1); };
  const bool isUsable = isCode(source.numbers) && isCode(source.find) && isCode(source.read) &&
                        (!source.extent || isCode(source.extent)) && (!source.times || isCode(source.times));
  return isUsable && SetSource(model, index, &source);
}

bool ExchangeZone(StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return index < kStripZones && CopyItemOut(model.zones[index], address);
  StripZone zone;
  return CopyItemIn(address, &zone) && SetZone(model, index, zone, (wParam & kStripZoneEnable) != 0);
}

bool ExchangeCapacity(StripModel& model, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return CopyItemOut(model.capacity, address);
  DWORD capacity = 0;
  return CopyItemIn(address, &capacity) && SetStripCapacity(model, capacity);
}

bool ExchangeAxisDigits(StripModel& model, WPARAM wParam, LPARAM address) {
  constexpr DWORD kMaxAxisDigits = 16;
  if (wParam & kCommandRead) return CopyItemOut(model.axisDigits, address);
  DWORD digits = 0;
  if (!CopyItemIn(address, &digits) || digits > kMaxAxisDigits) return false;
  model.axisDigits = digits;
  return true;
}

bool ExchangeView(StripModel& model, WPARAM wParam, LPARAM address) {
  StripView view = model.view;
  if (wParam & kCommandRead) {
    view.end = ShownTimes(model).to;
    return CopyItemOut(view, address);
  }
  return CopyItemIn(address, &view) && SetView(model, view);
}

bool ExchangeCursor(const StripModel& model, WPARAM wParam, LPARAM address, double* cursor, bool* isShown) {
  if (wParam & kCommandRead) return *isShown && CopyItemOut(ReadingAt(model, *cursor), address);
  if (wParam & kCommandRemove) {
    *isShown = false;
    return true;
  }
  double time = 0;
  if (!CopyItemIn(address, &time) || !(std::fabs(time) <= kStripMaxTime)) return false;
  *cursor = time;
  return *isShown = true;
}

bool ExchangeEvent(StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return index < model.events.size() && CopyItemOut(model.events[index], address);
  if (wParam & kCommandRemove) {
    model.events.clear();
    return true;
  }
  StripEvent event;
  if (!CopyItemIn(address, &event) || !(std::fabs(event.time) <= kStripMaxTime)) return false;
  event.text[sizeof(event.text) - 1] = '\0';
  AddEvent(model, event);
  return true;
}

bool ExchangeSelection(StripModel& model, WPARAM wParam, LPARAM address) {
  if (wParam & kCommandRead) return model.hasSelection && CopyItemOut(model.selection, address);
  StripTimeRange selection{};
  const bool remove = (wParam & kCommandRemove) != 0;
  if (!remove && (!CopyItemIn(address, &selection) || !(selection.from <= selection.to) || std::isinf(selection.from) ||
                  std::isinf(selection.to))) {
    return false;
  }
  model.selection = selection;
  model.hasSelection = !remove;
  return true;
}

bool ReadStatistics(const StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  return (wParam & kCommandRead) && index < kStripChannels && CopyItemOut(ChannelStatistics(model, index), address);
}

bool ReadBack(const StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  StripReadBack item;
  if (!(wParam & kCommandRead) || index >= kStripChannels || !CopyItemIn(address, &item)) return false;
  if (item.capacity > 0x7FFFFFFF / sizeof(StripSample) ||
      (item.capacity && IsBadWritePtr(item.samples, item.capacity * sizeof(StripSample)))) {
    return false;
  }
  WithSamples(model, index, [&](const auto& samples) {
    const unsigned from = samples.FirstFrom(item.from), to = samples.FirstAfter(item.to);
    item.count = to > from ? to - from : 0;
    for (DWORD i = 0; i < std::min(item.count, item.capacity); ++i) {
      item.samples[i] = {samples.TimeAt(from + i), samples.ValueAt(from + i)};
    }
  });
  return CopyItemOut(item, address);
}

bool ReadCount(const StripModel& model, unsigned index, WPARAM wParam, LPARAM address) {
  return (wParam & kCommandRead) && index < kStripChannels &&
         CopyItemOut(WithSamples(model, index, [](const auto& samples) { return DWORD{samples.count()}; }), address);
}

bool DoCommand(StripChart& chart, WPARAM wParam, LPARAM lParam) {
  StripModel& model = chart.model;
  const unsigned index = HIWORD(wParam);
  switch (LOBYTE(wParam)) {
    case kStripRender: return chart.redrawAll = true;
    case kStripClear: ClearSamples(model); return true;
    case kStripStyle: return ExchangeStyle(model, wParam, lParam);
    case kStripChannel: return ExchangeChannel(model, index, wParam, lParam);
    case kStripAppend: return !(wParam & kCommandRead) && Append(model, index, lParam);
    case kStripSource: return ExchangeSource(model, index, wParam, lParam);
    case kStripUpdate: return true;
    case kStripRejected: return (wParam & kCommandRead) && CopyItemOut(chart.queue.rejected(), lParam);
    case kStripZone: return ExchangeZone(model, index, wParam, lParam);
    case kStripCapacity: return ExchangeCapacity(model, wParam, lParam);
    case kStripAxisDigits: return ExchangeAxisDigits(model, wParam, lParam);
    case kStripViewItem: return ExchangeView(model, wParam, lParam);
    case kStripCursor: return ExchangeCursor(model, wParam, lParam, &model.cursor, &model.cursorShown);
    case kStripCursorB: return ExchangeCursor(model, wParam, lParam, &model.cursorB, &model.cursorBShown);
    case kStripEventItem: return ExchangeEvent(model, index, wParam, lParam);
    case kStripSelection: return ExchangeSelection(model, wParam, lParam);
    case kStripStatistics: return ReadStatistics(model, index, wParam, lParam);
    case kStripReadBack: return ReadBack(model, index, wParam, lParam);
    case kStripCount: return ReadCount(model, index, wParam, lParam);
    default: return false;
  }
}

// The order of times can be tested where samples are queued only against the newest ones.
void TellNewest(StripChart& chart) {
  std::array<double, kStripChannels> newest;
  for (int i = 0; i < kStripChannels; ++i) {
    const SampleStore& store = chart.model.channels[i].store;
    newest[i] = store.count() ? store.newest() : -kStripMaxTime;
  }
  chart.queue.SetNewest(newest);
}

}  // namespace

void TakeQueued(StripChart& chart) {
  const std::vector<QueuedSample> queued = chart.queue.Take(!chart.waiting);
  std::vector<StripSample> samples;
  for (auto each = queued.begin(); each != queued.end();) {
    const int channel = each->channel;
    samples.clear();
    for (; each != queued.end() && each->channel == channel; ++each) samples.push_back(each->sample);
    if (AppendSamples(chart.model, channel, samples)) continue;
    // Another thread has appended to the same channel in between: as many as possible.
    const auto isRejected = [&](const StripSample& one) { return !AppendSamples(chart.model, channel, {&one, 1}); };
    chart.queue.AddRejected(static_cast<size_t>(std::ranges::count_if(samples, isRejected)));
  }
  if (!queued.empty()) TellNewest(chart);
}

LRESULT OnStripCommand(StripChart& chart, WPARAM wParam, LPARAM lParam) {
  constexpr UINT kShowMs = 50;
  const double cursor = chart.model.cursor;
  TakeQueued(chart);  // in the order of the calls
  if (!DoCommand(chart, wParam, lParam)) return FALSE;
  if (chart.model.cursor != cursor) chart.hovering = false;  // the program has moved it away from the pointer
  if (wParam & kCommandRead) return TRUE;
  TellNewest(chart);
  const bool render = LOBYTE(wParam) == kStripRender;
  const bool append = LOBYTE(wParam) == kStripAppend || LOBYTE(wParam) == kStripUpdate;
  const bool now = render || (wParam & kCommandRedraw);
  // Samples may arrive faster than the chart can be drawn.
  if (append && !now && !chart.waiting) chart.waiting = SetTimer(chart.window, kShowTimer, kShowMs, nullptr) != 0;
  const HWND window = chart.window;
  if (append && now) {
    ShowNow(chart);
  } else if (!append || !chart.waiting) {
    InvalidateRect(window, nullptr, FALSE);
    if (now) UpdateWindow(window);  // whoever paints may destroy the control
  }
  if (!render) NotifyValueChanged(window);
  return TRUE;
}

}  // namespace kv
