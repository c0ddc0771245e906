#include "capture/video_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/test_window.h"
#include "tools/fake_camera/fake_camera.h"
#include "tools/fake_camera/fake_picture.h"

namespace kv {
namespace {

constexpr UINT kCloseTheLink = WM_APP + 7;

// The fake camera in its first state, and a host for the link. The library is the one that the link loads.
class VideoCapture : public testing::Test {
 protected:
  void SetUp() override {
    HMODULE library = LoadLibraryW(L"avicap32.dll");
    auto function = reinterpret_cast<fakecamera::StateFunction>(
        reinterpret_cast<void*>(GetProcAddress(library, "FakeCameraState")));
    ASSERT_NE(nullptr, function) << "the system's avicap32.dll was loaded instead of the fake camera";
    camera_ = function();
    *camera_ = {};
  }

  fakecamera::State& camera() { return *camera_; }
  // What the frame bitmap holds at a place; row 0 is stored first.
  static COLORREF PixelOf(const VideoLink* link, int x, int y) {
    GdiFlush();
    return static_cast<const std::uint32_t*>(link->framePixels)[y * link->frameWidth + x] & 0xFFFFFF;
  }
  void ExpectFrame(const VideoLink* link, int frame) {
    for (const auto& [x, y] : {std::pair<LONG, LONG>{0, 0}, {319, 0}, {100, 60}, {40, 239}, {319, 239}, {160, 200}}) {
      EXPECT_EQ(fakecamera::Pixel(x, y, frame, 320, 240), PixelOf(link, x, y)) << x << ", " << y;
    }
  }

  kvtest::RecordingParent host_{false, 400, 300};

 private:
  fakecamera::State* camera_ = nullptr;
};

TEST_F(VideoCapture, OpensTheFirstDriverThatAnswersOnTheFifthAttempt) {
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  EXPECT_EQ(0, camera().connectedDriver);
  EXPECT_TRUE(camera().previewing);
  EXPECT_EQ(0x20080509u, link->tag);
  EXPECT_EQ(296u, GlobalSize(link->hMemory));
  EXPECT_EQ(static_cast<HWND>(host_), GetParent(link->hCapture));
  EXPECT_EQ(32769, GetDlgCtrlID(link->hCapture));
  EXPECT_FALSE(IsWindowVisible(link->hCapture));
  wchar_t name[32] = L"";
  GetWindowTextW(link->hCapture, name, 32);
  EXPECT_STREQ(L"kvVideoCapture", name);
  RECT place{};
  GetWindowRect(link->hCapture, &place);
  EXPECT_EQ(400, place.right - place.left);
  EXPECT_EQ(320u, link->status.uiImageWidth);
  EXPECT_TRUE(camera().parameters.fYield);
  EXPECT_EQ(320, link->frameFormat.header.biWidth);
  EXPECT_EQ(-240, link->frameFormat.header.biHeight);
  EXPECT_EQ(32, link->frameFormat.header.biBitCount);
  EXPECT_EQ(240, link->sourceFormat.header.biHeight);

  const HWND capture = link->hCapture;
  EXPECT_TRUE(CloseVideoLink(link));
  EXPECT_FALSE(IsWindow(capture));
  EXPECT_EQ(-1, camera().connectedDriver);
  EXPECT_FALSE(camera().previewing);
  EXPECT_FALSE(CloseVideoLink(link));
}

TEST_F(VideoCapture, SearchesFromFourDownAndAroundUntilADriverAnswers) {
  camera().presentDrivers = 0xFF;
  camera().namelessDrivers = 1 << 3;
  camera().refusingDrivers = 0xFF & ~(1 << 5);
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  const std::vector<int> order(camera().attemptedDrivers, camera().attemptedDrivers + camera().attempts);
  EXPECT_EQ((std::vector<int>{4, 2, 1, 0, 7, 6, 5}), order);
  EXPECT_TRUE(CloseVideoLink(link));

  camera() = {};
  camera().refusingDrivers = 1;
  EXPECT_EQ(nullptr, OpenVideoLink(host_));
  EXPECT_EQ(13, camera().attempts);  // 96, 88 ... 0 of the attempts 100 ... 0
  EXPECT_EQ(nullptr, GetWindow(host_, GW_CHILD));
  EXPECT_EQ(nullptr, OpenVideoLink(nullptr));
}

TEST_F(VideoCapture, UnusableFormatsAreNotOpened) {
  for (const auto& [width, height] : {std::pair<LONG, LONG>{0, 240}, {320, 0}, {320, -240}, {320, 0x7FFFFFFF}}) {
    camera().width = width;
    camera().height = height;
    EXPECT_EQ(nullptr, OpenVideoLink(host_));
    EXPECT_EQ(-1, camera().connectedDriver);
    EXPECT_EQ(nullptr, GetWindow(host_, GW_CHILD));
  }
}

TEST_F(VideoCapture, FramesArriveTopDownAndAreDrawn) {
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  ASSERT_TRUE(kvtest::WaitUntil([&] { return camera().framesMade >= 2; }));
  ExpectFrame(link, camera().framesMade - 1);

  // Drawing asks for a frame of its own and stretches it, each pixel as it is.
  const int before = camera().framesMade;
  kvtest::Picture picture(660, 500);
  ASSERT_TRUE(DrawVideoFrame(link, picture.dc(), 10, 5, 640, 480));
  EXPECT_EQ(before + 1, camera().framesMade);
  EXPECT_EQ(COLORONCOLOR, GetStretchBltMode(picture.dc()));
  ExpectFrame(link, before);
  EXPECT_EQ(RGB(0xC0, 0xC0, 0xC0), picture.At(10, 5));
  EXPECT_EQ(RGB(0, 0, 0xC0), picture.At(10 + 639, 5));
  EXPECT_EQ(RGB(0, 0, 0), picture.At(10, 5 + 479));
  EXPECT_EQ(RGB(95, 95, 95), picture.At(10 + 639, 5 + 479));
  EXPECT_EQ(RGB(0xCC, 0xCC, 0xCC), picture.At(9, 5));
  EXPECT_EQ(RGB(0xCC, 0xCC, 0xCC), picture.At(10, 485));
  EXPECT_FALSE(DrawVideoFrame(link, nullptr, 0, 0, 10, 10));
  EXPECT_TRUE(CloseVideoLink(link));
}

TEST_F(VideoCapture, AChangedFormatIsStretchedIntoTheSameBitmap) {
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  kvtest::Picture picture(8, 8);
  // Half the size: read by the old format, the frame would end in the middle.
  camera().width = 160;
  camera().height = 120;
  ASSERT_TRUE(DrawVideoFrame(link, picture.dc(), 0, 0, 8, 8));
  EXPECT_EQ(320, link->frameWidth);
  EXPECT_EQ(0xC0C0C0u, PixelOf(link, 0, 0));
  EXPECT_EQ(0x0000C0u, PixelOf(link, 319, 100));
  // A colour table of 256 entries, of which the record holds one.
  camera().width = 320;
  camera().height = 240;
  camera().bitCount = 8;
  ASSERT_TRUE(DrawVideoFrame(link, picture.dc(), 0, 0, 8, 8));
  EXPECT_EQ(0xD8D8FFu, PixelOf(link, 0, 0));
  EXPECT_EQ(0xD80000u, PixelOf(link, 5 * 320 / 7 + 5, 0));
  // A format that became unusable leaves the latest frame.
  camera().width = 0;
  EXPECT_TRUE(DrawVideoFrame(link, picture.dc(), 0, 0, 8, 8));
  EXPECT_EQ(0xD8D8FFu, PixelOf(link, 0, 0));
  EXPECT_TRUE(CloseVideoLink(link));
}

TEST_F(VideoCapture, FramesThatCannotBeReadAreRefused) {
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  const CAPVIDEOCALLBACK arrived = camera().frameCallback;
  const HWND capture = link->hCapture;
  kvtest::GuardedBytes shortHeader(sizeof(VIDEOHDR) - 1), shortData(320 * 240 * 3 - 1);
  EXPECT_EQ(0, arrived(capture, nullptr));
  EXPECT_EQ(0, arrived(capture, shortHeader.as<VIDEOHDR>()));
  VIDEOHDR header{};
  header.lpData = shortData.as<BYTE>();
  header.dwBytesUsed = header.dwBufferLength = 320 * 240 * 3;
  EXPECT_EQ(0, arrived(capture, &header));
  kvtest::GuardedBytes data(320 * 240 * 3);
  header.lpData = data.as<BYTE>();
  std::fill_n(data.as<BYTE>(), 320 * 240 * 3, BYTE{0x55});
  EXPECT_EQ(1, arrived(capture, &header));
  EXPECT_EQ(0x555555u, PixelOf(link, 7, 7));
  camera().colorsUsed = 100000;
  EXPECT_EQ(0, arrived(capture, &header));
  camera().colorsUsed = 0;

  // Once closed there is no link: nothing is drawn, whatever comes. A window that still names a bad record neither.
  camera().callsBackWhileClosing = TRUE;
  EXPECT_TRUE(CloseVideoLink(link));
  EXPECT_EQ(1, camera().closingCallbackResult);
  EXPECT_EQ(1, arrived(capture, &header));
  EXPECT_EQ(0, arrived(capture, nullptr));
}

TEST_F(VideoCapture, RecordsUntilStopped) {
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  camera().longestSequence = 1000000;
  camera().parameters = {};
  // The yield callback dispatches what waits for the capture window; a quit message stays for the program's loop.
  PostMessageA(link->hCapture, WM_CAP_STOP, 0, 0);
  PostQuitMessage(42);
  EXPECT_NE(0, RecordVideo(link, "C:\\flight.avi", TRUE));
  EXPECT_STREQ("C:\\flight.avi", camera().captureFile);
  EXPECT_EQ(1, camera().framesRecorded);
  EXPECT_TRUE(camera().parameters.fYield);
  ExpectFrame(link, camera().framesMade - 1);
  MSG message{};
  EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  EXPECT_EQ(42u, message.wParam);

  camera().recording = TRUE;
  EXPECT_NE(0, RecordVideo(link, nullptr, FALSE));
  EXPECT_FALSE(camera().recording);

  // Each step that fails ends it.
  camera().captureFile[0] = '\0';
  camera().refusesSequenceSetup = TRUE;
  EXPECT_EQ(0, RecordVideo(link, "a.avi", TRUE));
  EXPECT_STREQ("", camera().captureFile);
  camera().refusesSequenceSetup = FALSE;
  camera().refusesCaptureFile = TRUE;
  EXPECT_EQ(0, RecordVideo(link, "a.avi", TRUE));
  camera().refusesCaptureFile = FALSE;
  camera().refusesSequence = TRUE;
  EXPECT_EQ(0, RecordVideo(link, "a.avi", TRUE));
  camera().refusesSequence = FALSE;
  kvtest::GuardedBytes endless(3);
  std::fill_n(endless.as<char>(), 3, 'a');
  EXPECT_EQ(0, RecordVideo(link, endless.as<char>(), TRUE));
  EXPECT_EQ(1, camera().framesRecorded);
  EXPECT_TRUE(CloseVideoLink(link));
}

// A new GDI object takes the lowest number that is free, more or less: frames that leave objects behind drive it up.
TEST_F(VideoCapture, ManyFramesLeaveNoHandleBehind) {
  constexpr int kFrames = 2000;
  camera().width = camera().height = 4;
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  kvtest::Picture picture(4, 4);
  const auto freeNumber = [] {
    HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    DeleteObject(brush);
    return static_cast<int>(LOWORD(reinterpret_cast<DWORD>(brush)));
  };
  const int before = freeNumber();
  for (int i = 0; i < kFrames; ++i) ASSERT_TRUE(DrawVideoFrame(link, picture.dc(), 0, 0, 4, 4));
  EXPECT_LT(freeNumber() - before, kFrames / 2);
  EXPECT_TRUE(CloseVideoLink(link));
}

VideoLink* linkToClose;
WNDPROC captureProcedure;
std::uint32_t tagWhileClosing;

LRESULT CALLBACK ClosingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kCloseTheLink) return CloseVideoLink(linkToClose);
  if (message == WM_CAP_SET_CALLBACK_FRAME) tagWhileClosing = linkToClose->tag;
  return CallWindowProcA(captureProcedure, window, message, wParam, lParam);
}

TEST_F(VideoCapture, MayBeClosedWhileItRecords) {
  linkToClose = OpenVideoLink(host_);
  ASSERT_NE(nullptr, linkToClose);
  camera().longestSequence = 1000000;
  const HWND capture = linkToClose->hCapture;
  captureProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongA(capture, GWL_WNDPROC, reinterpret_cast<LONG>(ClosingProcedure)));
  tagWhileClosing = 1;
  PostMessageA(capture, kCloseTheLink, 0, 0);
  RecordVideo(linkToClose, "a.avi", TRUE);
  EXPECT_EQ(0u, tagWhileClosing);
  EXPECT_FALSE(IsWindow(capture));
  EXPECT_FALSE(CloseVideoLink(linkToClose));
}

TEST_F(VideoCapture, ForeignRecordsAreRefused) {
  VideoLink* link = OpenVideoLink(host_);
  ASSERT_NE(nullptr, link);
  kvtest::Picture picture(8, 8);
  VideoLink untagged = *link, windowless = *link;
  untagged.tag ^= 1;
  windowless.hCapture = reinterpret_cast<HWND>(0x7FFE);
  kvtest::GuardedBytes cut(sizeof(VideoLink) - 4), readOnly(sizeof(VideoLink));
  std::memcpy(cut.data(), link, sizeof(VideoLink) - 4);
  std::memcpy(readOnly.data(), link, sizeof(VideoLink));
  readOnly.MakeReadOnly();
  for (VideoLink* foreign :
       {&untagged, &windowless, cut.as<VideoLink>(), readOnly.as<VideoLink>(), static_cast<VideoLink*>(nullptr)}) {
    const int frames = camera().framesMade;
    EXPECT_FALSE(DrawVideoFrame(foreign, picture.dc(), 0, 0, 8, 8));
    EXPECT_EQ(0, RecordVideo(foreign, "a.avi", TRUE));
    EXPECT_EQ(0, RecordVideo(foreign, nullptr, FALSE));
    EXPECT_FALSE(CloseVideoLink(foreign));
    EXPECT_EQ(frames, camera().framesMade);
  }
  EXPECT_EQ(64, picture.CountOf(RGB(0xCC, 0xCC, 0xCC)));
  EXPECT_TRUE(CloseVideoLink(link));
}

TEST_F(VideoCapture, ErrorTextIsShownInABox) {
  std::wstring shown;
  host_.Answer([&](HWND host, UINT message, WPARAM, LPARAM, LRESULT*) {
    HWND box = message == WM_TIMER ? FindWindowW(L"#32770", L"Video Error") : nullptr;
    if (!box || GetWindow(box, GW_OWNER) != host) return false;
    wchar_t caption[64] = L"", text[64] = L"";
    GetWindowTextW(box, caption, 64);
    GetDlgItemTextW(box, 0xFFFF, text, 64);
    shown = std::wstring(caption) + L": " + text;
    EndDialog(box, IDOK);
    return true;
  });
  SetTimer(host_, 1, 10, nullptr);
  EXPECT_EQ(1, VideoErrorText(host_, 415, L"No signal"));
  KillTimer(host_, 1);
  EXPECT_EQ(L"Video Error: No signal", shown);
  EXPECT_EQ(0, VideoErrorText(host_, 415, nullptr));
}

}  // namespace
}  // namespace kv
