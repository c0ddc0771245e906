#include "camview/charts.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/camera_field.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/view_time.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/strip_charts.h"

namespace camview {

namespace {

constexpr double kHighest[] = {kv::kFieldWidth, kv::kFieldHeight};
constexpr DWORD kAxisDigits = 5;  // of the longest interval shown without powers
constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
// Records that arrive together have a place on the logarithmic axis.
constexpr double kLeastIntervalMs = 0.1;
constexpr COLORREF kIntervalColor = RGB(126, 78, 178);  // unlike the points

// A port that has not yet filled the charts begins at their left edge.
bool IsScrolling(const ChartContent& content) {
  return content.isFollowing && content.shown.to <= content.whole.to;
}

template <class Use>
void ForVisible(const ChartContent& content, const Use& use) {
  for (size_t i = 0; i < std::size(kCharts); ++i) {
    if (content.isVisible[i]) use(kCharts[i]);
  }
}

kv::StripTimeRange Plain(TimeRange range) {
  return {range.from, range.to};
}

kv::StripExtent ExtentInMs(const RecordStore* store, long long from, long long to) {
  const Intervals found = store ? store->IntervalsOf(from, to) : Intervals{};
  if (found.shortest > found.longest) return {1, 0};
  const auto ms = [](std::int64_t microseconds) {
    return std::max(static_cast<double>(microseconds) / 1000, kLeastIntervalMs);
  };
  return {ms(found.shortest), ms(found.longest)};
}

}  // namespace

// ---- What the charts ask --------------------------------------------------------------------------------------------

kv::StripNumbers Charts::Numbers(void* axis, int) {
  const RecordStore* store = static_cast<Axis*>(axis)->charts->source_.Records();
  return store ? kv::StripNumbers{store->First(), store->End()} : kv::StripNumbers{};
}

long long Charts::Find(void* axis, int, double time) {
  const RecordStore* store = static_cast<Axis*>(axis)->charts->source_.Records();
  return store ? store->Find(time) : 0;
}

void Charts::Read(void* axis, int point, long long number, DWORD count, kv::StripSuppliedSample* samples) {
  const RecordStore* store = static_cast<Axis*>(axis)->charts->source_.Records();
  const bool isX = static_cast<Axis*>(axis)->coordinate == 0;
  if (!store) return;
  ForRecords(*store, number, number + count, [&](const StoredRecord& record) {
    const kv::CameraPoint& place = record.points[point];
    const double value = static_cast<double>(isX ? place.x : place.y);
    *samples++ = {record.seconds, camera::IsSeen(place) ? value : kNoValue,
                  record.flags & kAfterSilence ? kv::kStripGapBefore : 0};
  });
}

kv::StripExtent Charts::Extent(void* axis, int point, long long from, long long to) {
  const RecordStore* store = static_cast<Axis*>(axis)->charts->source_.Records();
  if (!store) return {1, 0};
  const ChannelExtremes extremes = store->ExtremesOf(from, to, 2 * point + static_cast<Axis*>(axis)->coordinate);
  return {static_cast<double>(extremes.lowest), static_cast<double>(extremes.highest)};
}

void Charts::ReadIntervals(void* axis, int, long long number, DWORD count, kv::StripSuppliedSample* samples) {
  const RecordStore* store = static_cast<Axis*>(axis)->charts->source_.Records();
  if (!store) return;
  double before = number > store->First() ? store->Seconds(number - 1) : kNoValue;
  ForRecords(*store, number, number + count, [&](const StoredRecord& record) {
    const double ms = (record.seconds - before) * 1000;
    *samples++ = {record.seconds, std::isnan(ms) ? ms : std::max(ms, kLeastIntervalMs),
                  record.flags & kAfterSilence ? kv::kStripGapBefore : 0};
    before = record.seconds;
  });
}

kv::StripExtent Charts::ExtentOfIntervals(void* axis, int, long long from, long long to) {
  return ExtentInMs(static_cast<Axis*>(axis)->charts->source_.Records(), from, to);
}

kv::StripTimeRange Charts::Times(void* axis, int) {
  return Plain(static_cast<Axis*>(axis)->charts->last_.whole);
}

// ---- What they show -------------------------------------------------------------------------------------------------

Charts::Charts(HWND window, const Source& source) : window_(window), source_(source) {
  for (size_t i = 0; i < std::size(kCharts); ++i) {
    windows_[i] = GetDlgItem(window, kCharts[i]);
    kv::SetStripChartAxisDigits(window, kCharts[i], kAxisDigits);
  }
}

Charts::~Charts() {
  SetSources(false);
}

void Charts::Describe() const {
  for (int i = 0; i < kChannels; ++i) {
    const std::wstring name = kv::TextWith(i % 2 ? IDS_CHANNEL_Y : IDS_CHANNEL_X, i / 2 + 1);
    kv::SetStripChartChannel(window_, kCharts[i % 2], i / 2, {.name = name.c_str(), .color = PointColor(i / 2)});
  }
  const std::wstring interval = kv::ResourceText(IDS_CHANNEL_INTERVAL);
  kv::SetStripChartChannel(window_, IDC_INTERVALS, 0,
                           {.name = interval.c_str(), .unit = L"ms", .color = kIntervalColor});
}

void Charts::SetSources(bool supply) {
  for (int i = 0; i < kChannels; ++i) {
    const kv::StripSource source{kv::kStripVersion, &axes_[i % 2], Numbers, Find, Read, Extent, Times};
    kv::SetStripChartSource(window_, kCharts[i % 2], i / 2, supply ? &source : nullptr);
  }
  const kv::StripSource intervals{kv::kStripVersion, &axes_[2], Numbers, Find, ReadIntervals, ExtentOfIntervals, Times};
  kv::SetStripChartSource(window_, IDC_INTERVALS, 0, supply ? &intervals : nullptr);
}

// From the decade of the shortest one of all records to that of the longest, but no less than two around the camera's.
TimeRange Charts::RangeOfIntervals(const ChartContent& content) const {
  if (!content.isVisible[2] || content.fitValues) return {};
  const kv::StripExtent all = ExtentInMs(source_.Records(), 0, content.records);
  if (all.minimum > all.maximum) return {1, 100};
  return {std::min(std::pow(10, std::floor(std::log10(all.minimum))), 1.0),
          std::max(std::pow(10, std::ceil(std::log10(all.maximum))), 100.0)};
}

void Charts::ShowValueRange(const ChartContent& content, int chart) const {
  TimeRange range = intervals_;
  if (chart != IDC_INTERVALS) range = {0, content.fitValues ? 0 : kHighest[chart == IDC_CHART_Y]};
  kv::SetStripChartView(window_, chart, content.shown.Length(), range.from, range.to);
}

void Charts::ShowRange(const ChartContent& content) const {
  ForVisible(content, [&](int chart) {
    if (IsScrolling(content)) {
      kv::FollowStripChart(window_, chart, content.shown.Length());
    } else {
      kv::ShowStripChartTimes(window_, chart, Plain(content.shown));
    }
  });
}

void Charts::ShowMarks(const ChartContent& content, bool isOther) const {
  // In the charts of a followed port, the pointer only reads values.
  const bool isFollowing = content.isFollowing, hasCursor = content.records > 0 && !isFollowing;
  const bool isCursorSame =
      !isOther && isFollowing == last_.isFollowing && (isFollowing || (!isChanged_ && content.cursor == last_.cursor));
  const bool isSelectionSame = !isChanged_ && !isOther && content.selection == last_.selection;
  const bool isCursorBSame = !isChanged_ && !isOther && content.cursorB == last_.cursorB;
  const kv::StripTimeRange selected = Plain(content.selection.value_or(TimeRange{}));
  ForVisible(content, [&](int chart) {
    if (!isCursorSame) kv::SetStripChartCursor(window_, chart, hasCursor ? &content.cursor : nullptr);
    if (!isCursorBSame) kv::SetStripChartCursorB(window_, chart, content.cursorB ? &*content.cursorB : nullptr);
    if (!isSelectionSame) kv::SetStripChartSelection(window_, chart, content.selection ? &selected : nullptr);
  });
}

void Charts::Show(const ChartContent& content) {
  const ChartContent before = last_;
  const bool isOther =
      content.source != before.source || content.store != before.store || content.isVisible != before.isVisible;
  const TimeRange intervals = std::exchange(intervals_, RangeOfIntervals(content));
  const bool isScaled = isOther || content.fitValues != before.fitValues;
  last_.whole = content.whole;
  if (isOther) SetSources(true);
  const bool isRescaled = content.isVisible[2] && intervals != intervals_;
  ForVisible(content, [&](int chart) {
    if (isScaled || (isRescaled && chart == IDC_INTERVALS)) ShowValueRange(content, chart);
  });
  const bool isRangeSame =
      !isChanged_ && !isScaled && !isRescaled && IsScrolling(content) == IsScrolling(before) &&
      (IsScrolling(content) ? content.shown.Length() == before.shown.Length() : content.shown == before.shown);
  if (!isRangeSame) ShowRange(content);
  if (content.records != before.records || content.whole != before.whole) {
    // At once: the charts' timers for that would be as frequent as this call.
    for (size_t i = 0; i < std::size(kCharts); ++i) {
      if (!content.isVisible[i]) continue;
      SendMessageA(windows_[i], kv::kControlCommand, kv::kStripUpdate | kv::kCommandRedraw, 0);
    }
  }
  ShowMarks(content, isOther);
  last_ = content;
  isChanged_ = false;
}

TimeRange Charts::ShownBy(int chart) const {
  kv::StripTimeRange shown{};
  kv::GetStripChartTimes(window_, chart, &shown);
  return {shown.from, shown.to};
}

bool Charts::CursorOf(int chart, double* time) const {
  return kv::GetStripChartCursor(window_, chart, time) != 0;
}

std::optional<double> Charts::CursorBOf(int chart) const {
  double time = 0;
  if (!kv::GetStripChartCursorB(window_, chart, &time)) return std::nullopt;
  return time;
}

std::optional<TimeRange> Charts::SelectionOf(int chart) const {
  kv::StripTimeRange selected{};
  if (!kv::GetStripChartSelection(window_, chart, &selected)) return std::nullopt;
  return TimeRange{selected.from, selected.to};
}

}  // namespace camview
