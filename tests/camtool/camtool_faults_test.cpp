// The command line, the faults and the paths of camtool.
#include <gtest/gtest.h>

#include <cstddef>
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

TEST(CamtoolArguments, AreReadByATableAndRefusedWithAReason) {
  double number = 0, size = 0;
  bool flag = false;
  std::string text;
  Trigger trigger;
  const Option options[] = {{"--number", "N", "", NumberOption{&number, 1, 10}},
                            {"--size", "BYTES", "", SizeOption{&size}},
                            {"--flag", nullptr, "", &flag},
                            {"--text", "TEXT", "", &text},
                            {"--often", "HOW-OFTEN", "", &trigger}};
  const auto parse = [&](const std::vector<std::string>& arguments, std::vector<std::string>* operands,
                         std::string* error) {
    operands->clear();
    return ParseArguments(arguments, options, {1, 2}, operands, error);
  };
  std::vector<std::string> operands;
  std::string error;
  ASSERT_TRUE(parse({"a", "--number", "2.5", "--size=2K", "--flag", "--text", "--x", "--often", "5%", "--", "--b"},
                    &operands, &error))
      << error;
  EXPECT_EQ((std::vector<std::string>{"a", "--b"}), operands);
  EXPECT_EQ(2.5, number);
  EXPECT_EQ(2048, size);
  EXPECT_TRUE(flag);
  EXPECT_EQ("--x", text);
  EXPECT_EQ(0.05, trigger.amount);
  const std::pair<std::vector<std::string>, const char*> bad[] = {{{}, "missing"},
                                                                  {{"a", "b", "c"}, "\"c\""},
                                                                  {{"a", "--nope"}, "--nope"},
                                                                  {{"a", "--number"}, "missing"},
                                                                  {{"a", "--number", "11"}, "from 1 to 10, not \"11\""},
                                                                  {{"a", "--number", "nan"}, "nan"},
                                                                  {{"a", "--number", "0x5"}, "0x5"},
                                                                  {{"a", "--size", "K"}, "bytes"},
                                                                  {{"a", "--flag=1"}, "no value"},
                                                                  {{"a", "--often", "150%"}, "150%"},
                                                                  {{"a", "--often", "2.5"}, "2.5"}};
  for (const auto& [arguments, reason] : bad) {
    EXPECT_FALSE(parse(arguments, &operands, &error)) << reason;
    EXPECT_NE(std::string::npos, error.find(reason)) << error;
  }
  EXPECT_EQ(98, ParsePort("com98"));
  for (const char* port : {"", "COM", "COM0", "COM1000", "COM1x", "COM-1", "LPT1", "COM+1"}) {
    EXPECT_EQ(0, ParsePort(port)) << port;
  }
}

std::string Play(const FaultPlan& plan, int records) {
  FaultInjector injector = MakeFaultInjector(plan);
  std::string sent;
  for (int i = 0; i < records; ++i) sent += InjectFaults(&injector, i * 0.01, kRecord).bytes;
  return sent;
}

TEST(CamtoolFaults, RepeatThemselvesWithTheirSeed) {
  FaultPlan plan;
  EXPECT_EQ(std::string(kRecord) + kRecord, Play(plan, 2)) << "no faults, no change";
  for (Trigger& trigger : plan.triggers) trigger = {Trigger::kChance, 0.1};
  EXPECT_EQ(Play(plan, 500), Play(plan, 500));
  FaultPlan other = plan;
  other.seed = 2;
  EXPECT_NE(Play(plan, 500), Play(other, 500));
}

TEST(CamtoolFaults, DoWhatTheirNamesSayAsOftenAsAskedFor) {
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
  const std::string corrupt = after(kCorruptFault, {Trigger::kEveryNth, 1}, 50);
  EXPECT_EQ(50u * 41, corrupt.size());
  EXPECT_EQ(99u * 41, after(kDropFault, {Trigger::kPeriod, 0.9}, 100).size()) << "once within the first second";
  const size_t left = after(kDropFault, {Trigger::kChance, 0.3}, 2000).size() / 41;
  EXPECT_NEAR(1400, static_cast<double>(left), 70);

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

TEST(CamtoolPaths, AreReadFromWhatExportAndSpreadsheetsWrite) {
  PointPath path;
  std::string error;
  std::string csv = camera::CsvHeader();
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
  ASSERT_TRUE(
      ParsePath("\xEF\xBB\xBF"
                "x;y\n10;20\n30;40",
                &perRecord, &error))
      << error;
  PointsOnPath(perRecord, 99, 3, points);
  EXPECT_EQ(30, points[0].x);

  const std::pair<const char*, const char*> bad[] = {{"", "no points"},
                                                     {"x,y\n", "no points"},
                                                     {"1,2\n3,b\n", "line 2: \"b\" is no number"},
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
