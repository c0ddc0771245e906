// The real camtool on pairs of COM ports.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <ios>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>

#include "app/camera_point.h"
#include "app/camera_record.h"
#include "camera/ports.h"
#include "camera/recording.h"
#include "camtool/commands.h"
#include "camtool/line_analysis.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace kvtest {
namespace {

std::string ReadFileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFileText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string TemporaryFile(const char* name) {
  char folder[MAX_PATH];
  GetTempPathA(sizeof(folder), folder);
  return std::string(folder) + name;
}

// A run of camtool, its outputs in files.
class Camtool {
 public:
  explicit Camtool(const std::string& arguments) {
    const std::string number = std::to_string(++count_);
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    HANDLE files[2];
    for (int i = 0; i < 2; ++i) {
      paths_[i] = TemporaryFile(i ? "camtool errors " : "camtool output ") + number;
      files[i] = CreateFileA(paths_[i].c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    }
    std::string command = "\"Z:" KV_CAMTOOL_EXE "\" " + arguments;
    STARTUPINFOA start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = files[0];
    start.hStdError = files[1];
    PROCESS_INFORMATION info{};
    CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &info);
    for (HANDLE handle : {info.hThread, files[0], files[1]}) CloseHandle(handle);
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

  // The exit code; -1 if it does not end.
  int Wait() const {
    DWORD code = 0;
    if (WaitForSingleObject(process_, 30000) != WAIT_OBJECT_0 || !GetExitCodeProcess(process_, &code)) return -1;
    return static_cast<int>(code);
  }
  std::string Output() const { return ReadFileText(paths_[0]); }
  std::string Said() const { return Output() + ReadFileText(paths_[1]); }

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

TEST(Camtool, ScansSilentBusyTalkingAndCameraPorts) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "four pairs of ports cannot be made here";
  SerialLine talking({5, 6}), line({7, 8}), silent({9, 10}), busy({11, 12});
  PlayedCamera camera(8), wrongRate(6), holder(11);
  std::atomic<bool> stop{false};
  std::thread sender([&] {
    const kv::CameraPoint points[kv::kPointCount] = {{100, 200}, {300, 400}, {1023, 1023}, {512, 384}};
    char record[kv::kRecordLength];
    kv::WriteRecord(points, record);
    const std::string misheard = camtool::Mishear(std::string_view(record, sizeof(record)), 9600, 38400);
    while (!stop) {
      camera.SendRecord(points);
      wrongRate.Send(misheard);
      Sleep(20);
    }
  });
  const Camtool scan("scan");
  const int code = scan.Wait();
  stop = true;
  sender.join();
  const std::string said = scan.Said();
  EXPECT_EQ(camtool::kDone, code);
  EXPECT_PRED2(Says, said, "COM5   talks");
  EXPECT_PRED2(Says, said, "wrong baud rate: records sent at 9600");
  EXPECT_PRED2(Says, said, "COM7   camera");
  EXPECT_PRED2(Says, said, "100,200 300,400 1023,1023 512,384");
  EXPECT_PRED2(Says, said, "COM9   silent");
  EXPECT_PRED2(Says, said, "COM11  busy       COM11 is in use by test_camtool.exe; close it");
  EXPECT_PRED2(Says, said, "COM13 to COM98  absent");
  EXPECT_PRED2(Says, said, "Tarnwick would take COM5, which is no camera, before it comes to the camera");
}

TEST(Camtool, RecordsReplaysAndExports) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "no pair of ports can be made here";
  SerialLine line({3, 4});
  const std::string first = TemporaryFile("camtool first é.twr"), second = TemporaryFile("camtool second.twr");
  const std::string csv = TemporaryFile("camtool points.csv");
  for (const std::string& path : {first, second, csv}) DeleteFileA(path.c_str());
  const auto waitForBytes = [](const std::string& path) {
    return WaitUntil([&] { return ReadFileText(path).size() >= camera::kRecordingHeaderBytes; },
                             std::chrono::milliseconds(20000));
  };
  {
    const Camtool record("record COM3 \"" + first + "\" --seconds 5");
    ASSERT_TRUE(waitForBytes(first)) << record.Said();
    const Camtool simulate("simulate COM4 --seconds 2 --garbage 20 --cut 30 --drop 10% --seed 5");
    EXPECT_EQ(camtool::kDone, simulate.Wait()) << simulate.Said();
    EXPECT_PRED2(Says, simulate.Said(), "(seed 5)");
    EXPECT_EQ(camtool::kDone, record.Wait()) << record.Said();
  }
  {
    const Camtool refused("record COM3 \"" + first + "\" --seconds 1");
    EXPECT_EQ(camtool::kFailed, refused.Wait());
    EXPECT_PRED2(Says, refused.Said(), "exists and was left as it is");
    const std::string whole = ReadFileText(first);
    const Camtool silent("record COM3 \"" + first + "\" --overwrite --seconds 0.2");
    EXPECT_EQ(camtool::kDone, silent.Wait());
    EXPECT_PRED2(Says, silent.Said(), "no data received");
    EXPECT_EQ(whole, ReadFileText(first)) << "what is replaced stays until there is something in its place";
    const Camtool record("record COM3 \"" + second + "\" --seconds 8");
    ASSERT_TRUE(waitForBytes(second)) << record.Said();
    const Camtool replay("replay \"" + first + "\" COM4 --speed 2");
    EXPECT_EQ(camtool::kDone, replay.Wait()) << replay.Said();
    EXPECT_EQ(camtool::kDone, record.Wait()) << record.Said();
  }
  const Camtool toFile("export \"" + first + "\" \"" + csv + "\"");
  EXPECT_EQ(camtool::kDone, toFile.Wait()) << toFile.Said();
  EXPECT_PRED2(Says, toFile.Said(), "malformed stretches, ");
  const std::string points = PointsOf(ReadFileText(csv));
  EXPECT_GT(std::ranges::count(points, '\n'), 50);

  // Cut off within its last chunk but one, it gives all rows but the last ones.
  const std::string bytes = ReadFileText(second);
  std::ofstream(second, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size() - 40));
  const Camtool toOutput("export \"" + second + "\"");
  EXPECT_EQ(camtool::kDone, toOutput.Wait());
  EXPECT_PRED2(Says, toOutput.Said(), "was cut off");
  const std::string again = PointsOf(toOutput.Output());
  EXPECT_EQ(points.substr(0, 1000), again.substr(0, 1000)) << "the same points in the same order";
  for (const std::string& path : {first, second, csv}) DeleteFileA(path.c_str());
}

TEST(Camtool, HasAPortForItselfAlone) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "no pair of ports can be made here";
  const SerialLine line({3, 4});
  camera::Port mine, other;
  EXPECT_EQ(camera::PortState::kOpened, camera::OpenPort(3, {}, &mine).state);
  EXPECT_EQ(camera::PortState::kBusy, camera::OpenPort(3, {}, &other).state) << "who looks for no holder, too";
  const Camtool record("record COM3 nothing.twr"), circle("record COM4 nothing.twr --forward com4");
  EXPECT_EQ(camtool::kNoPort, record.Wait());
  EXPECT_PRED2(Says, record.Said(), "busy: COM3 is in use by test_camtool.exe; close it");
  EXPECT_EQ(camtool::kUsageError, circle.Wait());
}

TEST(Camtool, LosesNoFileThatExists) {
  const std::string recording = TemporaryFile("camtool kept.twr"), link = TemporaryFile("camtool link.twr");
  const std::string csv = TemporaryFile("camtool kept.csv"), record = "0100,0200,0300,0400,1023,1023,0512,0384";
  // The last number of the second record runs on into its closing bytes: no row that simulate could not read.
  const std::string bytes =
      camera::EncodeHeader({}) + camera::EncodeChunks(1, record + "\r\n" + record + "05") + camera::EncodeEnd(2);
  WriteFileText(recording, bytes);
  WriteFileText(csv, "old");
  DeleteFileA(link.c_str());
  ASSERT_TRUE(CreateHardLinkA(link.c_str(), recording.c_str(), nullptr));
  const std::pair<std::string, const char*> cases[] = {
      {recording, "is the file that is read"}, {link, "is the file that is read"}, {"NUL", "is a device"}};
  for (const auto& [target, reason] : cases) {
    const Camtool run("export \"" + recording + "\" \"" + target + "\" --overwrite");
    EXPECT_EQ(camtool::kFailed, run.Wait()) << target;
    EXPECT_PRED2(Says, run.Said(), reason);
  }
  EXPECT_EQ(bytes, ReadFileText(recording));
  const std::string toCsv = "export \"" + recording + "\" \"" + csv + "\" --overwrite";
  {
    // Written, but not replaced at the end, since somebody has it open.
    const std::ifstream holder(csv);
    const Camtool run(toCsv);
    EXPECT_EQ(camtool::kFailed, run.Wait());
    EXPECT_EQ("old", ReadFileText(csv));
  }
  const Camtool run(toCsv);
  EXPECT_EQ(camtool::kDone, run.Wait()) << run.Said();
  EXPECT_PRED2(Says, run.Said(), "2 records; no malformed stretches; 1 odd");
  EXPECT_EQ("seconds,x1,y1,x2,y2,x3,y3,x4,y4\n0.000001,100,200,300,400,1023,1023,512,384\n", ReadFileText(csv));
  WIN32_FIND_DATAA part;
  EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileA(TemporaryFile("camtool kept*.part").c_str(), &part));

  std::string other = bytes;
  other[12] = 2;
  const std::uint32_t checksum = camera::Crc32(std::string_view(other).substr(0, 36));
  for (int i = 0; i < 4; ++i) other[36 + i] = static_cast<char>(checksum >> (8 * i));
  const std::tuple<std::string, int, const char*> inputs[] = {
      {"", camtool::kEmpty, "is empty"},
      {other, camtool::kFailed, "format version 2; this camtool reads version 1"},
      {"x1,y1\n", camtool::kFailed, "is not a camtool recording"}};
  for (const auto& [content, code, reason] : inputs) {
    WriteFileText(recording, content);
    const Camtool read("export \"" + recording + "\"");
    EXPECT_EQ(code, read.Wait());
    EXPECT_PRED2(Says, read.Said(), reason);
  }
  for (const std::string& path : {recording, link, csv}) DeleteFileA(path.c_str());
}

TEST(Camtool, RefusesWhatItCannotDo) {
  const std::pair<const char*, int> cases[] = {{"", camtool::kUsageError},
                                               {"nonsense", camtool::kUsageError},
                                               {"simulate COM1000", camtool::kUsageError},
                                               {"simulate COM4 --rate fast", camtool::kUsageError},
                                               {"simulate COM77", camtool::kNoPort},
                                               {"record COM77 nothing.twr", camtool::kNoPort},
                                               {"export nothing.twr", camtool::kFailed},
                                               {"scan --help", camtool::kDone}};
  for (const auto& [arguments, code] : cases) {
    const Camtool run(arguments);
    EXPECT_EQ(code, run.Wait()) << arguments;
    EXPECT_NE("", run.Said());
  }
  EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA("nothing.twr"));
}

}  // namespace
}  // namespace kvtest
