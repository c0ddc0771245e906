// The real camtool on null-modem pairs of COM ports.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/line_analysis.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "tests/support/files.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace kvtest {
namespace {

// A run of camtool with its outputs in files.
class Camtool {
 public:
  enum class Output { kWritten, kClosedPipe, kReadOnly };

  // `input` is a file for its standard input.
  explicit Camtool(const std::string& arguments, const std::string& input = "NUL", Output output = Output::kWritten) {
    const std::string number = std::to_string(++count_);
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE files[3];
    files[0] = CreateFileA(input.c_str(), GENERIC_READ, FILE_SHARE_READ, &inherited, OPEN_EXISTING, 0, nullptr);
    for (int i = 0; i < 2; ++i) {
      paths_[i] = TemporaryPath(i ? "camtool errors " : "camtool output ") + number;
      const DWORD access = i == 0 && output == Output::kReadOnly ? GENERIC_READ : GENERIC_WRITE;
      files[i + 1] = CreateFileA(paths_[i].c_str(), access, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    }
    if (HANDLE reader; output == Output::kClosedPipe) {
      CloseHandle(files[1]);
      CreatePipe(&reader, &files[1], &inherited, 0);
      CloseHandle(reader);
    }
    std::string command = "\"Z:" KV_CAMTOOL_EXE "\" " + arguments;
    STARTUPINFOA start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = files[0];
    start.hStdOutput = files[1];
    start.hStdError = files[2];
    PROCESS_INFORMATION info{};
    CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &info);
    for (HANDLE handle : {info.hThread, files[0], files[1], files[2]}) CloseHandle(handle);
    process_ = info.hProcess;
  }
  ~Camtool() {
    TerminateProcess(process_, 99);
    WaitForSingleObject(process_, 5000);
    CloseHandle(process_);
    for (const std::string& path : paths_) DeleteFileA(path.c_str());
  }
  Camtool(const Camtool&) = delete;
  Camtool& operator=(const Camtool&) = delete;

  // The exit code; -1 if the program does not end.
  int Wait() const {
    DWORD code = 0;
    if (WaitForSingleObject(process_, 30000) != WAIT_OBJECT_0 || !GetExitCodeProcess(process_, &code)) return -1;
    return static_cast<int>(code);
  }
  std::string Output() const { return BytesOf(paths_[0]); }
  std::string Said() const { return Output() + BytesOf(paths_[1]); }

 private:
  static inline int count_ = 0;
  std::string paths_[2];
  HANDLE process_ = nullptr;
};

bool Says(const std::string& text, const char* part) {
  return text.find(part) != text.npos;
}

// The rows' points, without the times.
std::string PointsOf(const std::string& csv) {
  std::string points;
  for (size_t at = csv.find('\n') + 1; at < csv.size(); at = csv.find('\n', at) + 1) {
    const size_t comma = csv.find(',', at);
    points += csv.substr(comma, csv.find('\n', at) + 1 - comma);
  }
  return points;
}

TEST(Camtool, ScansSilentBusySendingAndCameraPorts) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create four pairs of ports";
  SerialLine talking({5, 6}), line({7, 8}), silent({9, 10}), busy({11, 12});
  PlayedCamera camera(8), wrongRate(6), holder(11);
  std::jthread sender([&](const std::stop_token& stop) {
    const kv::CameraPoint points[kv::kPointCount] = {{100, 200}, {300, 400}, {1023, 1023}, {512, 384}};
    char record[kv::kRecordLength];
    kv::WriteRecord(points, record);
    const std::string garbled = camera::ReceiveAtRate(std::string_view(record, sizeof(record)), 9600, 38400);
    while (!stop.stop_requested()) {
      camera.SendRecord(points);
      wrongRate.Send(garbled);
      Sleep(20);
    }
  });
  const Camtool scan("scan"), record("record COM11 nothing.twr");
  EXPECT_EQ(camtool::kDone, scan.Wait());
  const std::string said = scan.Said();
  for (const char* text :
       {"COM5   sending", "wrong baud rate: records sent at 9600", "COM7   camera", "100,200 300,400 1023,1023 512,384",
        "COM9   silent", "COM11  busy           COM11 is in use by test_camtool.exe; close it",
        "COM13 to COM98  absent", "Tarnwick would take COM5, which is no camera, before it comes to the camera"}) {
    EXPECT_PRED2(Says, said, text);
  }
  EXPECT_EQ(camtool::kNoPort, record.Wait());
  EXPECT_PRED2(Says, record.Said(), "busy: COM11 is in use by test_camtool.exe; close it");
}

TEST(Camtool, RecordsReplaysAndExports) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create a pair of ports";
  SerialLine line({3, 4});
  const std::string first = TemporaryPath("camtool first é.twr"), second = TemporaryPath("camtool second.twr");
  const std::string csv = TemporaryPath("camtool points.csv");
  for (const std::string& path : {first, second, csv}) DeleteFileA(path.c_str());
  const auto holdsHeader = [](const auto& read) {
    return WaitUntil([&] { return read().size() >= camera::kRecordingHeaderBytes; }, std::chrono::milliseconds(20000));
  };
  {
    const Camtool record("record COM3 \"" + first + "\" --seconds 5");
    ASSERT_TRUE(holdsHeader([&] { return BytesOf(first); })) << record.Said();
    const Camtool simulate("simulate COM4 --seconds 2 --garbage 20 --truncate 30 --drop 10% --seed 5");
    EXPECT_EQ(camtool::kDone, simulate.Wait()) << simulate.Said();
    EXPECT_PRED2(Says, simulate.Said(), "(seed 5)");
    EXPECT_EQ(camtool::kDone, record.Wait()) << record.Said();
  }
  const std::string whole = BytesOf(first);
  const Camtool refused("record COM3 \"" + first + "\" --seconds 1");
  EXPECT_EQ(camtool::kFailed, refused.Wait());
  EXPECT_PRED2(Says, refused.Said(), "exists and was left as it is");
  const Camtool silent("record COM3 \"" + first + "\" --overwrite --seconds 0.2");
  EXPECT_EQ(camtool::kDone, silent.Wait());
  EXPECT_PRED2(Says, silent.Said(), "no data received");
  EXPECT_EQ(whole, BytesOf(first)) << "the old file is unchanged until a new one replaces it";
  {
    const Camtool record("record COM3 - --seconds 8");
    ASSERT_TRUE(holdsHeader([&] { return record.Output(); })) << record.Said();
    const Camtool replay("replay - COM4 --speed 2", first);
    EXPECT_EQ(camtool::kDone, replay.Wait()) << replay.Said();
    EXPECT_EQ(camtool::kDone, record.Wait()) << record.Said();
    WriteTo(second, record.Output());
  }
  const Camtool toFile("export \"" + first + "\" \"" + csv + "\"");
  EXPECT_EQ(camtool::kDone, toFile.Wait()) << toFile.Said();
  EXPECT_PRED2(Says, toFile.Said(), "malformed sections, ");
  const std::string points = PointsOf(BytesOf(csv));
  EXPECT_GT(std::ranges::count(points, '\n'), 50);
  const Camtool watch("watch --csv -", first), closed("watch \"" + first + "\"", "NUL", Camtool::Output::kClosedPipe);
  EXPECT_EQ(camtool::kDone, watch.Wait());
  EXPECT_EQ(BytesOf(csv), watch.Output());
  EXPECT_EQ(camtool::kDone, closed.Wait());
  EXPECT_EQ("", closed.Said());

  // Truncated within the chunk before the last, it gives all but the last rows.
  const std::string bytes = BytesOf(second);
  WriteTo(second, bytes.substr(0, bytes.size() - 40));
  const Camtool toOutput("export \"" + second + "\"");
  EXPECT_EQ(camtool::kDone, toOutput.Wait());
  EXPECT_PRED2(Says, toOutput.Said(), "is truncated");
  const std::string again = PointsOf(toOutput.Output());
  EXPECT_EQ(points.substr(0, 1000), again.substr(0, 1000)) << "the same points in the same order";
  for (const std::string& path : {first, second, csv}) DeleteFileA(path.c_str());
}

TEST(Camtool, OpensAPortForExactlyOneOfTwo) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create a pair of ports";
  SerialLine line({3, 4});
  for (int round = 0; round < 4; ++round) {
    const Camtool one("watch COM3 --seconds 1.5"), other("watch COM3 --seconds 1.5");
    const int first = one.Wait(), second = other.Wait();
    EXPECT_EQ(std::pair(camtool::kDone, camtool::kNoPort), std::pair(std::min(first, second), std::max(first, second)))
        << one.Said() << other.Said();
  }
}

TEST(Camtool, IgnoresWhatWaitedInAPortBeforeItWasOpened) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create a pair of ports";
  SerialLine line({3, 4});
  PlayedCamera camera(4);
  // More than the port itself keeps: the rest comes when it is opened.
  for (int i = 0; i < 500; ++i) camera.Send("0100,0200,0300,0400,1023,1023,0512,0384\r\n");
  const Camtool watch("watch COM3 --seconds 0.5");
  EXPECT_EQ(camtool::kDone, watch.Wait());
  EXPECT_LE(std::ranges::count(watch.Output(), '\n'), 50) << "those that arrive meanwhile are as many as that";
}

TEST(Camtool, WatchesAPortUntilDisconnected) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create a pair of ports";
  SerialLine line({3, 4});
  PlayedCamera camera(4);
  const Camtool watch("watch COM3 --json");
  const bool isShown = WaitUntil(
      [&] {
        camera.Send("0100,0200,0300,0400,1023,1023,0512,0384\r\n");
        return Says(watch.Output(), "\"points\":[[100,200],[300,400],null,[512,384]]}");
      },
      std::chrono::milliseconds(20000));
  EXPECT_TRUE(isShown) << watch.Said();
  line.Unplug();
  EXPECT_EQ(camtool::kFailed, watch.Wait());
  EXPECT_PRED2(Says, watch.Said(), "COM3 was disconnected");
}

TEST(Camtool, KeepsExistingFiles) {
  const std::string recording = TemporaryPath("camtool kept.twr"), link = TemporaryPath("camtool link.twr");
  const std::string csv = TemporaryPath("camtool kept.csv"), record = "0100,0200,0300,0400,1023,1023,0512,0384";
  // The last number of the second record includes closing bytes: export omits the row, which simulate could not read.
  const std::string bytes = camera::EncodeHeader({133801632000000000, 38400, 3}) +
                            camera::EncodeChunks(1, record + "\r\n" + record + "05") + camera::EncodeEnd(2);
  WriteTo(recording, bytes);
  WriteTo(csv, "old");
  DeleteFileA(link.c_str());
  ASSERT_TRUE(CreateHardLinkA(link.c_str(), recording.c_str(), nullptr));
  const std::pair<std::string, const char*> cases[] = {
      {recording, "is the file that is read"}, {link, "is the file that is read"}, {"NUL", "is a device"}};
  const auto toTarget = [&](const std::string& target) {
    return camera::Format("export \"%s\" \"%s\" --overwrite", recording.c_str(), target.c_str());
  };
  for (const auto& [target, reason] : cases) {
    const Camtool run(toTarget(target));
    EXPECT_EQ(camtool::kFailed, run.Wait()) << target;
    EXPECT_PRED2(Says, run.Said(), reason);
  }
  EXPECT_EQ(bytes, BytesOf(recording));
  {
    // Written, but not replaced at the end, because another program has the target open.
    const std::ifstream holder(csv);
    const Camtool run(toTarget(csv));
    EXPECT_EQ(camtool::kFailed, run.Wait());
    EXPECT_EQ("old", BytesOf(csv));
  }
  const std::tuple<std::string, const char*, const char*> views[] = {
      {toTarget(csv), "NUL", "2 records; no malformed sections; 1 record with invalid numbers ("},
      {"info \"" + recording + "\"", "NUL", "2025-01-01 00:00:00 UTC, COM3, 38400 baud"},
      {"info -", recording.c_str(), "1      100.0 %   100 to  100   200 to  200"},
      {"info --json -", recording.c_str(),
       "{\"seen\":0.000000},{\"seen\":1.000000,\"x\":{\"lowest\":512,\"highest\":512"}};
  for (const auto& [arguments, input, said] : views) {
    const Camtool run(arguments, input);
    EXPECT_EQ(camtool::kDone, run.Wait()) << arguments;
    EXPECT_PRED2(Says, run.Said(), said);
  }
  EXPECT_EQ("seconds,x1,y1,x2,y2,x3,y3,x4,y4\n0.000001,100,200,300,400,1023,1023,512,384\n", BytesOf(csv));
  WIN32_FIND_DATAA part;
  EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileA(TemporaryPath("camtool kept*.part").c_str(), &part));

  std::string other = bytes;
  other[12] = 2;
  const std::uint32_t checksum = camera::Crc32(std::string_view(other).substr(0, 36));
  for (int i = 0; i < 4; ++i) other[36 + i] = static_cast<char>(checksum >> (8 * i));
  const std::tuple<std::string, int, const char*> inputs[] = {
      {"", camtool::kEmpty, "is empty"},
      {other, camtool::kFailed, "format version 2; this camtool reads version 1"},
      {"x1,y1\n", camtool::kFailed, "is not a camtool recording"}};
  for (const auto& [content, code, reason] : inputs) {
    WriteTo(recording, content);
    const Camtool read("export \"" + recording + "\"");
    EXPECT_EQ(code, read.Wait());
    EXPECT_PRED2(Says, read.Said(), reason);
  }
  for (const std::string& path : {recording, link, csv}) DeleteFileA(path.c_str());
}

TEST(Camtool, CanBeStoppedWhileItsInputIsSilent) {
  const std::string whole =
      camera::EncodeHeader({133801632000000000, 38400, 3}) + camera::EncodeChunks(1, "0100,0200,0300,0400,") + "\x05";
  HANDLE before = GetStdHandle(STD_INPUT_HANDLE), stop = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  for (const size_t sent : {size_t{0}, size_t{20}, whole.size()}) {
    HANDLE input, pipe;
    ASSERT_TRUE(CreatePipe(&input, &pipe, nullptr, 0));
    DWORD written = 0;
    ASSERT_TRUE(sent == 0 || WriteFile(pipe, whole.data(), static_cast<DWORD>(sent), &written, nullptr));
    SetStdHandle(STD_INPUT_HANDLE, input);
    ResetEvent(stop);
    camera::RecordingFile recording;
    camera::Chunk chunk;
    recording.stop = stop;
    ULONGLONG stoppedMs = 0;
    const std::jthread stopper([&] {
      Sleep(100);
      stoppedMs = GetTickCount64();
      SetEvent(stop);
    });
    const bool isOpen = camera::OpenRecording("-", &recording);
    EXPECT_EQ(sent == whole.size(), isOpen);
    EXPECT_EQ(isOpen, camera::NextChunk(&recording, &chunk));
    EXPECT_FALSE(camera::NextChunk(&recording, &chunk));
    EXPECT_TRUE(recording.isStopped);
    EXPECT_GT(stoppedMs + 500, GetTickCount64());
    CloseHandle(pipe);
    CloseHandle(input);
  }
  SetStdHandle(STD_INPUT_HANDLE, before);
  CloseHandle(stop);
}

TEST(Camtool, TellsLossesAndSilenceApartAndListsThem) {
  // 93 records a second for 10 s; one is missing, and nothing for 2 s. Point 4 is not seen, point 1 for a while.
  std::string bytes = camera::EncodeHeader({133801632000000000, 38400, 3});
  for (int i = 0; i < 930; ++i) {
    const bool isSilent = i >= 400 && i < 586;
    if (isSilent || i == 100) continue;
    const char* const first = i >= 700 && i < 793 ? "1023,1023" : i % 2 ? "0100,0200" : "0102,0200";
    const auto microseconds = static_cast<std::uint64_t>(1000000 + i * 1000000LL / 93);
    bytes += camera::EncodeChunks(
        microseconds, (i == 300 ? "noise" : "") + std::string(first) + ",0300,0400,0512,0384,1023,1023\r\n");
  }
  const std::string recording = TemporaryPath("camtool figures.twr");
  WriteTo(recording, bytes + camera::EncodeEnd(11500000));
  const std::pair<const char*, std::vector<const char*>> outputs[] = {
      {"",
       {"  records    743, 64.6 a second, 30468 bytes\r\n",
        "  lost       about 1 of 744 records, 0.1 %, at about 93.00 records/s\r\n",
        "  silent     3 times, 3.522 s, 30.6 % of the time; longest 2.011 s, at 5.290 s\r\n", "peak-to-peak"}},
      {"--rate 93", {"  lost       1 of 744 records, 0.1 %, at 93.00 records/s"}},
      {"--events --json",
       {"\"silences\":3,\"silentSeconds\":3.5",
        "\"lost\":{\"basis\":\"estimated\",\"records\":1,\"atLeast\":1,\"atMost\":1,\"rate\":93.00",
        "\"omittedEvents\":0,\"events\":[{\"seconds\":0.000000,\"duration\":1.000000"}},
      {"--events",
       {"        2.065       0.022  lost, 1 record\r\n", "        1.000      10.500  not seen, point 4\r\n"}},
      {"--csv",
       {"seconds,duration,event,amount,point\r\n0.000000,1.000000,silence,,\r\n",
        "\r\n4.225806,0.000000,malformed,5,\r\n", "\r\n8.526881,1.000000,not seen,,1\r\n"}}};
  for (const auto& [options, lines] : outputs) {
    const Camtool info("info \"" + recording + "\" " + options);
    EXPECT_EQ(camtool::kDone, info.Wait()) << options;
    for (const char* said : lines) EXPECT_PRED2(Says, info.Output(), said);
  }
  const Camtool unwritten("info \"" + recording + "\"", "NUL", Camtool::Output::kReadOnly);
  EXPECT_EQ(camtool::kFailed, unwritten.Wait());
  EXPECT_PRED2(Says, unwritten.Said(), "cannot write to standard output");
  // What was not measured has no figure.
  for (const int records : {0, 1}) {
    const std::string chunk = camera::EncodeChunks(0, "0100,0200,0300,0400,0512,0384,1023,1023\r\n");
    WriteTo(recording, bytes.substr(0, camera::kRecordingHeaderBytes) + (records > 0 ? chunk : ""));
    const Camtool info("info \"" + recording + "\""), json("info --json \"" + recording + "\"");
    EXPECT_EQ(camtool::kDone, info.Wait() + json.Wait());
    EXPECT_PRED2(Says, info.Output(), records > 0 ? " 200 to  200     -,    -    -, -  " : "\r\n  1            -\r\n");
    EXPECT_PRED2(Says, json.Output(), records > 0 ? ",\"records\":1,\"recordsPerSecond\":null," : "{\"seen\":null}");
  }
  DeleteFileA(recording.c_str());
}

TEST(Camtool, RejectsInvalidCommands) {
  const std::tuple<const char*, int, const char*> cases[] = {
      {"", camtool::kUsageError, "camtool COMMAND --help"},
      {"nonsense", camtool::kUsageError, "unknown command \"nonsense\"; run \"camtool --help\""},
      {"record COM4", camtool::kUsageError, "missing argument FILE"},
      {"simulate COM1000", camtool::kUsageError, "\"COM1000\" is not a port"},
      {"replay - COM4 --loop", camtool::kUsageError, "requires a file"},
      {"record COM4 nothing.twr --forward com4", camtool::kUsageError, "requires another port"},
      {"record COM77 nothing.twr", camtool::kNoPort, "COM77 does not exist"},
      {"export nothing.twr", camtool::kFailed, "cannot read \"nothing.twr\""},
      {"info -", camtool::kEmpty, "is empty"},
      {"info com3", camtool::kUsageError, "com3 is a port, not a recording"},
      {"info .", camtool::kFailed, "cannot read \".\": it is a folder"},
      {"info nothing.twr --rate 95", camtool::kUsageError, "--rate requires a number from 2 to 94.6"},
      {"record COM4 nothing.twr --size 10", camtool::kUsageError, "--size requires at least 113 bytes"},
      {"simulate --help", camtool::kDone, "records a second (default 93)"},
      {"--version", camtool::kDone, "camtool 0."},
      {"record --version", camtool::kDone, "camtool 0."},
      {"record COM4 nothing.twr --size K", camtool::kUsageError, "a number of bytes"}};
  for (const auto& [arguments, code, said] : cases) {
    const Camtool run(arguments);
    EXPECT_EQ(code, run.Wait()) << arguments;
    EXPECT_PRED2(Says, run.Said(), said);
  }
  EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA("nothing.twr"));
}

}  // namespace
}  // namespace kvtest
