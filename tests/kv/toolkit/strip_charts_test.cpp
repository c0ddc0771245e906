// The typed functions for strip chart and horizon, with the real controls.
#include "kv/toolkit/strip_charts.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "kv/controls/horizon/horizon.h"
#include "kv/controls/strip_chart/control.h"
#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/framework/control_class.h"
#include "kv/framework/object_control.h"
#include "kv/toolkit/horizons.h"
#include "tests/support/control_test.h"
#include "tests/support/files.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

constexpr int kId = 31, kHorizonId = 32, kNone = 33;

class TypedCharts : public kvtest::ControlTest<RegisterLineRecorderClass> {
 protected:
  HWND Create() { return kvtest::CreateControl(parent_, kStripChartClass, "", 0, {0, 0, 200, 150}, kId); }
};

TEST_F(TypedCharts, ReadSamplesBackAndSaveThem) {
  HWND chart = Create();
  SetStripChartChannel(parent_, kId, 0, {.name = L"Wärme, \"Öl\"", .unit = L"°C"});
  for (const double time : {1.0, 2.0, 3.0}) AppendStripChartValue(parent_, kId, 0, time, time / 4);
  for (const double time : {2.0, 2.0, 3.5}) AppendStripChartValue(parent_, kId, 5, time, time < 3 ? time : NAN);
  std::vector<StripSample> samples;
  const StripTimeRange range{2, 3};
  EXPECT_TRUE(GetStripChartSamples(parent_, kId, 0, &range, &samples));
  ASSERT_EQ(2u, samples.size());
  EXPECT_EQ(std::tuple(2, 0.5, 3, 0.75),
            std::tuple(samples[0].time, samples[0].value, samples[1].time, samples[1].value));
  EXPECT_FALSE(GetStripChartSamples(parent_, kId, 8, nullptr, &samples));
  StripReadBack wild{0, 10, 3, reinterpret_cast<StripSample*>(16)};
  EXPECT_FALSE(kvtest::Send(chart, kStripReadBack | kCommandRead, &wild));

  const std::filesystem::path path = std::filesystem::temp_directory_path() / L"strip chart.csv";
  ASSERT_TRUE(SaveStripChartCsv(parent_, kId, path.c_str(), nullptr));
  EXPECT_EQ(
      "s,\"W\xC3\xA4rme, \"\"\xC3\x96l\"\" (\xC2\xB0"
      "C)\",6\r\n1,0.25,\r\n2,0.5,2\r\n2,,2\r\n3,0.75,\r\n3.5,,\r\n",
      kvtest::BytesOf(path));
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_FALSE(SaveStripChartCsv(parent_, kId, path.c_str(), &range));
  EXPECT_NE(0u, GetLastError());
  EXPECT_EQ(0u, kvtest::BytesOf(path).find("s,"));
  SetFileAttributesW(path.c_str(), 0);
  DeleteFileW(path.c_str());

  double time = 2;
  EXPECT_TRUE(AddStripChartEvent(parent_, kId, 2, L"Ventil geöffnet") && SetStripChartCursorB(parent_, kId, &time));
  time = 0;
  EXPECT_TRUE(GetStripChartCursorB(parent_, kId, &time));
  EXPECT_EQ(2, time);
  EXPECT_TRUE(AddStripChartEvent(parent_, kId, 0, nullptr) && SetStripChartCursorB(parent_, kId, nullptr));
  EXPECT_FALSE(GetStripChartCursorB(parent_, kId, &time) || AddStripChartEvent(parent_, kId, NAN, L""));
  const StripSource none{.version = kStripVersion};
  EXPECT_FALSE(SetStripChartSource(parent_, kId, 0, &none));
}

DWORD Count(HWND chart, WPARAM channel) {
  return kvtest::Read<DWORD>(chart, kStripCount, channel);
}

TEST_F(TypedCharts, TakeSamplesFromOtherThreadsInOrder) {
  HWND chart = Create();
  const auto onThread = [](auto function) { std::thread(function).join(); };  // nobody handles messages meanwhile
  onThread([&] {
    for (int i = 0; i < 1000; ++i) {
      EXPECT_TRUE(AppendStripChartValue(parent_, kId, i % 3, i, i * 2.0));
    }
    EXPECT_FALSE(AppendStripChartValue(parent_, kId, 0, 998, 1));
    EXPECT_FALSE(AppendStripChartValue(parent_, kId, 8, 2000, 1) || AppendStripChartValue(parent_, kNone, 0, 2000, 1));
  });
  MSG posted;
  EXPECT_TRUE(PeekMessageA(&posted, chart, kControlCommand, kControlCommand, PM_REMOVE));
  EXPECT_FALSE(PeekMessageA(&posted, chart, kControlCommand, kControlCommand, PM_REMOVE)) << "one for all samples";
  EXPECT_TRUE(AppendStripChartValue(parent_, kId, 0, 1000, 7));  // after all that were queued
  EXPECT_EQ(std::tuple(335, 333, 333), std::tuple(Count(chart, 0), Count(chart, 1), Count(chart, 2)));
  onThread([&] { EXPECT_FALSE(AppendStripChartValue(parent_, kId, 0, 999.5, 1)); });
  // Overtaken by those of another thread: the others are appended.
  const StripSample late[] = {{6, 1}, {12, 1}}, between{10, 1};
  ASSERT_TRUE(QueueStripSamples(chart, 3, late) && AppendSamples(ObjectOf<StripChart>(chart)->model, 3, {&between, 1}));
  EXPECT_EQ(2u, Count(chart, 3));

  DWORD accepted = 0, rejected = 0;
  onThread([&] {
    const std::vector<StripSample> batch(100, {5000, 1});
    while (AppendStripChartSamples(parent_, kId, 4, batch)) accepted += 100;
  });
  EXPECT_EQ(65500u, accepted);
  EXPECT_EQ(accepted, Count(chart, 4));
  EXPECT_TRUE(GetStripChartRejected(parent_, kId, &rejected));
  EXPECT_EQ(103u, rejected);
  kvtest::PumpMessages();
  ClearStripChart(parent_, kId);
  onThread([&] { EXPECT_TRUE(AppendStripChartValue(parent_, kId, 4, 0, 1)); });
  // Shown without a command.
  EXPECT_TRUE(kvtest::WaitUntil([&] { return kvtest::ReadAccessible(chart).value == L"5 1.0000"; }));
}

// Four channels from two threads while charts are created and destroyed at any moment.
TEST_F(TypedCharts, SurviveClosingWhileThreadsAppend) {
  std::atomic<bool> ends = false;
  std::atomic<long> accepted = 0;
  // Not looked up by the threads: Wine 10's server may hang when they do while windows are created and destroyed.
  std::atomic<HWND> newest = nullptr;
  const auto append = [&](int channel) {
    while (!ends) {
      const double now = StripChartNow();
      const StripSample sample{now, now};
      for (int i = channel; i < channel + 2; ++i) accepted += QueueStripSamples(newest, i, {&sample, 1});
      Sleep(1);
    }
  };
  std::thread one(append, 0), other(append, 2);
  std::mt19937 random(3);
  for (int round = 0; round < 25; ++round) {
    HWND chart = Create();
    newest = chart;
    const DWORD until = GetTickCount() + random() % 60;
    while (GetTickCount() < until) kvtest::PumpMessages();
    DestroyWindow(chart);
  }
  ends = true;
  one.join();
  other.join();
  EXPECT_LT(100, accepted);
}

TEST_F(TypedCharts, DescribeAppendFreezeAndRead) {
  HWND chart = Create();
  EXPECT_TRUE(SetStripChartChannel(parent_, kId, 2, {.name = std::wstring(30, L'ä').c_str(), .unit = L"°C"}));
  auto info = kvtest::Read<StripChannel>(chart, kStripChannel, 2);
  EXPECT_EQ(46u, std::string(info.name).size());  // whole two-byte characters in 47 bytes
  const COLORREF color = info.color;
  EXPECT_TRUE(SetStripChartChannel(parent_, kId, 2, {.name = L"Heat", .unit = L"°C"}));
  EXPECT_TRUE(ShowStripChartChannel(parent_, kId, 2, FALSE));
  info = kvtest::Read<StripChannel>(chart, kStripChannel, 2);
  EXPECT_EQ(std::tuple(color, 0u), std::tuple(info.color, info.state));

  EXPECT_TRUE(SetStripChartCapacity(parent_, kId, 3));
  EXPECT_TRUE(SetStripChartView(parent_, kId, 100, 0, 0));
  for (const double time : {1.0, 2.0, 3.0, 4.0}) EXPECT_TRUE(AppendStripChartValue(parent_, kId, 2, time, time * 2));
  EXPECT_FALSE(AppendStripChartValue(parent_, kId, 2, 3.5, 1));
  EXPECT_FALSE(IsStripChartFrozen(parent_, kId));
  EXPECT_TRUE(FreezeStripChart(parent_, kId, TRUE) && IsStripChartFrozen(parent_, kId));
  StripStatistics statistics{};
  EXPECT_TRUE(GetStripChartStatistics(parent_, kId, 2, &statistics) && FreezeStripChart(parent_, kId, FALSE));
  EXPECT_EQ(std::tuple(3, 6), std::tuple(statistics.count, statistics.mean));  // the first was discarded
  for (const BOOL set : {TRUE, FALSE}) {
    EXPECT_TRUE(SetStripChartStyle(parent_, kId, kStripSweep | kStripNoLegend, set));
    const auto style = kvtest::Read<DWORD>(chart, kStripStyle);
    EXPECT_EQ(set ? kStripSweep | kStripNoLegend : 0, style & (kStripSweep | kStripNoLegend));
  }
  StripTimeRange times{}, selection{1, 2};
  EXPECT_TRUE(ShowStripChartTimes(parent_, kId, {2.5, 4.5}));
  EXPECT_TRUE(GetStripChartTimes(parent_, kId, &times));
  EXPECT_EQ(std::tuple(2.5, 4.5), std::tuple(times.from, times.to));
  EXPECT_TRUE(FollowStripChart(parent_, kId, 2) && GetStripChartTimes(parent_, kId, &times));
  EXPECT_EQ(std::tuple(2, 4), std::tuple(times.from, times.to));
  EXPECT_TRUE(SetStripChartAxisDigits(parent_, kId, 16));
  EXPECT_FALSE(SetStripChartAxisDigits(parent_, kId, 17));
  double cursor = 4;
  EXPECT_FALSE(GetStripChartCursor(parent_, kId, &cursor) || GetStripChartSelection(parent_, kId, &times));
  EXPECT_TRUE(SetStripChartCursor(parent_, kId, &cursor) && SetStripChartSelection(parent_, kId, &selection));
  cursor = 0;
  EXPECT_TRUE(GetStripChartCursor(parent_, kId, &cursor) && GetStripChartSelection(parent_, kId, &times));
  EXPECT_EQ(std::tuple(4, 1, 2), std::tuple(cursor, times.from, times.to));
  EXPECT_TRUE(SetStripChartSelection(parent_, kId, nullptr) && SetStripChartCursor(parent_, kId, nullptr));
  EXPECT_FALSE(GetStripChartCursor(parent_, kId, &cursor) || GetStripChartSelection(parent_, kId, &times));
  EXPECT_TRUE(ClearStripChart(parent_, kId));
  EXPECT_TRUE(AppendStripChartValue(parent_, kId, 2, 0, 1));  // a time before those that are gone
  EXPECT_FALSE(SetStripChartChannel(parent_, kId, 8, {.name = L"x"}) || SetStripChartCapacity(parent_, kId, 0) ||
               SetStripChartView(parent_, kNone, 1, 0, 0) || SetStripChartView(parent_, kId, NAN, 0, 0));

  RegisterHorizonClass(GetModuleHandleA(nullptr), TRUE);
  HWND horizon = kvtest::CreateControl(parent_, kHorizonClass, "", kHorizonTape, {0, 0, 90, 90}, kHorizonId);
  EXPECT_TRUE(SetHorizonAttitude(parent_, kHorizonId, {3, -4, 0, 90}, FALSE));
  EXPECT_EQ(L"+3.0°, -4.0°, 090°", kvtest::ReadAccessible(horizon).value);
  EXPECT_FALSE(SetHorizonAttitude(parent_, kHorizonId, {NAN}, FALSE) || SetHorizonAttitude(parent_, kId, {}, FALSE));
  EXPECT_TRUE(ClearHorizonAttitude(parent_, kHorizonId));
  EXPECT_EQ(L"", kvtest::ReadAccessible(horizon).value);
  DestroyWindow(horizon);
  RegisterHorizonClass(GetModuleHandleA(nullptr), FALSE);
}

}  // namespace
}  // namespace kv
