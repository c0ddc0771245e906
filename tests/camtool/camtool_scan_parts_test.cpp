// What camtool's scan concludes from what it hears.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camtool/line_analysis.h"
#include "camtool/port_report.h"

namespace camtool {
namespace {

constexpr char kRecord[] = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";

// `perSecond` records, each of whose 41 bytes takes its time on the line.
std::vector<Arrival> BytewiseRecords(double perSecond, int seconds) {
  std::vector<Arrival> arrivals;
  for (int i = 0; i < seconds * perSecond; ++i) {
    for (int byte = 1; byte <= 41; ++byte) arrivals.push_back({i / perSecond + byte * 10 / 38400.0, 1});
  }
  return arrivals;
}

TEST(CamtoolScan, EstimatesHowLikelyOnePressFindsTheCamera) {
  EXPECT_EQ(0, PressChance({}, 0, 1));
  EXPECT_NEAR(1, PressChance(BytewiseRecords(90, 2), 0, 2), 1e-9) << "no gap: the read is full";
  // Of 50 ms the last 15 bytes of a record, 3.9 ms, are too few.
  EXPECT_NEAR(1 - 15 * 10 / 38400.0 / 0.05, PressChance(BytewiseRecords(20, 2), 0, 2), 0.01);
  std::vector<Arrival> rare, small, enough;
  for (int i = 1; i <= 5; ++i) rare.push_back({i * 1.0, 41});
  for (int i = 1; i <= 99; ++i) {
    small.push_back({i * 0.02, 15});
    enough.push_back({i * 0.02, 16});
  }
  EXPECT_NEAR(0.245, PressChance(rare, 0, 6), 0.001) << "heard only when it comes within 250 ms";
  EXPECT_EQ(0, PressChance(small, 0, 2));
  EXPECT_NEAR(1, PressChance(enough, 0, 2), 1e-9);
}

TEST(CamtoolScan, RecognisesAWrongBaudRateByItsBytes) {
  std::mt19937 random(3);
  for (const int rate : kUsualRates) {
    std::string heard;
    while (heard.size() < 200) {
      char record[42];
      std::snprintf(record, sizeof(record), "%04u,%04u,0%03u,0400,1023,1023,%04u,0384\r\n", unsigned(random() % 1024),
                    unsigned(random() % 768), unsigned(random() % 1000), unsigned(random() % 1024));
      heard += Mishear(record, rate, 38400);
    }
    const std::vector<int> guesses = GuessRates(heard, 38400);
    EXPECT_NE(guesses.end(), std::ranges::find(guesses, rate)) << rate;
  }
  EXPECT_EQ(kRecord, Mishear(kRecord, 38400, 38400));
  // 'U' is 1 and 0 in turn: at half the receiver's rate each bit is heard twice, from the second half of the start bit
  // on.
  EXPECT_EQ("\x66\xE6", Mishear("U", 19200, 38400).substr(0, 2));
  std::string noise, text;
  while (noise.size() < 300) noise += static_cast<char>(random() >> 24);
  while (text.size() < 300) text += "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4*6A\r\n";
  EXPECT_TRUE(GuessRates(noise, 38400).empty());
  EXPECT_TRUE(GuessRates(text, 38400).empty());
  EXPECT_TRUE(LooksLikeRecords(std::string_view(kRecord).substr(3, 30)));
  EXPECT_FALSE(LooksLikeRecords("12,3,4,5,6,7,8,9,0"));
  EXPECT_FALSE(LooksLikeText(noise));
}

TEST(CamtoolScan, TellsWhatEachPortIsAndWhichOneTarnwickTakes) {
  std::vector<PortReport> reports(5);
  for (int i = 0; i < 5; ++i) {
    reports[i].number = i + 1;
    reports[i].hasAnswered = true;
  }
  const auto isSaid = [](const std::string& said, const char* text) { return said.find(text) != said.npos; };
  EXPECT_EQ("COM1 to COM5  absent\n", DescribePorts(reports, false));
  EXPECT_PRED2(isSaid, DescribeVerdict(reports), "no port");
  reports[0].port.state = camera::PortState::kBusy;
  reports[1].hasAnswered = false;
  PortReport& talker = reports[2];
  talker.port.state = camera::PortState::kOpened;
  talker.sample = "ab\xFF";
  talker.stream.bytes = 3;
  talker.guessedRates = {4800, 9600};
  PortReport& camera = reports[4];
  camera.port.state = camera::PortState::kOpened;
  camera::FeedStream(&camera.stream, 0, kRecord, nullptr);
  camera::FeedStream(&camera.stream, 0.01, kRecord, nullptr);
  camera.pressChance = 0.8;
  const std::string said = DescribePorts(reports, false);
  for (const char* text : {"COM1   busy", "close it", "COM2   hangs", "COM3   sending", "\"ab\\xFF\"",
                           "4800 or 9600 baud", "COM4   absent", "COM5   camera         100.0 records/s, 100.0 %",
                           "longest gap 10 ms", "100,200 300,400 1023,1023 512,384"}) {
    EXPECT_PRED2(isSaid, said, text);
  }
  EXPECT_PRED2(isSaid, DescribeVerdict(reports), "COM5; one press of its button finds the camera in 80 of 100");
  talker.pressChance = 0.5;
  EXPECT_PRED2(isSaid, DescribeVerdict(reports), "COM3, which is no camera, before it comes to the camera");
}

}  // namespace
}  // namespace camtool
