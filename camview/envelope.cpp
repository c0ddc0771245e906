#include "camview/envelope.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <vector>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"
#include "kv/controls/strip_chart/strip_chart.h"

namespace camview {

namespace {

constexpr int kRecordsOfBucket = 4;  // equals the samples of a bucket
constexpr size_t kBatchRecords = 512;
constexpr double kGap = std::numeric_limits<double>::quiet_NaN();

// Ends the line at the last sample. Consecutive gaps are one.
void AddGap(std::vector<kv::StripSample>* curve) {
  if (!curve->empty() && !std::isnan(curve->back().value)) curve->push_back({curve->back().time, kGap});
}

void AddValue(double seconds, double value, std::vector<kv::StripSample>* curve) {
  if (std::isnan(value)) {
    AddGap(curve);
  } else {
    curve->push_back({seconds, value});
  }
}

template <class Function>
void ForChannels(unsigned channels, Function function) {
  for (int channel = 0; channel < kChannels; ++channel) {
    if (channels >> channel & 1) function(channel);
  }
}

void AddRecords(const RecordStore& store, long long first, long long end, unsigned channels, Curves* curves) {
  std::array<StoredRecord, kBatchRecords> batch;
  while (first < end) {
    const auto requested = static_cast<size_t>(std::min<long long>(kBatchRecords, end - first));
    const size_t count = store.Read(first, {batch.data(), requested});
    for (const StoredRecord& record : std::span(batch).first(count)) {
      ForChannels(channels, [&](int channel) {
        auto* curve = &(*curves)[channel];
        if (record.flags & kAfterSilence) AddGap(curve);
        AddValue(record.seconds, ValueOf(record, channel), curve);
      });
    }
    first += static_cast<long long>(count);
  }
}

// Adds the bucket of the records `first` to `end` - 1, which are more than a few.
void AddBucket(const RecordStore& store, long long first, long long end, unsigned channels, Curves* curves) {
  const StoredRecord head = store.Get(first), tail = store.Get(end - 1);
  const Extremes extremes = store.ExtremesOf(first, end);
  const double middle = (head.seconds + tail.seconds) / 2;
  ForChannels(channels, [&](int channel) {
    auto* curve = &(*curves)[channel];
    if (head.flags & kAfterSilence) AddGap(curve);
    const double lowest = extremes.lowest[channel], highest = extremes.highest[channel];
    if (lowest > highest) {
      AddGap(curve);
      return;
    }
    const double begin = ValueOf(head, channel), last = ValueOf(tail, channel);
    if (!std::isnan(begin)) curve->push_back({head.seconds, begin});
    curve->push_back({middle, lowest});
    curve->push_back({middle, highest});
    if (!std::isnan(last)) curve->push_back({tail.seconds, last});
  });
}

}  // namespace

double ValueOf(const StoredRecord& record, int channel) {
  const kv::CameraPoint& point = record.points[channel / 2];
  return camera::IsSeen(point) ? static_cast<double>(channel % 2 == 0 ? point.x : point.y) : kGap;
}

void MakeCurves(const RecordStore& store, double from, double to, int buckets, unsigned channels, Curves* curves) {
  for (auto& curve : *curves) curve.clear();
  buckets = std::max(buckets, 1);
  if (store.IsEmpty() || !(from < to)) return;
  long long first = std::max(store.Find(from) - 1, store.First());
  const long long end = std::min(store.At(to) + 2, store.End());
  if (end - first <= static_cast<long long>(buckets) * kRecordsOfBucket) {
    AddRecords(store, first, end, channels, curves);
    return;
  }
  const double width = (to - from) / buckets;
  while (first < end) {
    const double edge = (std::floor(store.Seconds(first) / width) + 1) * width;
    const long long next = std::clamp(store.Find(edge), first + 1, end);
    if (next - first <= kRecordsOfBucket) {
      AddRecords(store, first, next, channels, curves);
    } else {
      AddBucket(store, first, next, channels, curves);
    }
    first = next;
  }
}

}  // namespace camview
