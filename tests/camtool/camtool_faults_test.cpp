// The command line, the faults and the paths of camtool.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "app/camera_point.h"
#include "camera/record_stream.h"
#include "camtool/arguments.h"
#include "camtool/faults.h"
#include "camtool/point_paths.h"

namespace camtool {
namespace {

constexpr char kRecord[] = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";

TEST(CamtoolArguments, AreReadByATableAndRejectedWithAReason) {
  double number = 0, size = 0;
  bool flag = false;
  std::string text, error;
  Trigger trigger;
  const Option options[] = {{"--number", "N", "", NumberOption{&number, 1, 10}},
                            {"--size", "BYTES", "", SizeOption{&size}},
                            {"--flag", nullptr, "", &flag},
                            {"--text", "TEXT", "", &text},
                            {"--often", "HOW-OFTEN", "", &trigger}};
  std::vector<std::string> operands;
  const auto parse = [&](const std::vector<std::string>& arguments) {
    operands.clear();
    return ParseArguments(arguments, options, "PORT FILE [MORE]", &operands, &error);
  };
  ASSERT_TRUE(parse({"-", "--number", "2.5", "--size=2K", "--flag", "--text", "--x", "--often", "5%", "--", "--b"}))
      << error;
  EXPECT_EQ((std::vector<std::string>{"-", "--b"}), operands);
  EXPECT_EQ(2.5, number);
  EXPECT_EQ(2048, size);
  EXPECT_TRUE(flag);
  EXPECT_EQ("--x", text);
  EXPECT_EQ(0.05, trigger.amount);
  const std::pair<std::vector<std::string>, const char*> bad[] = {{{"a"}, "missing argument FILE"},
                                                                  {{"a", "b", "c", "d"}, "unexpected argument \"d\""},
                                                                  {{"a", "-h"}, "unknown option \"-h\""},
                                                                  {{"a", "--number"}, "missing value of --number"},
                                                                  {{"a", "--number", "11"}, "from 1 to 10, not \"11\""},
                                                                  {{"a", "--number", "0x5"}, "0x5"},
                                                                  {{"a", "--size", "K"}, "bytes"},
                                                                  {{"a", "--flag=1"}, "no value"},
                                                                  {{"a", "--often", "150%"}, "150%"},
                                                                  {{"a", "--often", "2.5"}, "2.5"}};
  for (const auto& [arguments, reason] : bad) {
    EXPECT_FALSE(parse(arguments)) << reason;
    EXPECT_NE(std::string::npos, error.find(reason)) << error;
  }
  EXPECT_EQ(98, ParsePort("com98"));
  for (const char* port : {"", "COM", "COM0", "COM1000", "COM1x", "LPT1", "COM+1"})
    EXPECT_EQ(0, ParsePort(port)) << port;
}

std::string Play(const FaultPlan& plan, int records) {
  FaultInjector injector = MakeFaultInjector(plan);
  std::string sent;
  for (int i = 0; i < records; ++i) sent += InjectFaults(&injector, i * 0.01, kRecord).bytes;
  return sent;
}

TEST(CamtoolFaults, DoWhatTheirNamesSayAsOftenAsAskedForAndRepeatWithTheirSeed) {
  FaultPlan all;
  EXPECT_EQ(std::string(kRecord) + kRecord, Play(all, 2)) << "no faults, no change";
  for (Trigger& trigger : all.triggers) trigger = {Trigger::kChance, 0.1};
  FaultPlan other = all;
  other.seed = 2;
  EXPECT_EQ(Play(all, 500), Play(all, 500));
  EXPECT_NE(Play(all, 500), Play(other, 500));

  const auto after = [](Fault fault, Trigger trigger, int records) {
    FaultPlan plan;
    plan.triggers[fault] = trigger;
    return Play(plan, records);
  };
  const Trigger every2nd{Trigger::kEveryNth, 2};
  const std::string record = kRecord;
  EXPECT_EQ(record + record, after(kDropFault, every2nd, 4));
  EXPECT_EQ(record + record + record, after(kDuplicateFault, every2nd, 2));
  EXPECT_EQ(record + record.substr(0, 39) + record, after(kMergeFault, every2nd, 3));
  const std::string cut = after(kCutFault, every2nd, 2);
  EXPECT_TRUE(cut.size() > 41 && cut.size() < 82 && cut == (record + record).substr(0, cut.size()));
  const std::string garbage = after(kGarbageFault, every2nd, 2);
  EXPECT_TRUE(garbage.size() > 82 && garbage.size() <= 82 + 64 && garbage.ends_with(record));
  EXPECT_EQ(50u * 41, after(kCorruptFault, {Trigger::kEveryNth, 1}, 50).size());
  EXPECT_EQ(99u * 41, after(kDropFault, {Trigger::kPeriod, 0.9}, 100).size()) << "once within the first second";
  EXPECT_NEAR(1400, static_cast<double>(after(kDropFault, {Trigger::kChance, 0.3}, 2000).size()) / 41, 70);

  FaultPlan plan;
  plan.triggers[kPauseFault] = plan.triggers[kHangUpFault] = plan.triggers[kSlowFault] = every2nd;
  plan.stretchSeconds = 0.015;
  FaultInjector injector = MakeFaultInjector(plan);
  InjectFaults(&injector, 0, kRecord);
  const FaultStep second = InjectFaults(&injector, 0.01, kRecord), third = InjectFaults(&injector, 0.02, kRecord);
  EXPECT_EQ(plan.pauseSeconds, second.pauseSeconds);
  EXPECT_EQ(plan.hangUpSeconds, second.hangUpSeconds);
  EXPECT_EQ(kSlowPace, third.pace) << "the stretch goes on";
  EXPECT_EQ(0, third.pauseSeconds);
}

TEST(CamtoolPaths, BuiltInCurvesStaySmoothInsideTheField) {
  bool hidden[kv::kPointCount] = {}, seen[kv::kPointCount] = {};
  kv::CameraPoint last[kv::kPointCount];
  PointsAt(0, last);
  for (double seconds = 0.01; seconds < 60; seconds += 0.01) {
    kv::CameraPoint points[kv::kPointCount];
    PointsAt(seconds, points);
    for (int i = 0; i < kv::kPointCount; ++i) {
      const bool gone = points[i].x == kv::kNoPoint;
      ASSERT_EQ(gone, points[i].y == kv::kNoPoint);
      hidden[i] |= gone;
      seen[i] |= !gone && hidden[i];
      if (gone) continue;
      ASSERT_TRUE(points[i].x >= 0 && points[i].x < kv::kNoPoint && points[i].y >= 0 && points[i].y < kv::kFieldHeight);
      if (last[i].x == kv::kNoPoint) continue;
      ASSERT_LE(std::labs(points[i].x - last[i].x) + std::labs(points[i].y - last[i].y), 8) << seconds;
    }
    std::ranges::copy(points, last);
  }
  for (int i = 0; i < kv::kPointCount; ++i) EXPECT_TRUE(hidden[i] && seen[i]) << i;
}

TEST(CamtoolPaths, AreReadFromWhatExportAndSpreadsheetsWrite) {
  PointPath path;
  std::string error, csv = camera::CsvHeader();
  camera::AppendCsvRow({.seconds = 1.5, .points = {{1, 2}, {3, 4}, {1023, 1023}, {7, 8}}}, &csv);
  EXPECT_TRUE(csv.ends_with("\n1.500000,1,2,3,4,1023,1023,7,8\n")) << csv;
  ASSERT_TRUE(ParsePath(csv + "2.5,9,9\r\n\n3.5,,,5,6\n", &path, &error)) << error;
  ASSERT_EQ(3u, path.rows.size());
  EXPECT_TRUE(path.hasTimes);
  kv::CameraPoint points[kv::kPointCount];
  const auto xAt = [&](double seconds) {
    PointsOnPath(path, seconds, 0, points);
    return points[0].x;
  };
  EXPECT_EQ(1, xAt(0.9));
  EXPECT_EQ(8, points[3].y);
  EXPECT_EQ(9, xAt(1.1));
  EXPECT_EQ(kv::kNoPoint, points[1].x) << "a pair that is not there";
  EXPECT_EQ(kv::kNoPoint, xAt(2.9)) << "an empty pair";
  EXPECT_EQ(1, xAt(3.1)) << "from the beginning";

  PointPath perRecord;
  ASSERT_TRUE(ParsePath("\xEF\xBB\xBFx;y\n10;20\n30;40", &perRecord, &error)) << error;
  PointsOnPath(perRecord, 99, 3, points);
  EXPECT_EQ(30, points[0].x);

  const std::pair<const char*, const char*> bad[] = {{"x,y\n", "no points"},
                                                     {"1,2\n3,b\n", "line 2: \"b\" is not a number"},
                                                     {"1,2\n3,4,5\n", "line 2"},
                                                     {"1,1024\n", "within 0 to 1023"},
                                                     {"1,-1\n", "within 0 to 1023"},
                                                     {"2,1,1\n1,1,1\n", "before"},
                                                     {"1,2,3,4,5,6,7,8,9,10\n", "more than four"}};
  for (const auto& [text, reason] : bad) {
    PointPath unused;
    EXPECT_FALSE(ParsePath(text, &unused, &error)) << text;
    EXPECT_NE(std::string::npos, error.find(reason)) << error;
  }
}

}  // namespace
}  // namespace camtool
