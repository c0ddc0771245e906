#include "camview/chart_feed.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "camview/camera_field.h"
#include "camview/envelope.h"
#include "camview/record_store.h"
#include "camview/resource_ids.h"
#include "camview/status_line.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/toolkit/strip_charts.h"

namespace camview {

namespace {

constexpr int kCharts[] = {IDC_CHART_X, IDC_CHART_Y};
constexpr unsigned kAllChannels = (1u << kChannels) - 1;
constexpr double kGap = std::numeric_limits<double>::quiet_NaN();
constexpr int kFineBuckets = 2000;    // for the visible span; more than the columns of a screen
constexpr int kCoarseBuckets = 2000;  // for the rest
constexpr double kMarginSpans = 1;    // spans with details on either side of the visible one
// A span shorter by this factor needs more details.
constexpr double kFurther = 1.5;
constexpr int kSamplesOfBucket = 5;  // four, and a gap
constexpr DWORD kCapacity =
    (kFineBuckets * (1 + 2 * static_cast<int>(kMarginSpans)) + 2 * kCoarseBuckets) * kSamplesOfBucket;
// Capacity for appended records.
constexpr long long kMaxAppended = 16384;

struct Part {
  double from, to;
  int buckets;
};

// Appends a part; its records beyond the edges may be in the previous part.
void AddPart(const RecordStore& store, const Part& part, Curves* curves) {
  if (!(part.from < part.to)) return;
  Curves added;
  MakeCurves(store, part.from, part.to, part.buckets, kAllChannels, &added);
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

void Append(HWND window, const Curves& curves) {
  for (int channel = 0; channel < kChannels; ++channel) {
    kv::AppendStripChartSamples(window, kCharts[channel % 2], channel / 2, curves[channel]);
  }
}

}  // namespace

void DescribeCharts(HWND window) {
  for (int i = 0; i < kChannels; ++i) {
    const std::wstring name = TextWith(i % 2 ? IDS_CHANNEL_Y : IDS_CHANNEL_X, i / 2 + 1);
    kv::SetStripChartChannel(window, kCharts[i % 2], i / 2, {.name = name.c_str(), .color = PointColor(i / 2)});
  }
  constexpr DWORD kAxisDigits = 4;  // of the largest coordinate
  for (const int chart : kCharts) {
    kv::SetStripChartCapacity(window, chart, kCapacity + 2 * kMaxAppended);
    kv::SetStripChartAxisDigits(window, chart, kAxisDigits);
  }
}

bool HasDetails(const ChartFeed& feed, const kv::StripTimeRange& whole, const kv::StripTimeRange& shown) {
  const double from = std::max(shown.from, whole.from), to = std::min(shown.to, whole.to);
  return from >= feed.fine.from && to <= feed.fine.to && (feed.isExact || (to - from) * kFurther >= feed.span);
}

void FeedCharts(HWND window, const RecordStore& store, const kv::StripTimeRange& whole, const kv::StripTimeRange& shown,
                ChartFeed* feed) {
  feed->span = std::max(std::min(shown.to, whole.to) - std::max(shown.from, whole.from), 0.0);
  const double beside = (shown.to - shown.from) * kMarginSpans;
  feed->fine = {std::max(shown.from - beside, whole.from), std::min(shown.to + beside, whole.to)};
  const double length = std::max(whole.to - whole.from, 1e-3);
  // If the span exceeds the whole, buckets are for the existing records.
  const double buckets = kFineBuckets * (feed->fine.to - feed->fine.from) / std::max(feed->span, 1e-3);
  const int fineBuckets = std::clamp(static_cast<int>(std::min(buckets, 1e6)), 1, kFineBuckets * 3);
  feed->isExact = store.Find(feed->fine.to) - store.Find(feed->fine.from) <= 4LL * fineBuckets;
  Curves curves;
  // The charts can be scrolled to the ends even if there are no records.
  if (store.IsEmpty() || store.Seconds(store.First()) > whole.from) {
    for (auto& curve : curves) curve.push_back({whole.from, kGap});
  }
  const kv::StripTimeRange& fine = feed->fine;
  AddPart(store, {whole.from, fine.from, CoarseBuckets(fine.from - whole.from, length)}, &curves);
  AddPart(store, {fine.from, fine.to, fineBuckets}, &curves);
  AddPart(store, {fine.to, whole.to, CoarseBuckets(whole.to - fine.to, length)}, &curves);
  for (auto& curve : curves) {
    if (curve.empty() || curve.back().time < whole.to) curve.push_back({whole.to, kGap});
  }
  for (const int chart : kCharts) kv::ClearStripChart(window, chart);
  Append(window, curves);
  feed->next = store.End();
  feed->appended = 0;
}

bool AppendNewRecords(HWND window, const RecordStore& store, ChartFeed* feed) {
  const long long count = store.End() - feed->next;
  feed->appended += count;
  if (feed->appended > kMaxAppended || feed->next < store.First()) return false;
  if (count == 0) return true;
  Curves curves;
  for (; feed->next < store.End(); ++feed->next) {
    const StoredRecord record = store.Get(feed->next);
    for (int channel = 0; channel < kChannels; ++channel) {
      if (record.flags & kAfterSilence) curves[channel].push_back({record.seconds, kGap});
      curves[channel].push_back({record.seconds, ValueOf(record, channel)});
    }
    feed->fine.to = std::max(feed->fine.to, record.seconds);
  }
  Append(window, curves);
  return true;
}

void ClearCharts(HWND window, ChartFeed* feed) {
  for (const int chart : kCharts) kv::ClearStripChart(window, chart);
  *feed = {};
}

}  // namespace camview
