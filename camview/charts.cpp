#include "camview/charts.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>

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

constexpr int kCharts[] = {IDC_CHART_X, IDC_CHART_Y};
constexpr double kHighest[] = {kv::kFieldWidth, kv::kFieldHeight};
constexpr DWORD kAxisDigits = 4;  // of the largest coordinate
constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();
constexpr DWORD kBatchRecords = 256;

// A port that has not yet filled the charts begins at their left edge.
bool IsScrolling(const ChartContent& content) {
  return content.isFollowing && content.shown.to <= content.whole.to;
}

kv::StripTimeRange Plain(TimeRange range) {
  return {range.from, range.to};
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
  std::array<StoredRecord, kBatchRecords> batch;
  while (store && count > 0) {
    const size_t read = store->Read(number, {batch.data(), std::min(count, kBatchRecords)});
    if (read == 0) return;
    for (size_t i = 0; i < read; ++i) {
      const kv::CameraPoint& place = batch[i].points[point];
      const double value = static_cast<double>(isX ? place.x : place.y);
      *samples++ = {batch[i].seconds, camera::IsSeen(place) ? value : kNoValue,
                    batch[i].flags & kAfterSilence ? kv::kStripGapBefore : 0};
    }
    number += static_cast<long long>(read);
    count -= static_cast<DWORD>(read);
  }
}

kv::StripExtent Charts::Extent(void* axis, int point, long long from, long long to) {
  const RecordStore* store = static_cast<Axis*>(axis)->charts->source_.Records();
  if (!store) return {1, 0};
  const ChannelExtremes extremes = store->ExtremesOf(from, to, 2 * point + static_cast<Axis*>(axis)->coordinate);
  return {static_cast<double>(extremes.lowest), static_cast<double>(extremes.highest)};
}

kv::StripTimeRange Charts::Times(void* axis, int) {
  return Plain(static_cast<Axis*>(axis)->charts->last_.whole);
}

// ---- What they show -------------------------------------------------------------------------------------------------

Charts::Charts(HWND window, const Source& source)
    : window_(window), windows_{GetDlgItem(window, IDC_CHART_X), GetDlgItem(window, IDC_CHART_Y)}, source_(source) {
  for (const int chart : kCharts) kv::SetStripChartAxisDigits(window, chart, kAxisDigits);
}

Charts::~Charts() {
  SetSources(false);
}

void Charts::Describe() const {
  for (int i = 0; i < kChannels; ++i) {
    const std::wstring name = kv::TextWith(i % 2 ? IDS_CHANNEL_Y : IDS_CHANNEL_X, i / 2 + 1);
    kv::SetStripChartChannel(window_, kCharts[i % 2], i / 2, {.name = name.c_str(), .color = PointColor(i / 2)});
  }
}

void Charts::SetSources(bool supply) {
  for (int i = 0; i < kChannels; ++i) {
    const kv::StripSource source{kv::kStripVersion, &axes_[i % 2], Numbers, Find, Read, Extent, Times};
    kv::SetStripChartSource(window_, kCharts[i % 2], i / 2, supply ? &source : nullptr);
  }
}

void Charts::ShowValueRange(const ChartContent& content) const {
  for (const int i : {0, 1}) {
    kv::SetStripChartView(window_, kCharts[i], content.shown.Length(), 0, content.fitValues ? 0 : kHighest[i]);
  }
}

void Charts::ShowRange(const ChartContent& content) const {
  for (const int chart : kCharts) {
    if (IsScrolling(content)) {
      kv::FollowStripChart(window_, chart, content.shown.Length());
    } else {
      kv::ShowStripChartTimes(window_, chart, Plain(content.shown));
    }
  }
}

void Charts::ShowMarks(const ChartContent& content, bool isOther) const {
  // In the charts of a followed port, the pointer only reads values.
  const bool isFollowing = content.isFollowing, hasCursor = content.records > 0 && !isFollowing;
  const bool isCursorSame =
      !isOther && isFollowing == last_.isFollowing && (isFollowing || (!isChanged_ && content.cursor == last_.cursor));
  const bool isSelectionSame = !isChanged_ && !isOther && content.selection == last_.selection;
  const kv::StripTimeRange selected = Plain(content.selection.value_or(TimeRange{}));
  for (const int chart : kCharts) {
    if (!isCursorSame) kv::SetStripChartCursor(window_, chart, hasCursor ? &content.cursor : nullptr);
    if (!isSelectionSame) kv::SetStripChartSelection(window_, chart, content.selection ? &selected : nullptr);
  }
}

void Charts::Show(const ChartContent& content) {
  const ChartContent before = last_;
  const bool isOther = content.source != before.source || content.store != before.store;
  const bool isScaled = isOther || content.fitValues != before.fitValues;
  last_.whole = content.whole;
  if (isOther) SetSources(true);
  if (isScaled) ShowValueRange(content);
  const bool isRangeSame =
      !isChanged_ && !isScaled && IsScrolling(content) == IsScrolling(before) &&
      (IsScrolling(content) ? content.shown.Length() == before.shown.Length() : content.shown == before.shown);
  if (!isRangeSame) ShowRange(content);
  if (content.records != before.records || content.whole != before.whole) {
    // At once: the charts' timers for that would be as frequent as this call.
    for (HWND chart : windows_) SendMessageA(chart, kv::kControlCommand, kv::kStripUpdate | kv::kCommandRedraw, 0);
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

std::optional<TimeRange> Charts::SelectionOf(int chart) const {
  kv::StripTimeRange selected{};
  if (!kv::GetStripChartSelection(window_, chart, &selected)) return std::nullopt;
  return TimeRange{selected.from, selected.to};
}

}  // namespace camview
