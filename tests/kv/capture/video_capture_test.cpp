#include "kv/capture/video_capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kv/framework/bitmaps.h"
#include "tests/support/running_program.h"
#include "tests/support/scarce_objects.h"
#include "tests/support/test_window.h"
#include "tools/fake_camera/fake_camera.h"
#include "tools/fake_camera/fake_frame.h"

namespace kv {
namespace {

constexpr UINT kCloseTheLink = WM_APP + 7;

// The fake camera in its initial state, and a host for the link. The link loads the same library.
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
  void TearDown() override {
    EXPECT_TRUE(!link_ || CloseVideoLink(link_));
    EXPECT_EQ(nullptr, GetWindow(host_, GW_CHILD));
    EXPECT_EQ(-1, camera_->connectedDriver);
  }

  fakecamera::State& camera() { return *camera_; }
  // Opens the link; the fixture closes it.
  VideoLink* Open() {
    link_ = OpenVideoLink(host_);
    return link_;
  }
  bool Close() { return CloseVideoLink(std::exchange(link_, nullptr)); }
  bool Draw(int width = 8, int height = 8, int left = 0, int top = 0) {
    return DrawVideoFrame(link_, bitmap_.dc(), left, top, width, height);
  }
  // A pixel of the frame bitmap; row 0 is stored first.
  COLORREF PixelOf(int x, int y) {
    GdiFlush();
    return static_cast<const std::uint32_t*>(link_->framePixels)[y * link_->frameWidth + x] & 0xFFFFFF;
  }
  void ExpectFrame(int frame) {
    for (const auto& [x, y] : {std::pair<LONG, LONG>{0, 0}, {319, 0}, {100, 60}, {40, 239}, {319, 239}, {160, 200}}) {
      EXPECT_EQ(fakecamera::Pixel(x, y, frame, 320, 240), PixelOf(x, y)) << x << ", " << y;
    }
  }

  kvtest::RecordingParent host_{false, 400, 300};
  kvtest::TestBitmap bitmap_{660, 500};

 private:
  fakecamera::State* camera_ = nullptr;
  VideoLink* link_ = nullptr;
};

TEST_F(VideoCapture, OpensTheFirstWorkingDriverAtTheFifthAttempt) {
  VideoLink* link = Open();
  EXPECT_EQ(0, camera().connectedDriver);
  EXPECT_TRUE(camera().previewing && camera().parameters.fYield);
  EXPECT_TRUE(link->tag == 0x20080509 && GlobalSize(link->hMemory) == 296);
  EXPECT_TRUE(link->status.uiImageWidth == 320 && link->sourceFormat.header.biHeight == 240);
  const BITMAPINFOHEADER& frame = link->frameFormat.header;
  EXPECT_TRUE(frame.biWidth == 320 && frame.biHeight == -240 && frame.biBitCount == 32);

  const HWND capture = link->hCapture;
  EXPECT_TRUE(GetParent(capture) == host_ && GetDlgCtrlID(capture) == 32769 && !IsWindowVisible(capture));
  EXPECT_EQ(L"kvVideoCapture", kvtest::TextOf(capture));
  EXPECT_EQ(400, ClientSize(capture).cx);
  EXPECT_TRUE(Close());
  EXPECT_FALSE(camera().previewing || CloseVideoLink(link));
}

TEST_F(VideoCapture, SearchesFromFourDownwardsAndWrapsAround) {
  camera().presentDrivers = 0xFF;
  camera().namelessDrivers = 1 << 3;
  camera().rejectingDrivers = 0xFF & ~(1 << 5);
  Open();
  const std::vector<int> order(camera().attemptedDrivers, camera().attemptedDrivers + camera().attempts);
  EXPECT_EQ((std::vector<int>{4, 2, 1, 0, 7, 6, 5}), order);
  EXPECT_TRUE(Close());

  camera() = {};
  camera().rejectingDrivers = 1;
  EXPECT_EQ(nullptr, OpenVideoLink(host_));
  EXPECT_EQ(13, camera().attempts);  // 96, 88 ... 0 of the attempts 100 ... 0
  EXPECT_EQ(nullptr, OpenVideoLink(nullptr));
  camera() = {};
  for (const auto& [width, height] : {std::pair<LONG, LONG>{0, 240}, {320, 0}, {320, -16385}, {320, 0x7FFFFFFF}}) {
    camera().width = width;
    camera().height = height;
    EXPECT_EQ(nullptr, OpenVideoLink(host_)) << width << " x " << height;
  }
}

TEST_F(VideoCapture, FramesAreConvertedToTopDownAndDrawn) {
  VideoLink* link = Open();
  ASSERT_TRUE(kvtest::WaitUntil([&] { return camera().framesMade >= 2; }));
  ExpectFrame(camera().framesMade - 1);

  // Drawing requests a new frame and stretches it without blending pixels.
  const int before = camera().framesMade;
  ASSERT_TRUE(Draw(640, 480, 10, 5));
  EXPECT_EQ(before + 1, camera().framesMade);
  EXPECT_EQ(COLORONCOLOR, GetStretchBltMode(bitmap_.dc()));
  ExpectFrame(before);
  const std::tuple<int, int, COLORREF> pixels[] = {{10, 5, 0xC0C0C0},    {649, 5, 0xC00000}, {10, 484, 0},
                                                   {649, 484, 0x5F5F5F}, {9, 5, 0xCCCCCC},   {10, 485, 0xCCCCCC}};
  for (const auto& [x, y, color] : pixels) EXPECT_EQ(color, bitmap_.At(x, y)) << x << ", " << y;
  EXPECT_FALSE(DrawVideoFrame(link, nullptr, 0, 0, 10, 10));
}

TEST_F(VideoCapture, TopDownFramesAreNotFlipped) {
  camera().height = -240;
  EXPECT_EQ(-240, Open()->frameFormat.header.biHeight);
  ASSERT_TRUE(Draw());
  ExpectFrame(camera().framesMade - 1);
}

TEST_F(VideoCapture, AHostDestroyedDuringConnectionLeaksNothing) {
  SIZE_T before = 0;
  for (int i = 0; i < 2000; ++i) {
    if (i == 500) before = kvtest::MemoryInUse();
    const HWND host = kvtest::CreateControl(host_, "STATIC", "", 0, {0, 0, 9, 9}, 1);
    camera().destroyedByConnecting = host;
    ASSERT_EQ(nullptr, OpenVideoLink(host));
  }
  camera().connectedDriver = -1;
  EXPECT_LT(kvtest::MemoryInUse(), before + (256 << 10)) << "1,500 links are 433 KB";
}

TEST_F(VideoCapture, AChangedFormatIsStretchedIntoTheSameBitmap) {
  VideoLink* link = Open();
  // Half the size: read with the old format, the frame would end in the middle.
  camera().width = 160;
  camera().height = 120;
  ASSERT_TRUE(Draw());
  EXPECT_EQ(320, link->frameWidth);
  EXPECT_EQ(0xC0C0C0u, PixelOf(0, 0));
  EXPECT_EQ(0x0000C0u, PixelOf(319, 100));
  // A color table of 256 entries; the link stores only one.
  camera().width = 320;
  camera().height = 240;
  camera().bitCount = 8;
  ASSERT_TRUE(Draw());
  EXPECT_EQ(0xD8D8FFu, PixelOf(0, 0));
  EXPECT_EQ(0xD80000u, PixelOf(5 * 320 / 7 + 5, 0));
  // When the format becomes unusable, the latest frame remains.
  camera().width = 0;
  EXPECT_TRUE(Draw());
  EXPECT_EQ(0xD8D8FFu, PixelOf(0, 0));
}

TEST_F(VideoCapture, UnreadableFramesAreRejected) {
  constexpr DWORD kSize = 320 * 240 * 3;
  const HWND capture = Open()->hCapture;
  const CAPVIDEOCALLBACK arrived = camera().frameCallback;
  kvtest::GuardedBytes shortHeader(sizeof(VIDEOHDR) - 1), shortData(kSize - 1), data(kSize);
  std::fill_n(data.as<BYTE>(), kSize, BYTE{0x55});
  VIDEOHDR header{.lpData = shortData.as<BYTE>(), .dwBufferLength = kSize, .dwBytesUsed = kSize};
  for (VIDEOHDR* bad : {static_cast<VIDEOHDR*>(nullptr), shortHeader.as<VIDEOHDR>(), &header}) {
    EXPECT_EQ(0, arrived(capture, bad));
  }
  header.lpData = data.as<BYTE>();
  EXPECT_EQ(1, arrived(capture, &header));
  EXPECT_EQ(0x555555u, PixelOf(7, 7));
  camera().colorsUsed = 100000;
  EXPECT_EQ(0, arrived(capture, &header));
  camera().colorsUsed = 0;

  // After closing, nothing is drawn.
  camera().callsBackWhileClosing = TRUE;
  EXPECT_TRUE(Close());
  EXPECT_EQ(1, camera().closingCallbackResult);
  EXPECT_EQ(1, arrived(capture, &header));
  EXPECT_EQ(0, arrived(capture, nullptr));
}

TEST_F(VideoCapture, RecordsUntilStopped) {
  VideoLink* link = Open();
  camera().maxSequenceFrames = 1000000;
  camera().parameters = {};
  // The yield callback dispatches messages for the capture window; a quit message remains for the program's loop.
  PostMessageA(link->hCapture, WM_CAP_STOP, 0, 0);
  PostQuitMessage(42);
  EXPECT_NE(0, RecordVideo(link, "C:\\flight.avi", TRUE));
  EXPECT_STREQ("C:\\flight.avi", camera().captureFile);
  EXPECT_EQ(1, camera().framesRecorded);
  EXPECT_TRUE(camera().parameters.fYield);
  ExpectFrame(camera().framesMade - 1);
  MSG message{};
  EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));

  camera().recording = TRUE;
  EXPECT_NE(0, RecordVideo(link, nullptr, FALSE));
  EXPECT_FALSE(camera().recording);

  // Each failing step ends it.
  camera().captureFile[0] = '\0';
  for (BOOL fakecamera::State::* step : {&fakecamera::State::rejectsSequenceSetup,
                                         &fakecamera::State::rejectsCaptureFile, &fakecamera::State::rejectsSequence}) {
    camera().*step = TRUE;
    EXPECT_EQ(0, RecordVideo(link, "a.avi", TRUE));
    EXPECT_EQ(step == &fakecamera::State::rejectsSequence, camera().captureFile[0] == 'a');
    camera().*step = FALSE;
  }
  kvtest::GuardedBytes endless(3);
  std::fill_n(endless.as<char>(), 3, 'a');
  EXPECT_EQ(0, RecordVideo(link, endless.as<char>(), TRUE));
  EXPECT_EQ(1, camera().framesRecorded);
}

TEST_F(VideoCapture, ManyFramesLeakNoHandle) {
  camera().width = camera().height = 4;
  Open();
  const kvtest::ScarceObjects scarce(50);
  for (int i = 0; i < 1000; ++i) ASSERT_TRUE(Draw());
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
  linkToClose = Open();
  camera().maxSequenceFrames = 1000000;
  const HWND capture = linkToClose->hCapture;
  captureProcedure =
      reinterpret_cast<WNDPROC>(SetWindowLongA(capture, GWL_WNDPROC, reinterpret_cast<LONG>(ClosingProcedure)));
  tagWhileClosing = 1;
  PostMessageA(capture, kCloseTheLink, 0, 0);
  RecordVideo(linkToClose, "a.avi", TRUE);
  EXPECT_EQ(0u, tagWhileClosing);
  EXPECT_FALSE(IsWindow(capture));
  EXPECT_FALSE(Close());
}

TEST_F(VideoCapture, ForeignHandlesAreRejected) {
  VideoLink untagged = *Open(), windowless = untagged;
  kvtest::GuardedBytes cut(sizeof(VideoLink) - 4), readOnly(sizeof(VideoLink));
  std::memcpy(cut.data(), &untagged, sizeof(VideoLink) - 4);
  std::memcpy(readOnly.data(), &untagged, sizeof(VideoLink));
  readOnly.MakeReadOnly();
  untagged.tag ^= 1;
  windowless.hCapture = reinterpret_cast<HWND>(0x7FFE);
  const int frames = camera().framesMade;
  for (VideoLink* foreign :
       {&untagged, &windowless, cut.as<VideoLink>(), readOnly.as<VideoLink>(), static_cast<VideoLink*>(nullptr)}) {
    EXPECT_FALSE(DrawVideoFrame(foreign, bitmap_.dc(), 0, 0, 8, 8) || CloseVideoLink(foreign));
    EXPECT_FALSE(RecordVideo(foreign, "a.avi", TRUE) || RecordVideo(foreign, nullptr, FALSE));
  }
  EXPECT_EQ(frames, camera().framesMade);
}

TEST_F(VideoCapture, ErrorTextIsShownInAMessageBox) {
  std::wstring shown;
  host_.Answer([&](HWND host, UINT message, WPARAM, LPARAM, LRESULT*) {
    HWND box = message == WM_TIMER ? FindWindowW(L"#32770", L"Video Error") : nullptr;
    if (!box || GetWindow(box, GW_OWNER) != host) return false;
    shown = kvtest::TextOf(GetDlgItem(box, 0xFFFF));
    EndDialog(box, IDOK);
    return true;
  });
  SetTimer(host_, 1, 10, nullptr);
  EXPECT_EQ(1, VideoErrorText(host_, 415, L"No signal"));
  KillTimer(host_, 1);
  EXPECT_EQ(L"No signal", shown);
  EXPECT_EQ(0, VideoErrorText(host_, 415, nullptr));
}

}  // namespace
}  // namespace kv
