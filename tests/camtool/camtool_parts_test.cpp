// The pure parts of camtool: command line, faults, paths, recordings, record streams, and the evaluation of a scan.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/line_analysis.h"
#include "camera/port_scan.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/faults.h"
#include "camtool/point_paths.h"
#include "camtool/port_report.h"
#include "kv/toolkit/arguments.h"
#include "tests/support/read_recording.h"

namespace camtool {
namespace {

constexpr char kRecord[] = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";

TEST(CamtoolArguments, AreParsedByATableAndRejectedWithAReason) {
  double number = 0;
  bool flag = false;
  std::string text;
  kv::ArgumentError error;
  Trigger trigger;
  const kv::Option options[] = {{"--number", "N", "", kv::NumberOption{&number, 1, 10}},
                                {"--flag", nullptr, "", &flag},
                                {"--text", "TEXT", "", &text},
                                {"--often", "HOW-OFTEN", "", kv::ParsedBy<ParseTrigger>(&trigger, "a frequency")}};
  std::vector<std::string> operands;
  const auto parse = [&](const std::vector<std::string>& arguments) {
    operands.clear();
    return kv::ParseArguments(arguments, options, "PORT FILE [MORE]", &operands, &error);
  };
  ASSERT_TRUE(parse({"-", "--number", "2.5", "--flag", "--text", "--x", "--often", "5%", "--", "--b"})) << error.reason;
  EXPECT_EQ((std::vector<std::string>{"-", "--b"}), operands);
  EXPECT_EQ(2.5, number);
  EXPECT_TRUE(flag);
  EXPECT_EQ("--x", text);
  EXPECT_EQ(0.05, trigger.amount);
  const std::pair<std::vector<std::string>, const char*> bad[] = {{{"a"}, "missing argument FILE"},
                                                                  {{"a", "b", "c", "d"}, "unexpected argument \"d\""},
                                                                  {{"a", "-h"}, "unknown option \"-h\""},
                                                                  {{"a", "--number"}, "missing value of --number"},
                                                                  {{"a", "--number", "11"}, "from 1 to 10, not \"11\""},
                                                                  {{"a", "--number", "0x5"}, "0x5"},
                                                                  {{"a", "--flag=1"}, "no value"},
                                                                  {{"a", "--often", "150%"}, "150%"},
                                                                  {{"a", "--often", "2.5"}, "2.5"}};
  for (const auto& [arguments, reason] : bad) {
    EXPECT_FALSE(parse(arguments)) << reason;
    EXPECT_NE(std::string::npos, error.reason.find(reason)) << error.reason;
  }
  EXPECT_EQ(98, camera::ParsePort("com98"));
  for (const char* port : {"", "COM", "COM0", "COM1000", "COM1x", "LPT1", "COM+1"})
    EXPECT_EQ(0, camera::ParsePort(port)) << port;
}

std::string Play(const FaultPlan& plan, int records) {
  FaultInjector injector = MakeFaultInjector(plan);
  std::string sent;
  for (int i = 0; i < records; ++i) sent += InjectFaults(&injector, i * 0.01, kRecord).bytes;
  return sent;
}

TEST(CamtoolFaults, HaveTheirEffectAndFrequencyAndAreReproducible) {
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
  const std::string cut = after(kTruncateFault, every2nd, 2);
  EXPECT_TRUE(cut.size() > 41 && cut.size() < 82 && cut == (record + record).substr(0, cut.size()));
  const std::string garbage = after(kGarbageFault, every2nd, 2);
  EXPECT_TRUE(garbage.size() > 82 && garbage.size() <= 82 + 64 && garbage.ends_with(record));
  EXPECT_EQ(50u * 41, after(kCorruptFault, {Trigger::kEveryNth, 1}, 50).size());
  EXPECT_EQ(99u * 41, after(kDropFault, {Trigger::kPeriod, 0.9}, 100).size()) << "once within the first second";
  EXPECT_NEAR(1400, static_cast<double>(after(kDropFault, {Trigger::kChance, 0.3}, 2000).size()) / 41, 70);

  FaultPlan plan;
  plan.triggers[kPauseFault] = plan.triggers[kDisconnectFault] = plan.triggers[kSlowFault] = every2nd;
  plan.rateChangeSeconds = 0.015;
  FaultInjector injector = MakeFaultInjector(plan);
  InjectFaults(&injector, 0, kRecord);
  const FaultStep second = InjectFaults(&injector, 0.01, kRecord), third = InjectFaults(&injector, 0.02, kRecord);
  EXPECT_EQ(plan.pauseSeconds, second.pauseSeconds);
  EXPECT_EQ(plan.disconnectSeconds, second.disconnectSeconds);
  EXPECT_EQ(kSlowPace, third.pace) << "the section continues";
  EXPECT_EQ(0, third.pauseSeconds);
}

TEST(CamtoolPaths, BuiltInCurvesAreSmoothAndInsideTheField) {
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

TEST(CamtoolPaths, AreReadFromFilesOfExportAndSpreadsheets) {
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
  EXPECT_EQ(kv::kNoPoint, points[1].x) << "a missing pair";
  EXPECT_EQ(kv::kNoPoint, xAt(2.9)) << "an empty pair";
  EXPECT_EQ(1, xAt(3.1)) << "repeats from the beginning";

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

using kvtest::Read;
using kvtest::ReadAll;

constexpr size_t kChunkSize = sizeof(kRecord) - 1 + camera::kChunkOverhead;
constexpr size_t kChunkCount = 8;

std::string SmallRecording() {
  std::string file = camera::EncodeHeader({.startTime = 0x0123456789ABCDEF, .baudRate = 38400, .port = 3});
  for (size_t i = 0; i < kChunkCount; ++i) file += camera::EncodeChunks(std::uint64_t{i} * 10000, kRecord);
  return file + camera::EncodeEnd(123456);
}

TEST(CamtoolRecording, IsReadableWhenTruncatedAnywhere) {
  const std::string file = SmallRecording();
  const Read whole = ReadAll(file, 7);
  EXPECT_EQ(kChunkCount, whole.chunks);
  EXPECT_TRUE(whole.decoder.hasEnd);
  EXPECT_EQ(123456u, whole.decoder.endTime);
  EXPECT_EQ(0x0123456789ABCDEFu, whole.decoder.header.startTime);
  for (size_t size = 0; size < file.size(); ++size) {
    const Read cut = ReadAll(std::string_view(file).substr(0, size), 1000);
    const size_t body = size < camera::kRecordingHeaderBytes ? 0 : size - camera::kRecordingHeaderBytes;
    const size_t chunks = std::min(body / kChunkSize, kChunkCount);
    ASSERT_TRUE(cut.isRecording) << size;
    const size_t truncated = size < camera::kRecordingHeaderBytes ? size : body - chunks * kChunkSize;
    ASSERT_EQ(std::tuple(chunks, truncated, 0u, false),
              std::tuple(cut.chunks, cut.truncated, cut.decoder.damageCount, cut.decoder.hasEnd))
        << size;
  }
  EXPECT_FALSE(ReadAll("time,x1,y1\n", 1000).isRecording);
}

TEST(CamtoolRecording, LosesOnlyTheDamagedChunk) {
  const std::string file = SmallRecording();
  // Not the signature.
  for (size_t at = 8; at < camera::kRecordingHeaderBytes + kChunkCount * kChunkSize; ++at) {
    std::string damaged = file;
    damaged[at] ^= 0x20;
    const Read read = ReadAll(damaged, 100);
    ASSERT_EQ(std::tuple(at < camera::kRecordingHeaderBytes ? kChunkCount : kChunkCount - 1, 1u, true),
              std::tuple(read.chunks, read.decoder.damageCount, read.decoder.hasEnd))
        << at;
  }
  // An intact chunk with a wrong time, far in the future, must not invalidate the later ones.
  const Read jumped = ReadAll(
      camera::EncodeHeader({}) + camera::EncodeChunks(~std::uint64_t{0}, "?") + camera::EncodeChunks(5, kRecord), 100);
  EXPECT_EQ(kRecord, jumped.bytes);
  EXPECT_EQ(1u, jumped.decoder.damageCount);
  const std::string large(camera::kMaxChunkBytes * 2 + 5, 'x');
  EXPECT_EQ(large, ReadAll(camera::EncodeHeader({}) + camera::EncodeChunks(1, large), 100000).bytes);
}

// Decodes by the definition: at each place the whole checksum.
Read ReadPlainly(std::string_view file) {
  Read read;
  std::uint64_t time = 0;
  bool isSkipping = false;
  const auto number = [&](size_t at, int bytes) {
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) value |= std::uint64_t{static_cast<unsigned char>(file[at + i])} << (8 * i);
    return value;
  };
  const auto isChunkAt = [&](size_t at) {
    if (at + camera::kChunkOverhead > file.size()) return false;
    const auto size = static_cast<size_t>(number(at, 2));
    return (number(at + 2, 2) ^ 0xFFFF) == size && at + camera::kChunkOverhead + size <= file.size() &&
           camera::Crc32(file.substr(at, 12 + size)) == number(at + 12 + size, 4) && number(at + 4, 8) >= time;
  };
  for (size_t at = camera::kRecordingHeaderBytes; at < file.size();) {
    const bool isChunk = isChunkAt(at), hasHead = at + camera::kChunkOverhead <= file.size();
    const auto size = static_cast<size_t>(hasHead ? number(at, 2) : 0);
    const bool isHead = hasHead && (number(at + 2, 2) ^ 0xFFFF) == size && size <= camera::kMaxChunkBytes;
    size_t next = at + camera::kChunkOverhead + (isHead ? size : 0) > file.size() ? at : file.size() + 1;
    while (next < file.size() && !isChunkAt(next)) ++next;
    if (next == file.size()) {
      if (isSkipping) read.decoder.damagedBytes += file.size() - at;
      if (!isSkipping) read.truncated = file.size() - at;
      return read;
    }
    if (isChunk) {
      time = number(at + 4, 8);
      read.bytes += file.substr(at + 12, size);
    }
    read.decoder.damageCount += !isChunk && !isSkipping;
    read.decoder.damagedBytes += !isChunk;
    isSkipping = !isChunk;
    at += isChunk ? size + camera::kChunkOverhead : 1;
  }
  return read;
}

TEST(CamtoolRecording, IsReadTheSameAndInLinearTimeAmongFalseHeads) {
  std::mt19937 random(5);
  for (int round = 0; round < 40; ++round) {
    std::string file = camera::EncodeHeader({});
    for (unsigned i = 0; i < 300; ++i) {
      const std::string chunk = camera::EncodeChunks(i, std::string(random() % 50, static_cast<char>(random() % 7)));
      const std::string head =
          camera::EncodeChunks(0, std::string(random() % camera::kMaxChunkBytes + 1, 0)).substr(0, 4);
      for (unsigned heads = random() % 3 == 0 ? random() % 20 : 0; heads > 0; --heads) file += head;
      file += random() % 5 == 0 ? chunk.substr(0, chunk.size() - 1) : chunk;
    }
    const Read plain = ReadPlainly(file), read = ReadAll(file, 1 + random() % 5000);
    ASSERT_EQ(std::tuple(plain.bytes, plain.decoder.damageCount, plain.decoder.damagedBytes, plain.truncated),
              std::tuple(read.bytes, read.decoder.damageCount, read.decoder.damagedBytes, read.truncated))
        << round;
  }
  // Summing 4 KB at every fourth byte would take seconds.
  std::string heads = camera::EncodeHeader({});
  while (heads.size() < 1'000'000) heads += std::string_view("\x00\x10\xFF\xEF", 4);
  const double start = camera::Now();
  EXPECT_EQ(1u, ReadAll(heads, 65536).decoder.damageCount);
  EXPECT_LT(camera::Now() - start, 0.5);
}

TEST(CamtoolStream, FindsRecordsAndCountsBytesBetweenThem) {
  const std::string record = kRecord;
  const std::string stream = record.substr(30) + record + "garbage" + record + record.substr(0, 20) + "01x0" +
                             record.substr(4) + record.substr(0, 5);
  for (const size_t part : {size_t{1}, size_t{13}, stream.size()}) {
    camera::RecordStream found;
    std::vector<camera::FoundRecord> records;
    for (size_t at = 0; at < stream.size(); at += part) {
      camera::FeedStream(&found, static_cast<double>(at), std::string_view(stream).substr(at, part), &records);
    }
    camera::EndStream(&found);
    // The last record's first number is parsed as Tarnwick parses it.
    EXPECT_EQ(std::tuple(3u, 11, 2, 27, 1, 1, 384),
              std::tuple(records.size(), found.leadBytes, found.malformedSections, found.malformedBytes,
                         found.invalidRecords, found.last.points[0].x, found.last.points[3].y));
    EXPECT_EQ("garbage 0100,", found.sections[0].sample + " " + found.pending);
    EXPECT_NEAR(0.6, camera::WellFormedShare(found), 1e-9);
    if (part == 1) {
      EXPECT_EQ(51, records.front().seconds) << "the time of its last byte";
      EXPECT_EQ(1, found.longestGap);
      EXPECT_NEAR(2 / (found.lastSeconds - 51), camera::RecordRate(found), 1e-9);
    }
  }
  // As in Tarnwick, closing digits become part of the last number.
  for (const auto& [odd, y, isInRange] : {std::tuple{record.substr(0, 39) + "05", 38405L, false},
                                          std::tuple{record.substr(0, 35) + "001012", 1012L, true},
                                          std::tuple{record.substr(0, 35) + "-001\r\n", -1L, false}}) {
    camera::RecordStream found;
    camera::FeedStream(&found, 0, odd, nullptr);
    EXPECT_EQ(std::tuple(1, y, isInRange),
              std::tuple(found.invalidRecords, found.last.points[3].y, found.last.isInRange))
        << odd;
  }
  EXPECT_EQ("a\\x0D\\x00\\xFF\\x5C", camera::Printable(std::string_view("a\r\0\xFF\\", 5)));
}

TEST(CamtoolScan, EstimatesHowLikelyOnePressFindsTheCamera) {
  EXPECT_EQ(0, camera::DetectionProbability({}, 0, 1));
  constexpr double kAtOnce = 0, kByteSeconds = 10 / 38400.0;
  // The records' period, their bytes and the time of each on the line, and the probability that one press finds them.
  const std::tuple<const char*, double, int, double, double> cases[] = {
      {"no gap: the read is full", 1 / 90.0, 41, kByteSeconds, 1},
      {"the last 15 bytes of a record are too few", 0.05, 41, kByteSeconds, 1 - 15 * kByteSeconds / 0.05},
      {"found only when it comes within 250 ms", 1, 41, kAtOnce, 0.245},
      {"too few bytes", 0.02, 15, kAtOnce, 0},
      {"enough bytes", 0.02, 16, kAtOnce, 1}};
  for (const auto& [what, period, bytes, byteSeconds, probability] : cases) {
    std::vector<camera::Arrival> arrivals;
    for (int i = 1; i * period < 6; ++i) {
      for (int byte = 1; byte <= bytes; ++byte) arrivals.push_back({i * period + byte * byteSeconds, 1});
    }
    EXPECT_NEAR(probability, camera::DetectionProbability(arrivals, 0, 6), 0.01) << what;
  }
}

TEST(CamtoolScan, RecognizesAWrongBaudRateFromTheBytes) {
  std::mt19937 random(3);
  for (const int rate : camera::kUsualRates) {
    std::string received;
    while (received.size() < 200) {
      const unsigned x = random() % 1024, y = random() % 768;
      received += camera::ReceiveAtRate(camera::Format("%04u,%04u,0%03u,0400,1023,1023,%04u,0384\r\n", x, y, y, x),
                                        rate, 38400);
    }
    const std::vector<int> guesses = camera::GuessRates(received, 38400);
    EXPECT_NE(guesses.end(), std::ranges::find(guesses, rate)) << rate;
  }
  EXPECT_EQ(kRecord, camera::ReceiveAtRate(kRecord, 38400, 38400));
  // 'U' alternates 1 and 0: sent at half the receiver's rate, each bit is received twice, from the second half of the
  // start bit on.
  EXPECT_EQ("\x66\xE6", camera::ReceiveAtRate("U", 19200, 38400).substr(0, 2));
  std::string noise, text;
  while (noise.size() < 300) noise += static_cast<char>(random() >> 24);
  while (text.size() < 300) text += "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4*6A\r\n";
  EXPECT_TRUE(camera::GuessRates(noise, 38400).empty());
  EXPECT_TRUE(camera::GuessRates(text, 38400).empty());
  EXPECT_TRUE(camera::LooksLikeRecords(std::string_view(kRecord).substr(3, 30)));
  EXPECT_FALSE(camera::LooksLikeRecords("12,3,4,5,6,7,8,9,0"));
  EXPECT_FALSE(camera::LooksLikeText(noise));
}

TEST(CamtoolScan, ReportsTheStateOfEachPortAndTarnwicksChoice) {
  std::vector<camera::PortReport> reports(5);
  for (int i = 0; i < 5; ++i) {
    reports[i].number = i + 1;
    reports[i].isComplete = i != 1;
  }
  camera::PortReport &sender = reports[2], &camera = reports[4];
  sender.port.state = camera.port.state = camera::PortState::kOpened;
  sender.sample = "ab\xFF";
  sender.stream.bytes = 3;
  sender.guessedRates = {4800, 9600};
  for (const double seconds : {0.0, 0.01}) camera::FeedStream(&camera.stream, seconds, kRecord, nullptr);
  camera.detectionProbability = 0.8;
  const auto isSaid = [](const std::string& said, const char* text) { return said.find(text) != said.npos; };
  const std::string said = DescribePorts(reports, false);
  for (const char* text : {"COM1   absent", "COM2   hangs", "COM3   sending", "\"ab\\xFF\"", "4800 or 9600 baud",
                           "COM5   camera         100.0 records/s, 100.0 %", "longest gap 10 ms"}) {
    EXPECT_PRED2(isSaid, said, text);
  }
  EXPECT_PRED2(isSaid, DescribeVerdict(reports), "COM5; one press of its button finds the camera in 80 of 100");
}

}  // namespace
}  // namespace camtool
