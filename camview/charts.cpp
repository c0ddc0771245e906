#include "camview/charts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camview/camera_field.h"
#include "camview/envelope.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/status_line.h"
#include "camview/view_time.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/toolkit/strip_charts.h"

namespace camview {

namespace {

constexpr int kCharts[] = {IDC_CHART_X, IDC_CHART_Y};
constexpr double kHighest[] = {kv::kFieldWidth, kv::kFieldHeight};
constexpr DWORD kAxisDigits = 4;  // of the largest coordinate
constexpr unsigned kAllChannels = (1u << kChannels) - 1;
constexpr double kGap = std::numeric_limits<double>::quiet_NaN();
constexpr int kFineBuckets = 2000;    // for the visible range; more than the columns of a screen
constexpr int kCoarseBuckets = 2000;  // for the rest
constexpr double kMargin = 1;         // visible ranges with details on either side
// A range shorter by this factor needs more details.
constexpr double kFurther = 1.5;
constexpr int kSamplesOfBucket = 5;  // four, and a gap
constexpr DWORD kCapacity =
    (kFineBuckets * (1 + 2 * static_cast<int>(kMargin)) + 2 * kCoarseBuckets) * kSamplesOfBucket;
// Capacity for appended records.
constexpr long long kMaxAppended = 16384;

// Appends a part; its records beyond the edges may be in the previous part.
void AddPart(const RecordStore& store, TimeRange part, int buckets, Curves* curves) {
  if (!(part.from < part.to)) return;
  Curves added;
  MakeCurves(store, part.from, part.to, buckets, kAllChannels, &added);
  for (int channel = 0; channel < kChannels; ++channel) {
    auto& curve = (*curves)[channel];
    const double last = curve.empty() ? -kv::kStripMaxTime : curve.back().time;
    const auto begin = std::ranges::find_if(added[channel], [&](const auto& sample) { return sample.time > last; });
    curve.insert(curve.end(), begin, added[channel].end());
  }
}

int CoarseBuckets(double seconds, double whole) {
  return std::max(static_cast<int>(kCoarseBuckets * seconds / whole), 16);
}

void AppendTo(HWND window, const Curves& curves) {
  for (int channel = 0; channel < kChannels; ++channel) {
    kv::AppendStripChartSamples(window, kCharts[channel % 2], channel / 2, curves[channel]);
  }
}

TimeRange Within(TimeRange range, TimeRange whole) {
  return {std::max(range.from, whole.from), std::min(range.to, whole.to)};
}

kv::StripTimeRange Plain(TimeRange range) {
  return {range.from, range.to};
}

}  // namespace

void Charts::Describe(HWND window) {
  window_ = window;
  isChanged_ = needsValueRange_ = true;
  feed_ = {};
  for (int i = 0; i < kChannels; ++i) {
    const std::wstring name = TextWith(i % 2 ? IDS_CHANNEL_Y : IDS_CHANNEL_X, i / 2 + 1);
    kv::SetStripChartChannel(window, kCharts[i % 2], i / 2, {.name = name.c_str(), .color = PointColor(i / 2)});
  }
  for (const int chart : kCharts) {
    kv::SetStripChartCapacity(window, chart, kCapacity + 2 * kMaxAppended);
    kv::SetStripChartAxisDigits(window, chart, kAxisDigits);
  }
}

bool Charts::HasDetails(const ChartContent& content) const {
  const TimeRange range = Within(content.shown, content.whole);
  return range.from >= feed_.fine.from && range.to <= feed_.fine.to &&
         (feed_.isExact || range.Length() * kFurther >= feed_.shown);
}

// Clearing removes cursor and selection as well.
void Charts::Refill(const ChartContent& content) {
  for (const int chart : kCharts) kv::ClearStripChart(window_, chart);
  isChanged_ = true;
  feed_ = {};
  if (!content.store) return;
  const RecordStore& store = *content.store;
  const TimeRange whole = content.whole, shown = content.shown;
  feed_.shown = std::max(Within(shown, whole).Length(), 0.0);
  const double beside = shown.Length() * kMargin;
  feed_.fine = Within({shown.from - beside, shown.to + beside}, whole);
  const double length = std::max(whole.Length(), 1e-3);
  // If the range exceeds the whole, buckets are for the existing records.
  const double buckets = kFineBuckets * feed_.fine.Length() / std::max(feed_.shown, 1e-3);
  const int fineBuckets = std::clamp(static_cast<int>(std::min(buckets, 1e6)), 1, kFineBuckets * 3);
  feed_.isExact = store.Find(feed_.fine.to) - store.Find(feed_.fine.from) <= 4LL * fineBuckets;
  Curves curves;
  // The charts can be scrolled to the ends even if there are no records.
  if (store.IsEmpty() || store.Seconds(store.First()) > whole.from) {
    for (auto& curve : curves) curve.push_back({whole.from, kGap});
  }
  const TimeRange fine = feed_.fine;
  AddPart(store, {whole.from, fine.from}, CoarseBuckets(fine.from - whole.from, length), &curves);
  AddPart(store, fine, fineBuckets, &curves);
  AddPart(store, {fine.to, whole.to}, CoarseBuckets(whole.to - fine.to, length), &curves);
  for (auto& curve : curves) {
    if (curve.empty() || curve.back().time < whole.to) curve.push_back({whole.to, kGap});
  }
  AppendTo(window_, curves);
  feed_.next = store.End();
}

// Appends the newest records. Returns false when the charts should be refilled.
bool Charts::Append(const ChartContent& content) {
  const RecordStore& store = *content.store;
  const long long count = store.End() - feed_.next;
  feed_.appended += count;
  if (feed_.fine.to == 0 || feed_.appended > kMaxAppended || feed_.next < store.First()) return false;
  if (count == 0) return true;
  Curves curves;
  for (; feed_.next < store.End(); ++feed_.next) {
    const StoredRecord record = store.Get(feed_.next);
    for (int channel = 0; channel < kChannels; ++channel) {
      if (record.flags & kAfterSilence) curves[channel].push_back({record.seconds, kGap});
      curves[channel].push_back({record.seconds, ValueOf(record, channel)});
    }
    feed_.fine.to = std::max(feed_.fine.to, record.seconds);
  }
  AppendTo(window_, curves);
  return true;
}

void Charts::ShowRange(const ChartContent& content) {
  // A port that has not yet filled the charts begins at their left edge.
  const auto isScrolling = [](const ChartContent& c) { return c.isFollowing && c.shown.to <= c.whole.to; };
  const bool scrolls = isScrolling(content);
  const bool isSame = !isChanged_ && scrolls == isScrolling(last_) &&
                      (scrolls ? content.shown.Length() == last_.shown.Length() : content.shown == last_.shown);
  if (isSame) return;
  for (const int chart : kCharts) {
    if (scrolls) {
      kv::FollowStripChart(window_, chart, content.shown.Length());
    } else {
      kv::ShowStripChartTimes(window_, chart, Plain(content.shown));
    }
  }
}

void Charts::ShowMarks(const ChartContent& content, bool isOther) {
  // In the charts of a followed port, the pointer only reads values.
  const bool isFollowing = content.isFollowing, hasCursor = content.store && !isFollowing;
  const bool isCursorSame =
      !isOther && isFollowing == last_.isFollowing && (isFollowing || (!isChanged_ && content.cursor == last_.cursor));
  const bool isSelectionSame = !isChanged_ && content.selection == last_.selection;
  const kv::StripTimeRange selected = Plain(content.selection.value_or(TimeRange{}));
  for (const int chart : kCharts) {
    if (!isCursorSame) kv::SetStripChartCursor(window_, chart, hasCursor ? &content.cursor : nullptr);
    if (!isSelectionSame) kv::SetStripChartSelection(window_, chart, content.selection ? &selected : nullptr);
  }
}

void Charts::Show(const ChartContent& content) {
  if (needsValueRange_ || content.fitValues != last_.fitValues) {
    for (const int i : {0, 1}) {
      kv::SetStripChartView(window_, kCharts[i], content.shown.Length(), 0, content.fitValues ? 0 : kHighest[i]);
    }
    isChanged_ = true;
  }
  needsValueRange_ = false;
  const bool isOther = content.source != last_.source || !content.store != !last_.store;
  const bool isGrowing = content.isFollowing && last_.isFollowing && content.store && !isOther;
  const bool isAppended = isGrowing && Append(content);
  const bool isFed = !isOther && (!content.store || (HasDetails(content) && (isAppended || !content.isFollowing)));
  if (!isFed) Refill(content);
  ShowRange(content);
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
