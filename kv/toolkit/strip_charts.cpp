#include "kv/toolkit/strip_charts.h"
#include <cstddef>
#include <span>

#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/toolkit/control_access.h"

namespace kv {

namespace {

BOOL Send(HWND dialog, int id, WPARAM command, int index, const void* item) {
  HWND chart = ControlOfClass(dialog, id, kStripChartClass);
  return chart && SendMessageA(chart, kControlCommand, MAKEWPARAM(command, index), reinterpret_cast<LPARAM>(item));
}

// Changes a channel with `change`; creates it if it does not exist.
template <class Change>
BOOL ChangeChannel(HWND dialog, int id, int channel, Change change) {
  StripChannel info{};
  if (!AppendStripChartSamples(dialog, id, channel, {}) ||
      !Send(dialog, id, kStripChannel | kCommandRead, channel, &info)) {
    return FALSE;
  }
  change(info);
  return Send(dialog, id, kStripChannel | kCommandRedraw, channel, &info);
}

template <class Change>
BOOL ChangeView(HWND dialog, int id, Change change) {
  StripView view{};
  if (!Send(dialog, id, kStripViewItem | kCommandRead, 0, &view)) return FALSE;
  change(view);
  return Send(dialog, id, kStripViewItem | kCommandRedraw, 0, &view);
}

BOOL SetCursorTime(HWND dialog, int id, WPARAM cursor, const double* time) {
  return Send(dialog, id, time ? cursor : cursor | kCommandRemove, 0, time);
}

BOOL GetCursorTime(HWND dialog, int id, WPARAM cursor, double* time) {
  StripReading reading{};
  if (!Send(dialog, id, cursor | kCommandRead, 0, &reading)) return FALSE;
  *time = reading.time;
  return TRUE;
}

}  // namespace

BOOL SetStripChartChannel(HWND dialog, int id, int channel, const StripChannelOptions& options) {
  if (!IsReadableText(options.name) || !IsReadableText(options.unit)) return FALSE;
  return ChangeChannel(dialog, id, channel, [&](StripChannel& info) {
    StoreText(info.name, options.name);
    StoreText(info.unit, options.unit);
    if (options.color != CLR_INVALID) info.color = options.color;
    info.minimum = options.minimum;
    info.maximum = options.maximum;
    info.state |= kStripVisible;
  });
}

BOOL ShowStripChartChannel(HWND dialog, int id, int channel, BOOL show) {
  return ChangeChannel(dialog, id, channel, [&](StripChannel& info) {
    info.state = show ? info.state | kStripVisible : info.state & ~kStripVisible;
  });
}

// The chart is looked up once: a thread that found none must not wait for the next one's thread.
BOOL AppendStripChartSamples(HWND dialog, int id, int channel, std::span<const StripSample> samples) {
  HWND chart = ControlOfClass(dialog, id, kStripChartClass);
  if (!chart) return FALSE;
  if (GetWindowThreadProcessId(chart, nullptr) != GetCurrentThreadId()) {
    return QueueStripSamples(chart, channel, samples);
  }
  const StripSamples item{static_cast<DWORD>(samples.size()), samples.data()};
  return SendMessageA(chart, kControlCommand, MAKEWPARAM(kStripAppend, channel), reinterpret_cast<LPARAM>(&item)) != 0;
}

BOOL AppendStripChartValue(HWND dialog, int id, int channel, double time, double value) {
  const StripSample sample{time, value};
  return AppendStripChartSamples(dialog, id, channel, {&sample, 1});
}

BOOL SetStripChartSource(HWND dialog, int id, int channel, const StripSource* source) {
  return Send(dialog, id, source ? kStripSource : kStripSource | kCommandRemove, channel, source);
}

BOOL UpdateStripChart(HWND dialog, int id) {
  return Send(dialog, id, kStripUpdate, 0, nullptr);
}

double StripChartNow() {
  constexpr double kTicksPerSecond = 1e7, kSecondsFrom1601To1970 = 11644473600.0;
  const auto counted = [] {
    LARGE_INTEGER count, frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
  };
  static const double start = [&] {
    FILETIME now, local;
    GetSystemTimeAsFileTime(&now);
    FileTimeToLocalFileTime(&now, &local);
    const ULARGE_INTEGER ticks{{local.dwLowDateTime, local.dwHighDateTime}};
    return static_cast<double>(ticks.QuadPart) / kTicksPerSecond - kSecondsFrom1601To1970 - counted();
  }();
  return start + counted();
}

BOOL GetStripChartRejected(HWND dialog, int id, DWORD* samples) {
  return Send(dialog, id, kStripRejected | kCommandRead, 0, samples);
}

BOOL SetStripChartCapacity(HWND dialog, int id, DWORD samples) {
  return Send(dialog, id, kStripCapacity | kCommandRedraw, 0, &samples);
}

BOOL SetStripChartAxisDigits(HWND dialog, int id, DWORD digits) {
  return Send(dialog, id, kStripAxisDigits | kCommandRedraw, 0, &digits);
}

BOOL SetStripChartView(HWND dialog, int id, double seconds, double minimum, double maximum) {
  return ChangeView(dialog, id, [&](StripView& view) {
    view.state |= kStripFollow;
    view.span = seconds;
    view.minimum = minimum;
    view.maximum = maximum;
    view.zoom = 1;
    view.shift = 0;
  });
}

BOOL ShowStripChartTimes(HWND dialog, int id, StripTimeRange times) {
  return ChangeView(dialog, id, [&](StripView& view) {
    view.state &= ~kStripFollow;
    view.span = times.to - times.from;
    view.end = times.to;
  });
}

BOOL FollowStripChart(HWND dialog, int id, double seconds) {
  return ChangeView(dialog, id, [&](StripView& view) {
    view.state |= kStripFollow;
    view.span = seconds;
  });
}

BOOL GetStripChartTimes(HWND dialog, int id, StripTimeRange* times) {
  StripView view{};
  if (!Send(dialog, id, kStripViewItem | kCommandRead, 0, &view)) return FALSE;
  *times = {view.end - view.span, view.end};
  return TRUE;
}

BOOL SetStripChartCursor(HWND dialog, int id, const double* time) {
  return SetCursorTime(dialog, id, kStripCursor, time);
}

BOOL GetStripChartCursor(HWND dialog, int id, double* time) {
  return GetCursorTime(dialog, id, kStripCursor, time);
}

BOOL SetStripChartCursorB(HWND dialog, int id, const double* time) {
  return SetCursorTime(dialog, id, kStripCursorB, time);
}

BOOL GetStripChartCursorB(HWND dialog, int id, double* time) {
  return GetCursorTime(dialog, id, kStripCursorB, time);
}

BOOL AddStripChartEvent(HWND dialog, int id, double time, const wchar_t* text) {
  if (!text) return Send(dialog, id, kStripEventItem | kCommandRemove, 0, nullptr);
  if (!IsReadableText(text)) return FALSE;
  StripEvent event{.time = time};
  StoreText(event.text, text);
  return Send(dialog, id, kStripEventItem, 0, &event);
}

BOOL SetStripChartSelection(HWND dialog, int id, const StripTimeRange* range) {
  return Send(dialog, id, range ? kStripSelection : kStripSelection | kCommandRemove, 0, range);
}

BOOL GetStripChartSelection(HWND dialog, int id, StripTimeRange* range) {
  return Send(dialog, id, kStripSelection | kCommandRead, 0, range);
}

BOOL ClearStripChart(HWND dialog, int id) {
  return Send(dialog, id, kStripClear, 0, nullptr);
}

BOOL FreezeStripChart(HWND dialog, int id, BOOL freeze) {
  return ChangeView(dialog, id, [&](StripView& view) {
    view.state = freeze ? view.state | kStripFrozen : view.state & ~kStripFrozen;
  });
}

BOOL IsStripChartFrozen(HWND dialog, int id) {
  StripView view{};
  return Send(dialog, id, kStripViewItem | kCommandRead, 0, &view) && view.state & kStripFrozen;
}

BOOL SetStripChartStyle(HWND dialog, int id, DWORD bits, BOOL set) {
  return Send(dialog, id, kStripStyle | kCommandRedraw | (set ? 0 : kCommandRemove), 0, &bits);
}

BOOL SetStripChartZones(HWND dialog, int id, std::span<const StripZone> zones) {
  BOOL done = TRUE;
  for (int i = 0; i < kStripZones && done; ++i) {
    const bool shown = static_cast<size_t>(i) < zones.size();
    const StripZone zone = shown ? zones[i] : StripZone{};
    done = Send(dialog, id, kStripZone | kCommandRedraw | (shown ? kStripZoneEnable : 0), i, &zone);
  }
  return done;
}

BOOL GetStripChartStatistics(HWND dialog, int id, int channel, StripStatistics* statistics) {
  return Send(dialog, id, kStripStatistics | kCommandRead, channel, statistics);
}

}  // namespace kv
