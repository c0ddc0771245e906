// Drives the real program from outside: a camera on a COM pair, a mouse, and eyes on the screen.
#include <gtest/gtest.h>
#include <windows.h>

#include <psapi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "app/camera_record.h"
#include "app/resource_ids.h"
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

// Streams one set of points after the other, as the camera does, until told otherwise.
class StreamingCamera {
 public:
  explicit StreamingCamera(PlayedCamera* camera)
      : thread_([this, camera] {
          while (!stop_) {
            CameraPoint points[kv::kPointCount];
            for (int i = 0; i < kv::kPointCount; ++i) points[i] = {x_[i], y_[i]};
            camera->SendRecord(points);
            Sleep(15);
          }
        }) {}
  ~StreamingCamera() {
    stop_ = true;
    thread_.join();
  }
  void Show(int index, CameraPoint point) {
    x_[index] = point.x;
    y_[index] = point.y;
  }

 private:
  std::atomic<LONG> x_[kv::kPointCount]{100, 300, kNoPoint, 700}, y_[kv::kPointCount]{200, 400, kNoPoint, 600};
  std::atomic<bool> stop_{false};
  std::thread thread_;
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

void PressLeft(bool down) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = down ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP;
  SendInput(1, &input, sizeof(input));
  Sleep(50);
}

// Drags the window's lower right corner with the mouse. On a busy machine the press may come before the window is ready
// for it; the caller looks at the size and tries again.
void DragCorner(HWND window, int byX, int byY) {
  RECT place{};
  GetWindowRect(window, &place);
  const POINT corner{place.right - 2, place.bottom - 2};
  SetForegroundWindow(window);
  WaitUntil([&] {
    SetCursorPos(corner.x, corner.y);
    return SendMessageA(window, WM_NCHITTEST, 0, MAKELPARAM(corner.x, corner.y)) == HTBOTTOMRIGHT &&
           WindowFromPoint(corner) == window;
  });
  PressLeft(true);
  for (int step = 1; step <= 8; ++step) {
    SetCursorPos(corner.x + byX * step / 8, corner.y + byY * step / 8);
    Sleep(30);
  }
  PressLeft(false);
}

TEST_F(TarnwickTest, ShowsWhatTheCameraSees) {
  StreamingCamera stream(&camera_);
  TarnwickProcess tool;
  ASSERT_NE(nullptr, tool.window());
  EXPECT_EQ("---", TextOf(tool.window(), IDC_PORT));
  EXPECT_TRUE(WaitUntil([&] { return TextOf(tool.window(), IDC_POINT_1) == "-"; }));

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
  EXPECT_EQ(kBlack, tool.ChartPixel({100, 200})) << "the old place is empty again";
  stream.Show(1, {kNoPoint, kNoPoint});
  EXPECT_TRUE(WaitUntil([&] { return tool.ChartPixel({300, 400}) == kBlack; }));

  // Paused: numbers go on, the chart stands still, the port button turns amber.
  HWND port = GetDlgItem(tool.window(), IDC_PORT);
  const COLORREF green = uidriver::PixelOf(port, 4, 5);
  EXPECT_GT(GetGValue(green), GetRValue(green) + 50);
  SendMessageA(tool.window(), WM_COMMAND, IDM_PAUSE, 0);
  stream.Show(0, {200, 650});
  EXPECT_TRUE(WaitUntil([&] { return TextOf(tool.window(), IDC_POINT_1) == "200,650"; }));
  EXPECT_TRUE(WaitUntil([&] {
    const COLORREF amber = uidriver::PixelOf(port, 4, 5);
    return GetRValue(amber) > GetBValue(amber) + 50;
  }));
  EXPECT_NE(kBlack, tool.ChartPixel({900, 100}));
  EXPECT_EQ(kBlack, tool.ChartPixel({200, 650}));
  SendMessageA(tool.window(), WM_COMMAND, IDM_PAUSE, 0);
  EXPECT_TRUE(WaitUntil([&] { return tool.ChartPixel({200, 650}) != kBlack; }));

  tool.ClickConnect();
  EXPECT_TRUE(tool.WaitForPortText("-"));
  EXPECT_TRUE(WaitUntil([&] { return TextOf(tool.window(), IDC_POINT_4) == "-"; }));
  EXPECT_FALSE(uidriver::IsToolbarButtonChecked(tool.window(), IDM_CONNECT));
  EXPECT_NE(INFINITE, tool.CloseAndWait());
}

TEST_F(TarnwickTest, FailsQuietlyWithoutACameraAndFindsItLater) {
  TarnwickProcess tool;
  ASSERT_NE(nullptr, tool.window());
  tool.ClickConnect();
  EXPECT_TRUE(tool.WaitForPortText("-"));
  EXPECT_FALSE(uidriver::IsToolbarButtonChecked(tool.window(), IDM_CONNECT));
  for (const std::string& text : StatusTexts(tool.window())) EXPECT_EQ("-", text);

  StreamingCamera stream(&camera_);
  tool.ClickConnect();
  EXPECT_TRUE(tool.WaitForPortText(kPortText));
  EXPECT_NE(INFINITE, tool.CloseAndWait()) << "closes under a streaming camera";
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
    EXPECT_EQ("700,600", TextOf(tool.window(), IDC_POINT_4)) << "the last points stay";
    tool.ClickConnect();
    EXPECT_TRUE(tool.WaitForPortText("-"));
    line_.PlugIn();
    camera_.Reopen();
  }
  EXPECT_NE(INFINITE, tool.CloseAndWait());
}

TEST_F(TarnwickTest, ResizesDownToItsMinimumAndComesBackWhereItWas) {
  char directory[MAX_PATH];
  GetTempPathA(sizeof(directory), directory);
  lstrcatA(directory, "tarnwick e2e");
  CreateDirectoryA(directory, nullptr);
  RECT place{};
  {
    TarnwickProcess tool(directory);
    ASSERT_NE(nullptr, tool.window());
    SetWindowPos(tool.window(), nullptr, 60, 50, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    const auto isSmallest = [&] {
      GetWindowRect(tool.window(), &place);
      return place.right - place.left == 412 && place.bottom - place.top == 412;
    };
    for (int tries = 0; tries < 4 && !isSmallest(); ++tries) {
      DragCorner(tool.window(), -900, -900);
      WaitUntil(isSmallest, std::chrono::milliseconds(500));
    }
    EXPECT_TRUE(isSmallest()) << place.right - place.left << " x " << place.bottom - place.top;
    EXPECT_NE(INFINITE, tool.CloseAndWait());
  }
  char stored[64];
  sprintf(stored, "%ld,%ld,%ld,%ld", place.left, place.top, place.right, place.bottom);
  EXPECT_EQ(stored, UserRegistryText("Software\\korvel\\WindowPositions", "Tarnwick.Main"));
  EXPECT_TRUE(RemoveDirectoryA(directory)) << "the tool leaves nothing in its working directory, nor holds it";

  TarnwickProcess again;
  RECT restored{};
  GetWindowRect(again.window(), &restored);
  EXPECT_TRUE(EqualRect(&place, &restored));
  EXPECT_NE(INFINITE, again.CloseAndWait());
}

// What a process has loaded from the folder of its own file, that file included.
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

TEST_F(TarnwickTest, RunsNoLibraryThatLiesBesideIt) {
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

// Whoever keeps sending and posting commands must not hold the tool open.
TEST_F(TarnwickTest, ClosesUnderAStormOfCommands) {
  TarnwickProcess tool;
  ASSERT_NE(nullptr, tool.window());
  std::atomic<bool> stop{false};
  std::atomic<int> sent{0};
  std::thread senders[4];
  for (std::thread& sender : senders) {
    sender = std::thread([&] {
      for (int i = 0; !stop; ++i, ++sent) {
        const WPARAM command = i % 3 == 0 ? IDM_PAUSE : i % 3 == 1 ? IDM_RESERVED : 32768 + i % 1000;
        DWORD_PTR answer = 0;
        SendMessageTimeoutA(tool.window(), WM_COMMAND, command, 0, SMTO_NORMAL, 1000, &answer);
        PostMessageA(tool.window(), WM_COMMAND, command, 0);
      }
    });
  }
  EXPECT_TRUE(WaitUntil([&] { return sent > 1000; }));
  EXPECT_NE(INFINITE, tool.CloseAndWait(20000));
  stop = true;
  for (std::thread& sender : senders) sender.join();
}

}  // namespace
}  // namespace kvtest
