// Drives the real program from outside: a camera on a null-modem pair, the mouse, and pixels of the screen.
#include <gtest/gtest.h>
#include <windows.h>

#include <psapi.h>

#include <atomic>
#include <filesystem>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "app/resource_ids.h"
#include "camera/camera_record.h"
#include "tests/e2e/tarnwick_process.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"
#include "tools/uidriver/driver.h"

namespace kvtest {
namespace {

using kv::CameraPoint;
using kv::kNoPoint;
using uidriver::StatusTexts;
using uidriver::TextOf;

constexpr COLORREF kBlack = RGB(0, 0, 0);

// Sends the given points continuously, like a camera.
class StreamingCamera {
 public:
  explicit StreamingCamera(PlayedCamera* camera)
      : thread_([this, camera](const std::stop_token& stop) {
          while (!stop.stop_requested()) {
            CameraPoint points[kv::kPointCount];
            for (int i = 0; i < kv::kPointCount; ++i) points[i] = {x_[i], y_[i]};
            camera->SendRecord(points);
            Sleep(15);
          }
        }) {}
  void Show(int index, CameraPoint point) {
    x_[index] = point.x;
    y_[index] = point.y;
  }

 private:
  std::atomic<LONG> x_[kv::kPointCount]{100, 300, kNoPoint, 700}, y_[kv::kPointCount]{200, 400, kNoPoint, 600};
  std::jthread thread_;
};

const kvtest::ComPair kPair = kvtest::GivenComPair();
const std::string kPortText = "COM" + std::to_string(kPair.port);

class TarnwickTest : public testing::Test {
 protected:
  void SetUp() override {
    if (kPair.port == 0) GTEST_SKIP() << kvtest::kNoComPair;
    ASSERT_TRUE(line_.isPlugged());
    camera_.Reopen();
    ASSERT_TRUE(camera_.isOpen());
    ForgetUserSettings();
  }

  SerialLine line_;
  PlayedCamera camera_{kPair.farPort};
};

TEST_F(TarnwickTest, ShowsWhatTheCameraSees) {
  TarnwickProcess tool;
  ASSERT_NE(nullptr, tool.window());
  EXPECT_EQ("---", TextOf(tool.window(), IDC_PORT));
  tool.ClickConnect();
  EXPECT_TRUE(tool.WaitForPortText("-")) << "no data is sent";
  EXPECT_FALSE(uidriver::IsToolbarButtonChecked(tool.window(), IDM_CONNECT));
  for (const std::string& text : StatusTexts(tool.window())) EXPECT_EQ("-", text);

  StreamingCamera stream(&camera_);
  EXPECT_TRUE(tool.ClickConnect());
  ASSERT_TRUE(tool.WaitForPortText(kPortText)) << TextOf(tool.window(), IDC_PORT);
  EXPECT_TRUE(uidriver::IsToolbarButtonChecked(tool.window(), IDM_CONNECT));
  EXPECT_TRUE(WaitUntil([&] { return TextOf(tool.window(), IDC_POINT_4) == "700,600"; }));
  EXPECT_EQ("100,200", TextOf(tool.window(), IDC_POINT_1));
  EXPECT_EQ("1023,1023", TextOf(tool.window(), IDC_POINT_3));

  for (const CameraPoint point : {CameraPoint{100, 200}, {300, 400}, {700, 600}}) {
    EXPECT_TRUE(WaitUntil([&] { return tool.ChartPixel(point) != kBlack; })) << point.x;
  }
  EXPECT_EQ(kBlack, tool.ChartPixel({512, 100}));
  stream.Show(0, {900, 100});
  EXPECT_TRUE(WaitUntil([&] { return tool.ChartPixel({900, 100}) != kBlack; }));
  EXPECT_EQ(kBlack, tool.ChartPixel({100, 200})) << "the old position is empty again";
  stream.Show(1, {kNoPoint, kNoPoint});
  EXPECT_TRUE(WaitUntil([&] { return tool.ChartPixel({300, 400}) == kBlack; }));

  tool.ClickConnect();
  EXPECT_TRUE(tool.WaitForPortText("-"));
  EXPECT_TRUE(WaitUntil([&] { return TextOf(tool.window(), IDC_POINT_4) == "-"; }));
  EXPECT_FALSE(uidriver::IsToolbarButtonChecked(tool.window(), IDM_CONNECT));
  tool.ClickConnect();
  EXPECT_TRUE(tool.WaitForPortText(kPortText));
  EXPECT_NE(INFINITE, tool.CloseAndWait()) << "closes while the camera sends";
}

TEST_F(TarnwickTest, SurvivesTheCameraBeingUnplugged) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "these ports cannot be unplugged";
  TarnwickProcess tool;
  ASSERT_NE(nullptr, tool.window());
  for (int round = 0; round < 2; ++round) {
    {
      StreamingCamera stream(&camera_);
      tool.ClickConnect();
      ASSERT_TRUE(tool.WaitForPortText(kPortText));
      EXPECT_TRUE(WaitUntil([&] { return TextOf(tool.window(), IDC_POINT_4) == "700,600"; }));
    }
    camera_.Send("0001,0002,00");
    line_.Unplug();
    EXPECT_EQ("700,600", TextOf(tool.window(), IDC_POINT_4)) << "the last points remain";
    tool.ClickConnect();
    EXPECT_TRUE(tool.WaitForPortText("-"));
    line_.PlugIn();
    camera_.Reopen();
  }
  EXPECT_NE(INFINITE, tool.CloseAndWait());
}

TEST_F(TarnwickTest, RestoresItsPositionAndLocksNoDirectory) {
  const std::filesystem::path directory = std::filesystem::temp_directory_path() / L"tarnwick e2e";
  std::filesystem::create_directory(directory);
  const RECT place{60, 50, 560, 500};
  for (const bool isFirst : {true, false}) {
    const TarnwickProcess tool(isFirst ? directory.c_str() : nullptr);
    ASSERT_NE(nullptr, tool.window());
    if (isFirst) MoveWindow(tool.window(), 60, 50, 500, 450, TRUE);
    RECT now{};
    GetWindowRect(tool.window(), &now);
    EXPECT_TRUE(EqualRect(&place, &now)) << now.left << "," << now.top << "," << now.right << "," << now.bottom;
    EXPECT_NE(INFINITE, tool.CloseAndWait());
  }
  EXPECT_TRUE(RemoveDirectoryW(directory.c_str()))
      << "the tool neither leaves files in its working directory nor locks it";
}

// The modules that a process has loaded from its program's folder, including the program.
std::vector<std::string> LoadedFromItsFolder(HANDLE process, std::string* folder) {
  HMODULE modules[256];
  DWORD bytes = 0;
  EnumProcessModules(process, modules, sizeof(modules), &bytes);
  std::vector<std::string> loaded;
  for (DWORD i = 0; i < bytes / sizeof(HMODULE); ++i) {
    char path[MAX_PATH] = "";
    GetModuleFileNameExA(process, modules[i], path, sizeof(path));
    const std::string whole = path;
    if (i == 0) *folder = whole.substr(0, whole.rfind('\\') + 1);
    if (whole.starts_with(*folder)) loaded.push_back(whole.substr(folder->size()));
  }
  return loaded;
}

TEST_F(TarnwickTest, LoadsNoLibraryFromItsFolder) {
  std::string folder;
  {
    TarnwickProcess tool;
    LoadedFromItsFolder(tool.process(), &folder);
  }
  const std::string planted = folder + "RichEd32.dll";
  EXPECT_TRUE(CopyFileA("C:\\windows\\system32\\RichEd32.dll", planted.c_str(), FALSE)) << planted;
  TarnwickProcess tool;
  EXPECT_EQ(std::vector<std::string>{"tarnwick.exe"}, LoadedFromItsFolder(tool.process(), &folder));
  EXPECT_NE(INFINITE, tool.CloseAndWait());
  EXPECT_TRUE(DeleteFileA(planted.c_str()));
}

// A program that continuously sends and posts commands must not keep the tool open.
TEST_F(TarnwickTest, ClosesUnderAFloodOfCommands) {
  const TarnwickProcess tool;
  ASSERT_NE(nullptr, tool.window());
  std::atomic<int> sent{0};
  std::jthread senders[4];
  for (std::jthread& sender : senders) {
    sender = std::jthread([&](const std::stop_token& stop) {
      for (int i = 0; !stop.stop_requested(); ++i, ++sent) {
        const WPARAM command = i % 3 == 0 ? IDM_PAUSE : i % 3 == 1 ? IDM_RESERVED : 32768 + i % 1000;
        DWORD_PTR answer = 0;
        SendMessageTimeoutA(tool.window(), WM_COMMAND, command, 0, SMTO_NORMAL, 1000, &answer);
        PostMessageA(tool.window(), WM_COMMAND, command, 0);
      }
    });
  }
  EXPECT_TRUE(WaitUntil([&] { return sent > 1000; }));
  EXPECT_NE(INFINITE, tool.CloseAndWait());
}

}  // namespace
}  // namespace kvtest
