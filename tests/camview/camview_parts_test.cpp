// The pure parts of camview: record store, record intake, curves, statistics and playback position.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/events.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/statistics.h"
#include "camview/distributions.h"
#include "camview/event_table.h"
#include "camview/record_store.h"
#include "camview/statistics.h"
#include "camview/view_time.h"

namespace camview {
namespace {

camera::FoundRecord RecordAt(double seconds, LONG x = 100) {
  camera::FoundRecord record{};
  record.seconds = seconds;
  record.isInRange = true;
  for (kv::CameraPoint& point : record.points) point = {x, x / 2};
  return record;
}

struct GivenRecord {
  camera::FoundRecord record;
  unsigned flags;
};

// Records of moving points, some of them not seen, with occasional pauses and records with invalid numbers.
std::vector<GivenRecord> Wander(int count) {
  std::mt19937 random(7);
  std::vector<GivenRecord> records;
  double seconds = 1;
  for (int i = 0; i < count; ++i) {
    seconds += random() % 997 == 0 ? 5 : 0.01 + (random() % 1000) * 1e-6;
    camera::FoundRecord record = RecordAt(seconds);
    for (kv::CameraPoint& point : record.points) {
      point = {static_cast<LONG>(random() % 1024), static_cast<LONG>(random() % 768)};
      if (random() % 8 == 0) point = {kv::kNoPoint, kv::kNoPoint};
    }
    record.isInRange = random() % 500 != 0;
    record.isInvalid = !record.isInRange || random() % 300 == 0;
    const bool isSilent = !records.empty() && seconds - records.back().record.seconds >= camera::kGapSeconds;
    records.push_back({record, (isSilent ? kAfterSilence : 0) | (random() % 400 == 0 ? kAfterDamagedBytes : 0)});
  }
  return records;
}

bool IsSeen(const GivenRecord& one, int point) {
  const kv::CameraPoint& p = one.record.points[point];
  return one.record.isInRange && p.x != kv::kNoPoint && p.y != kv::kNoPoint;
}

LONG ValueOf(const GivenRecord& one, int channel) {
  const kv::CameraPoint& point = one.record.points[channel / 2];
  return channel % 2 ? point.y : point.x;
}

TEST(CamviewStore, ReturnsRecordsAndFindsThemByTime) {
  const std::vector<GivenRecord> given = Wander(3 * kBlockRecords + 100);
  RecordStore store;
  EXPECT_EQ(-1, store.At(5));
  for (const GivenRecord& one : given) ASSERT_TRUE(store.Append(one.record, one.flags));
  ASSERT_EQ(static_cast<long long>(given.size()), store.End());
  for (size_t i = 0; i < given.size(); ++i) {
    const auto number = static_cast<long long>(i);
    const StoredRecord got = store.Get(number);
    ASSERT_NEAR(given[i].record.seconds, got.seconds, 0.6e-6);
    const unsigned own =
        (given[i].record.isInvalid ? kInvalidRecord : 0) | (given[i].record.isInRange ? 0 : kOutOfRange);
    ASSERT_EQ(given[i].flags | own, got.flags);
    for (int point = 0; point < kv::kPointCount; ++point) {
      const kv::CameraPoint none{kv::kNoPoint, kv::kNoPoint};
      const kv::CameraPoint expected = given[i].record.isInRange ? given[i].record.points[point] : none;
      ASSERT_EQ(std::pair(expected.x, expected.y), std::pair(got.points[point].x, got.points[point].y)) << i;
    }
    ASSERT_EQ(number, store.Find(got.seconds));
    ASSERT_EQ(number, store.At(got.seconds));
    ASSERT_EQ(number + 1, store.Find(got.seconds + 0.001));
    ASSERT_EQ(number - 1, store.At(got.seconds - 0.001));
  }
  EXPECT_EQ(0, store.Find(-1e300));
  EXPECT_EQ(store.End(), store.Find(1e300));
  EXPECT_EQ(store.End() - 1, store.At(1e300));
}

TEST(CamviewStore, KnowsTheExtremesOfAnyRange) {
  const std::vector<GivenRecord> given = Wander(3 * kBlockRecords + 100);
  RecordStore store;
  for (const GivenRecord& one : given) ASSERT_TRUE(store.Append(one.record, one.flags));
  std::mt19937 random(3);
  for (int i = 0; i < 200; ++i) {
    size_t from = random() % given.size(), to = random() % given.size();
    if (i % 8 == 1) from -= from % kBlockRecords;
    if (i % 2) to = from + random() % 200;  // within a few groups
    if (from > to) std::swap(from, to);
    to = std::min(to, given.size());
    for (int channel = 0; channel < kChannels; ++channel) {
      LONG lowest = INT16_MAX, highest = -1;
      for (size_t n = from; n < to; ++n) {
        if (!IsSeen(given[n], channel / 2)) continue;
        lowest = std::min(lowest, ValueOf(given[n], channel));
        highest = std::max(highest, ValueOf(given[n], channel));
      }
      const ChannelExtremes extremes =
          store.ExtremesOf(static_cast<long long>(from), static_cast<long long>(to), channel);
      ASSERT_EQ(std::pair(lowest, highest), std::pair(LONG{extremes.lowest}, LONG{extremes.highest}))
          << from << " to " << to;
    }
    std::int64_t shortest = INT64_MAX, longest = -1;
    for (size_t n = std::max<size_t>(from, 1); n < to; ++n) {
      const double before = store.Seconds(static_cast<long long>(n) - 1);
      const std::int64_t interval = std::llround((store.Seconds(static_cast<long long>(n)) - before) * 1e6);
      shortest = std::min(shortest, interval);
      longest = std::max(longest, interval);
    }
    const Intervals intervals = store.IntervalsOf(static_cast<long long>(from), static_cast<long long>(to));
    ASSERT_EQ(std::pair(shortest, longest), std::pair(intervals.shortest, intervals.longest)) << from << " to " << to;
  }
}

TEST(CamviewStore, FindsTheFirstOfEqualTimesAndSurvivesYears) {
  RecordStore store;
  for (int i = 0; i < 2 * kBlockRecords; ++i) store.Append(RecordAt(2), 0);
  store.Append(RecordAt(1, 5), 0);
  const double years = 10 * 366 * 86400.0;
  store.Append(RecordAt(years, 6), 0);
  EXPECT_EQ(0, store.Find(2));
  EXPECT_EQ(2LL * kBlockRecords, store.At(2)) << "a decreasing time is replaced by the previous one";
  EXPECT_EQ(years, store.Seconds(store.End() - 1));
  EXPECT_EQ(5, store.Get(store.End() - 2).points[0].x);
}

TEST(CamviewStore, DropsTheOldestBlockBeyondItsCapacity) {
  RecordStore store(2LL * kBlockRecords);
  for (int i = 0; i < 5 * kBlockRecords + 1; ++i) store.Append(RecordAt(i, i % 1000), 0);
  EXPECT_EQ(4LL * kBlockRecords, store.First());
  EXPECT_EQ(5LL * kBlockRecords + 1, store.End());
  EXPECT_EQ(store.First(), store.Find(0));
  EXPECT_EQ(-1, store.At(10));
  EXPECT_EQ(5 * kBlockRecords % 1000, store.Get(5LL * kBlockRecords).points[0].x);
  StoredRecord all[8];
  EXPECT_EQ(2u, store.Read(store.End() - 2, all));
  EXPECT_EQ(0u, store.Read(0, all));
}

TEST(CamviewStore, MergesSectionsWhenThereAreThousands) {
  RecordStore store;
  for (int i = 0; i < 50000; ++i) store.AddSection({SectionKind::kMalformed, i * 0.3, i * 0.3 + 0.1, 7});
  const auto& list = store.Sections(SectionKind::kMalformed);
  ASSERT_LE(list.size(), static_cast<size_t>(kMaxMergedSections));
  ASSERT_GE(list.size(), 100u);
  long long bytes = 0, count = 0;
  for (const Section& one : list) {
    bytes += one.bytes;
    count += one.count;
  }
  EXPECT_EQ(350000, bytes);
  EXPECT_EQ(50000, count);
  EXPECT_EQ(0, list.front().from);
  EXPECT_DOUBLE_EQ(49999 * 0.3 + 0.1, list.back().to);
  EXPECT_TRUE(store.Sections(SectionKind::kSilent).empty());
}

TEST(CamviewIntake, RecordsSilenceDamageAndMalformedBytes) {
  const std::string record = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";
  RecordIntake intake;
  IntakeBatch batch;
  AddBytes(&intake, 1, record.substr(20) + record, &batch);  // begins within a record, which is not a fault
  AddBytes(&intake, 1.01, record.substr(0, 25), &batch);
  AddBytes(&intake, 1.02, record + record, &batch);
  AddBytes(&intake, 1.5, record, &batch);
  AddDamage(&intake, 2.5, 60, &batch);
  AddBytes(&intake, 2.5, record.substr(0, 30), &batch);
  EndIntake(&intake, &batch);
  AddBytes(&intake, 3, record.substr(30) + record, &batch);  // two halves are not a record
  AddSilence(&intake, 3.4, &batch);                          // too short
  AddSilence(&intake, 8.7, &batch);
  AddSilence(&intake, 9, &batch);
  EXPECT_EQ((std::vector<unsigned char>{kAfterSilence, kAfterDamagedBytes, 0, kAfterPause,
                                        kAfterSilence | kAfterDamagedBytes}),
            batch.flags);
  RecordStore store;
  EXPECT_TRUE(StoreBatch(&batch, &store));
  EXPECT_EQ(5, store.End());
  EXPECT_TRUE(batch.records.empty() && batch.sections.empty());
  const auto list = [&](SectionKind kind) {
    std::vector<std::pair<double, double>> times;
    for (const Section& one : store.Sections(kind)) times.emplace_back(one.from, one.to);
    return times;
  };
  using Times = std::vector<std::pair<double, double>>;
  EXPECT_EQ((Times{{0, 1}, {2.5, 3}, {3, 9}}), list(SectionKind::kSilent)) << "continued by less than half a second";
  long long omitted = 0;
  EXPECT_EQ(9, store.Line().Silences().at(2).to);
  const auto isListed = [](const camera::Event& event) {
    return event.kind == camera::EventKind::kSilence && event.from == 3 && event.to == 9;
  };
  EXPECT_TRUE(std::ranges::any_of(store.Events(9, &omitted), isListed));
  EXPECT_EQ((Times{{1.01, 1.02}, {3, 3}}), list(SectionKind::kMalformed));
  EXPECT_EQ((Times{{1.5, 2.5}}), list(SectionKind::kDamaged));
  EXPECT_EQ(25, store.Sections(SectionKind::kMalformed)[0].bytes);
}

TEST(CamviewEvents, HaveOneCurrentEvent) {
  RecordStore store;
  for (int i = 0; i < 100; ++i) store.Append({.seconds = i * 0.1, .isInRange = true}, 0);
  for (const double from : {1.0, 2.0, 4.0}) store.AddSection({SectionKind::kMalformed, from, from + 0.5, 9});
  store.AddSection({SectionKind::kDamaged, 2, 3, 9});
  EventTable table;
  table.Update(1, &store, 10);
  ASSERT_EQ(4u, table.Events().size());
  EXPECT_EQ(std::nullopt, table.Current(0.5));
  EXPECT_EQ(std::nullopt, table.Next(0.5, false));
  EXPECT_EQ(0u, table.Next(0.5, true));
  EXPECT_EQ(0u, table.Next(1.7, false)) << "to the beginning of the current one";
  // Both of two that begin at once are reached.
  table.GoTo(1);
  EXPECT_EQ(2u, table.Next(2, true));
  table.GoTo(2);
  EXPECT_EQ(1u, table.Next(2, false));
  table.GoTo(1);
  EXPECT_EQ(0u, table.Next(2, false));
  EXPECT_EQ(3u, table.Current(9));
  EXPECT_EQ(std::nullopt, table.Next(9, true));
  // It remains the current one while others are added.
  const unsigned version = table.Version();
  store.AddSection({SectionKind::kSilent, 0.2, 0.8});
  table.Update(1, &store, 11);
  EXPECT_EQ(2u, table.Current(2));
  EXPECT_NE(version, table.Version());
  table.Update(2, &store, 11);
  EXPECT_EQ(3u, table.Current(2)) << "of another source";
}

TEST(CamviewStatistics, EqualAPlainComputation) {
  const std::vector<GivenRecord> given = Wander(10000);
  RecordStore store;
  for (const GivenRecord& one : given) store.Append(one.record, one.flags);
  const double from = given[1000].record.seconds, to = given[9000].record.seconds;
  const SelectionStatistics statistics = ComputeStatistics(store, from, to);
  EXPECT_EQ(8000, statistics.line.records);
  EXPECT_NEAR(8000 / (to - from), statistics.line.recordsPerSecond, 1e-6);
  for (int point = 0; point < kv::kPointCount; ++point) {
    double seen = 0, records = 0, sum = 0, squares = 0;
    for (size_t i = 1000; i < 9000; ++i) {
      const auto y = static_cast<double>(given[i].record.points[point].y), one = IsSeen(given[i], point) ? 1.0 : 0.0;
      records += given[i].record.isInRange;
      seen += one;
      sum += one * y;
      squares += one * y * y;
    }
    const double mean = sum / seen;
    const camera::PointSummary& summary = statistics.sums.points[point];
    EXPECT_NEAR(seen / records, camera::SeenShare(statistics.sums, point), 1e-12);
    EXPECT_NEAR(mean, camera::Mean(summary.y, summary.seen), 1e-9);
    EXPECT_NEAR(std::sqrt((squares - sum * mean) / (seen - 1)), camera::Deviation(summary.y, summary.seen), 1e-9);
  }
  EXPECT_EQ(0, ComputeStatistics(store, given.back().record.seconds + 1, 1e300).line.records);
  EXPECT_TRUE(camera::PercentOf(1e-4) == 0.1 && camera::PercentOf(0.9999) == 99.9 && camera::PercentOf(1) == 100);
}

TEST(CamviewStatistics, AddUpAndFollowTheGivenRate) {
  RecordStore store;
  std::mt19937 random(1);
  double last = 0;
  for (int i = 0; i < 30000; ++i) {
    const double seconds = i / 90.0;
    const bool isAfterSilence = seconds - last >= camera::kGapSeconds;
    if (random() % 20 == 0 || (i % 5000 < 90 && i > 0)) continue;
    if (isAfterSilence) store.AddSection({SectionKind::kSilent, last, seconds});
    store.Append(RecordAt(seconds), isAfterSilence ? kAfterSilence : 0);
    last = seconds;
  }
  store.FinishLine();
  const double end = last + 0.001;
  const SelectionStatistics whole = ComputeStatistics(store, 0, end);
  EXPECT_EQ(6, whole.line.silences);
  EXPECT_NEAR(6, whole.line.silentSeconds, 0.5);
  EXPECT_NEAR(30000 * 0.05, static_cast<double>(whole.line.lost), 90);
  for (int round = 0; round < 50; ++round) {
    const bool isAtRecord = round % 2 == 1;
    const double cut = isAtRecord ? store.Seconds(random() % store.End()) : end * (random() % 100000) / 1e5;
    SelectionStatistics sum = ComputeStatistics(store, 0, cut);
    const SelectionStatistics rest = ComputeStatistics(store, cut, end);
    AddSums(rest.sums, &sum.sums);
    EXPECT_EQ(whole.line.lost, sum.line.lost + rest.line.lost);
    EXPECT_NEAR(whole.line.silentSeconds, sum.line.silentSeconds + rest.line.silentSeconds, 1e-6);
    EXPECT_EQ(whole.sums.records, sum.sums.records);
    EXPECT_EQ(whole.sums.points[0].x.sum, sum.sums.points[0].x.sum);
  }
  store.SetRate(45);
  EXPECT_GT(0, ComputeStatistics(store, 0, end).line.lost) << "more records than that";
  store.SetRate(90);
  EXPECT_EQ(whole.line.lost, ComputeStatistics(store, 0, end).line.lost);
}

// Of a range that moves as a user or a live port moves it, counted in parts, while old records are dropped.
TEST(CamviewDistributions, EqualAPlainCount) {
  const std::vector<GivenRecord> given = Wander(100'000);
  RecordStore store(10LL * kBlockRecords);
  size_t added = 0;
  Distributions distributions;
  std::mt19937 random(5);
  long long first = 0, end = 0;
  for (int round = 0; round < 25; ++round) {
    while (added < std::min<size_t>(given.size(), (round + 1) * 4000)) {
      store.Append(given[added].record, given[added].flags);
      ++added;
    }
    const auto length = static_cast<unsigned>(store.End() - store.First());
    first = round % 3 ? first + random() % 6000 : random() % 2 ? 0 : store.First() + random() % length;
    end = round % 3 ? end + random() % 9000 : std::max(first, store.First()) + random() % length;
    const long long most = 1 + random() % 20'000;
    for (int i = 0; i < 3 && random() % 4 == 0; ++i) distributions.Count(store, first - 999, end + 999, most);
    while (!distributions.Count(store, first, end, most)) {
    }
    const auto from = static_cast<size_t>(std::max(first, store.First()));
    const auto to = static_cast<size_t>(std::min(end, store.End()));
    for (int point = 0; point < kv::kPointCount; ++point) {
      std::vector<DWORD> plain(1024 * 1024);
      long long seen = 0, sum = 0;
      for (size_t i = from; i < to; ++i) {
        if (!IsSeen(given[i], point)) continue;
        const kv::CameraPoint& place = given[i].record.points[point];
        ++plain[static_cast<size_t>(place.y * 1024 + place.x)];
        ++seen;
        sum += place.y;
      }
      CountGrid grid = distributions.PlacesOf(point);
      const GridFigures figures = FiguresOf(grid), ofY = FiguresOf(HistogramOf(grid, 1));
      ASSERT_EQ(std::pair(seen, sum), std::pair(figures.count, figures.y.sum)) << first << " to " << end;
      ASSERT_EQ(std::pair(seen, sum), std::pair(ofY.count, ofY.x.sum));
      ASSERT_EQ(figures.y.squares, ofY.x.squares);
      ASSERT_EQ(seen, FiguresOf(Binned(HistogramOf(grid, 0), 7)).count);
      size_t differences = 0;
      for (LONG row = 0; row < grid.height; ++row) {
        const DWORD* expected = plain.data() + (grid.top + row) * 1024 + grid.left;
        for (LONG column = 0; column < grid.width; ++column) differences += expected[column] != grid.At(column, row);
      }
      ASSERT_EQ(0u, differences);
    }
  }
}

TEST(CamviewPlayback, FollowsAClockAndStopsAtTheEnd) {
  ViewTime playback{.begin = 1, .end = 11, .position = 1};
  Advance(&playback, 1000);
  Play(&playback);
  Advance(&playback, 1002);
  EXPECT_EQ(3, playback.position);
  SetSpeed(&playback, 1000);
  EXPECT_EQ(kFastest, playback.speed);
  SetSpeed(&playback, 2);
  Advance(&playback, 1001);
  EXPECT_EQ(3, playback.position) << "a decreasing clock has no effect";
  Advance(&playback, 1003);
  EXPECT_EQ(7, playback.position);
  Advance(&playback, 2000);
  EXPECT_EQ(11, playback.position);
  EXPECT_FALSE(playback.isPlaying);
  Play(&playback);
  EXPECT_EQ(1, playback.position);
  Seek(&playback, 99);
  EXPECT_EQ(11, playback.position);

  RecordStore store;
  for (const double seconds : {2.0, 4.0, 6.0}) store.Append(RecordAt(seconds), 0);
  const std::pair<double, std::pair<int, double>> steps[] = {{1, {1, 2}},  {2, {1, 4}},  {3, {1, 4}},
                                                             {3, {-1, 2}}, {4, {-1, 2}}, {2, {-1, 2}},
                                                             {9, {1, 6}},  {5, {-2, 2}}, {5, {-1, 4}}};
  for (const auto& [position, step] : steps) {
    Seek(&playback, position);
    Step(&playback, store, step.first);
    EXPECT_EQ(step.second, playback.position) << position << " by " << step.first;
  }
}

TEST(CamviewTime, ShowsTheLastSecondsOrAllOfWhatIsFollowed) {
  ViewTime time;
  Restart(&time, {0, 3}, true);
  EXPECT_EQ((TimeRange{0, 10}), time.shown);
  Grow(&time, {0, 100});
  EXPECT_EQ((TimeRange{90, 100}), time.shown);
  ShowSeconds(&time, 60);
  EXPECT_EQ((TimeRange{40, 100}), time.shown);
  ShowSeconds(&time, 0);
  int steps = 0;
  for (double end = 100, shown = time.shown.to; end < 200; end += 0.05, shown = time.shown.to) {
    Grow(&time, {0, end});
    EXPECT_TRUE(time.shown.from == 0 && time.shown.to >= end && time.shown.to < end * 1.11);
    steps += time.shown.to != shown;
  }
  EXPECT_NEAR(7, steps, 1) << "each draws the charts anew";
  Freeze(&time, true);
  ShowSeconds(&time, 10);
  Freeze(&time, false);
  EXPECT_EQ(10, time.shown.Length());
  // A recording that turns out to grow is followed only from its end.
  Restart(&time, {0, 50}, false);
  SetLive(&time, true);
  EXPECT_TRUE(time.isFrozen && !time.IsFollowing());
  Seek(&time, 49.95);
  EXPECT_TRUE(time.IsFollowing()) << "it may have grown since the user has seen its end";
  Seek(&time, 0);
  SetLive(&time, false);
  Play(&time);
  SetLive(&time, true);
  Advance(&time, time.clock + 1);
  Grow(&time, {0, 60});
  EXPECT_EQ(1, time.position);
  Advance(&time, time.clock + 100);
  Grow(&time, {0, 70});
  EXPECT_EQ(70, time.position);
  SetLive(&time, false);
  EXPECT_EQ((TimeRange{0, 70}), time.shown);
  time.hovered = 35;
  ShowByUser(&time, {20, 40});
  EXPECT_EQ(30, time.hovered) << "another time is under the pointer";
  ShowRange(&time, {-5, 5});
  EXPECT_EQ((TimeRange{0, 10}), time.shown);
  Restart(&time, {0, 0}, false);
  EXPECT_EQ((TimeRange{0, 11}), time.shown) << "nothing is open";
}

TEST(CamviewTime, IsParsedAndFormatted) {
  const std::pair<const char*, double> times[] = {{"75.2", 75.2},     {"1:15", 75},   {" 1:02:03,5 ", 3723.5},
                                                  {"100:00", 6000.0}, {"0:00", 0},    {".5", 0.5},
                                                  {"", -1},           {"1:60", -1},   {"1:2:3:4", -1},
                                                  {"-1", -1},         {"1.5:00", -1}, {"1e5", -1},
                                                  {"1:", -1},         {".", -1},      {"1 2", -1},
                                                  {"1:60:00", -1},    {"0x5", -1},    {"1.2.3", -1}};
  for (const auto& [text, expected] : times) {
    double seconds = -1;
    EXPECT_EQ(expected >= 0, ParseTime(text, &seconds)) << text;
    EXPECT_DOUBLE_EQ(expected, seconds) << text;
  }
  const std::pair<const char*, TimeRange> ranges[] = {{"1:10 - 1:25,5", {70, 85.5}},
                                                      {"5\xE2\x80\x93"
                                                       "7",
                                                       {5, 7}},
                                                      {" 1.5..2.5 ", {1.5, 2.5}},
                                                      {"1:10 + 15", {70, 85}},
                                                      {"7-5", {7, 5}},
                                                      {"5", {}},
                                                      {"5 -", {}},
                                                      {"-5", {}},
                                                      {"1-2-3", {}},
                                                      {"+5", {}}};
  for (const auto& [text, expected] : ranges) {
    TimeRange range;
    EXPECT_EQ(expected != TimeRange{}, ParseTimeRange(text, &range)) << text;
    EXPECT_EQ(expected, range) << text;
  }
  EXPECT_EQ("0:00.000", FormatTime(0, 3));
  EXPECT_EQ("1:15.2", FormatTime(75.2, 1));
  EXPECT_EQ("1:02:03", FormatTime(3723.4, 0));
  EXPECT_EQ("1:00:00.00", FormatTime(3599.999, 2)) << "rounding carries into all fields";
}

}  // namespace
}  // namespace camview
