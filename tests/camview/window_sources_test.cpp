// camview's window when sources change: dialogs and work that are under way, and a port that comes and goes.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <memory>
#include <string>

#include "camera/recording.h"
#include "camera/text.h"
#include "camview/commands.h"
#include "camview/live_source.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "camview/resource_ids.h"
#include "camview/source.h"
#include "camview/window.h"
#include "kv/lists/list_navigation.h"
#include "tests/camview/window_fixture.h"
#include "tests/support/replaced_import.h"
#include "tests/support/running_program.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

using kvtest::TextOf;

TEST_F(CamviewWindow, AModalDialogFindsItsSourceAgainOrSaysThatItIsGone) {
  OpenFile(Recording(100));
  Command(IDM_SELECT_SHOWN);
  const fs::path other = File(L"camview other.twr");
  std::ofstream(other, std::ios::binary) << Recording(100'000);
  const auto drop = [&] {
    SendMessageW(window_, WM_DROPFILES, reinterpret_cast<WPARAM>(DroppedFile(other)), 0);
    EXPECT_TRUE(EndsWork());
  };
  chosenPath = File(L"camview of the first.csv");
  whileChoosing = drop;  // on the disabled window
  Command(IDM_EXPORT);
  EXPECT_TRUE(EndsWork());
  EXPECT_EQ(L"camview test.twr – Camera viewer", TextOf(window_));
  const std::string rows = BytesOf(chosenPath);
  EXPECT_EQ(101, std::ranges::count(rows, '\n'));

  // A recording that is still being read when the user chooses where to record the port.
  constexpr int kAbsentPort = 177;
  const fs::path target = File(L"camview record.twr");
  Connect(view(), kAbsentPort);
  camview::OpenFile(view(), other.wstring());
  chosenPath = target;
  whileChoosing = [&] { EXPECT_TRUE(EndsWork()); };
  Command(IDM_RECORD);
  EXPECT_EQ(L"camview other.twr – Camera viewer", TextOf(window_));
  EXPECT_TRUE(Says(L"has been closed; nothing was written.")) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(CamviewWindow, OpeningAnotherSourceGivesUpALoadAndCompletesARecording) {
  OpenFile(Recording(100));
  const fs::path other = File(L"camview other.twr"), target = File(L"camview record.twr");
  std::ofstream(other, std::ios::binary) << Recording(100'000);
  constexpr int kAbsentPort = 177;
  camview::OpenFile(view(), other.wstring());
  Connect(view(), kAbsentPort);
  Soon([&] { return view().source.Status().state == LiveState::kAbsent; });
  EXPECT_TRUE(view().source.IsLive() && !IsWorking());
  EXPECT_TRUE(Soon([&] { return view().time.position > 0.1 && Text(IDC_TIME) > L"0:00.000"; })) << "without records";

  chosenPath = target;
  Command(IDM_RECORD);
  EXPECT_NE(Text(IDC_RECORDING).find(L"Recording to camview record.twr"), std::wstring::npos);
  Load(other);
  EXPECT_EQ(L"camview other.twr – Camera viewer", TextOf(window_));
  EXPECT_NE(Text(IDC_RECORDING).find(L"Recorded to camview record.twr"), std::wstring::npos);
  EXPECT_TRUE(IsWindowVisible(Control(IDC_RECORDING)));
  RecordingLoader loader;
  loader.Start(camera::Narrow(chosenPath));
  EXPECT_TRUE(Soon([&] { return loader.IsDone(); }));
  EXPECT_FALSE(loader.Take().isTruncated);

  // Nothing is received, so the recording does not take the place of the file.
  Connect(view(), kAbsentPort);
  std::ofstream(target) << "precious";
  Command(IDM_RECORD);
  Command(IDM_RECORD);
  EXPECT_EQ(L"Nothing was received; camview record.twr is unchanged", Text(IDC_RECORDING));
  EXPECT_EQ("precious", BytesOf(target));
}

BOOL WINAPI FailToRead(HANDLE, void*, DWORD, DWORD*, OVERLAPPED*) {
  SetLastError(ERROR_NETNAME_DELETED);
  return FALSE;
}

TEST_F(CamviewWindow, FollowsARecordingThatIsStillBeingWritten) {
  const std::string whole = Recording(300);
  const size_t end = camera::EncodeEnd(0).size(), chunk = (whole.size() - end - camera::kRecordingHeaderBytes) / 300;
  const auto until = [&](size_t records) { return camera::kRecordingHeaderBytes + records * chunk; };
  const auto append = [&](const fs::path& path, size_t from, size_t to) {
    std::ofstream(path, std::ios::binary | std::ios::app) << whole.substr(from, to - from);
  };
  const auto hasRecords = [&](long long records) { return Soon([&] { return Records()->End() == records; }); };
  OpenFile(whole.substr(0, until(100) + 9));
  const fs::path path = files_.back(), renamed = File(L"camview renamed.twr");
  EXPECT_TRUE(Says(L"The end is missing")) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(0, view().time.position);
  EXPECT_FALSE(view().time.isLive);
  SetFocus(Control(IDC_TIMELINE));
  Press(VK_END);
  const auto isClosed = [&] {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
  };
  EXPECT_TRUE(Soon(isClosed)) << "so that it can be replaced";
  append(path, until(100) + 9, until(200));
  EXPECT_TRUE(hasRecords(200));
  EXPECT_TRUE(Says(L"It is still being written.")) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(1.99, view().time.position) << "it was at the end";
  EXPECT_TRUE(view().time.shown.from == 0 && view().time.shown.to >= 1.99) << "the whole grows";
  Press(VK_SPACE);
  append(path, until(200), until(250));
  EXPECT_TRUE(hasRecords(250));
  EXPECT_EQ(1.99, view().time.position);
  EXPECT_EQ(L"Resu&me", Text(IDC_PLAY));
  {
    const kvtest::ReplacedImport failing("ReadFile", reinterpret_cast<void*>(FailToRead));
    append(path, until(250), until(260));
    EXPECT_TRUE(Soon([&] { return Says(L"cannot be read; trying again."); })) << camera::Narrow(Text(IDC_STATUS));
  }
  EXPECT_TRUE(hasRecords(260) && Says(L"It is still being written."));
  Press(VK_SPACE);
  EXPECT_EQ(2.59, view().time.position);
  EXPECT_TRUE(KeepsRecordsDuringExport([&] {
    fs::rename(path, renamed);
    append(renamed, until(260), until(280));
  }));
  EXPECT_TRUE(hasRecords(280));
  const std::string rows = BytesOf(chosenPath);
  EXPECT_EQ(261, std::ranges::count(rows, '\n'));
  EXPECT_TRUE(Soon([&] { return Says(L"was deleted or renamed"); })) << camera::Narrow(Text(IDC_STATUS));
  append(renamed, until(280), whole.size());
  EXPECT_TRUE(hasRecords(300) && Soon([&] { return !view().source.IsFollowed(); }));
  EXPECT_TRUE(Says(L"300 records in 0:03.0: too irregular to count losses.") && !Says(L"The end") && !Says(L"deleted"))
      << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(3, view().time.position);
  EXPECT_TRUE(Soon([&] { return view().tickMs == 0; }));

  // Written anew while it is followed; then another source is opened, and the window closed, while it is.
  for (const bool isLonger : {false, true}) {
    std::ofstream(path, std::ios::binary) << whole.substr(0, until(100));
    camview::OpenFile(view(), path.wstring());
    EXPECT_TRUE(Soon([&] { return view().source.IsFollowed() && Records()->End() == 100; }));
    append(path, until(100), until(110));
    EXPECT_TRUE(hasRecords(110));
    const std::string other = camera::EncodeHeader({1}) + whole.substr(camera::kRecordingHeaderBytes);
    std::ofstream(path, std::ios::binary) << other.substr(0, until(isLonger ? 200 : 50));
    EXPECT_TRUE(Soon([&] { return Says(L"was shortened or replaced"); })) << camera::Narrow(Text(IDC_STATUS));
    EXPECT_EQ(110, Records()->End());
  }
  for (const bool isOther : {true, false}) {
    std::ofstream(path, std::ios::binary) << whole.substr(0, until(0));
    camview::OpenFile(view(), path.wstring());
    EXPECT_TRUE(Soon([&] { return view().source.IsFollowed() && Says(L"contains no records."); }));
    append(path, until(0), until(110));
    EXPECT_TRUE(Soon([&] { return Records() && view().time.position == 1.09; }));
    if (isOther) Connect(view(), 177);
    EXPECT_EQ(isOther, !view().source.IsFollowed());
  }
}

TEST_F(CamviewWindow, LosesNothingOfAPortThatComesAndGoes) {
  if (!kvtest::SerialLine::CanUnplug()) GTEST_SKIP() << kvtest::kNoComPair;
  kvtest::SerialLine line;
  ASSERT_TRUE(line.isPlugged());
  const auto [port, farPort] = kvtest::GivenComPair();
  auto camera = std::make_unique<kvtest::PlayedCamera>(farPort);
  Open({.port = port});
  EXPECT_TRUE(Soon([&] { return Says(L"has sent nothing for"); })) << camera::Narrow(Text(IDC_STATUS));
  int sent = 0;
  const auto send = [&](int count) {
    for (int i = 0; i < count; ++i, ++sent) camera->Send(RecordBytes(sent));
    return Soon([&] { return Records() && Records()->End() == sent; });
  };
  EXPECT_TRUE(send(10));
  EXPECT_TRUE(Soon([&] { return Says(L"records a second."); })) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_EQ(L"1: 9, 300; 2: 500, 400; 4: 20, 700", Field());
  EXPECT_TRUE(KeepsRecordsDuringExport([&] { camera->Send(RecordBytes(sent++)); }));

  chosenPath = File(L"camview live.twr");
  SetFocus(Control(IDC_TIMELINE));
  Press('R');
  EXPECT_NE(Text(IDC_RECORDING).find(L"Recording to camview live.twr"), std::wstring::npos);
  EXPECT_TRUE(send(5));
  Command(IDM_SHOW_EVENTS);
  Press(VK_SPACE);  // freeze: nothing is lost behind it
  EXPECT_EQ(L"Resu&me", Text(IDC_PLAY));
  EXPECT_TRUE(send(5));
  EXPECT_EQ(L"1: 15, 300; 2: 500, 400; 4: 20, 700", Field());
  Press(VK_SPACE);
  EXPECT_TRUE(Soon([&] { return Field() == L"1: 20, 300; 2: 500, 400; 4: 20, 700"; }));

  camera.reset();
  line.Unplug();
  EXPECT_TRUE(Soon([&] { return Says(L"was disconnected; waiting for it"); })) << camera::Narrow(Text(IDC_STATUS));
  line.PlugIn();
  camera = std::make_unique<kvtest::PlayedCamera>(farPort);
  EXPECT_TRUE(Soon([&] { return Says(L"has sent nothing for"); })) << camera::Narrow(Text(IDC_STATUS));
  EXPECT_TRUE(send(5));
  EXPECT_TRUE(Soon([&] { return kv::SelectedListRow(Control(IDC_EVENTS)) + 1 == view().events.Events().size(); }));
  EXPECT_TRUE(Soon([&] {
    camera->Send("garbage ");
    return Says(L"sends bytes, but no records");
  }));
  EXPECT_TRUE(send(1));
  EXPECT_TRUE(Soon([&] {
    const kvtest::TestBitmap timeline(2000, 60);
    Draw(IDC_TIMELINE, timeline);
    return timeline.CountOf(RGB(220, 130, 0)) > 0;
  })) << "what was malformed, while the port is followed";
  SendMessageW(window_, WM_ENDSESSION, TRUE, 0);  // the process may end now
  MSG quit;
  PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
  RecordingLoader loader;
  loader.Start(camera::Narrow(chosenPath));
  EXPECT_TRUE(Soon([&] { return loader.IsDone(); }));
  const LoadedRecording recorded = loader.Take();
  EXPECT_FALSE(recorded.isTruncated);
  EXPECT_EQ(16, recorded.records);
}

}  // namespace
}  // namespace camview
