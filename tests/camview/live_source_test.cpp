// The live source of camview, on null-modem pairs of COM ports.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "camera/ports.h"
#include "camview/live_source.h"
#include "camview/port_finder.h"
#include "camview/record_store.h"
#include "camview/recording_loader.h"
#include "tests/support/files.h"
#include "tests/support/replaced_import.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace camview {
namespace {

using kvtest::PlayedCamera;
using kvtest::SerialLine;
using kvtest::TemporaryPath;

constexpr char kRecord[] = "0100,0200,0300,0400,1023,1023,0512,0384\r\n";
constexpr char kDark[] = "1023,1023,1023,1023,1023,1023,1023,1023\r\n";

bool Within20Seconds(const std::function<bool()>& condition) {
  return kvtest::WaitUntil(condition, std::chrono::milliseconds(20000));
}

LoadedRecording Load(const std::string& path) {
  RecordingLoader loader;
  loader.Start(path);
  EXPECT_TRUE(Within20Seconds([&] { return loader.IsDone(); }));
  return loader.Take();
}

decltype(&WriteFile) RealWriteFile() {
  return reinterpret_cast<decltype(&WriteFile)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "WriteFile")));
}

// WriteFile for a full disk, which writes only a part of the data. Writing to ports (overlapped) succeeds.
BOOL WINAPI WriteToFullDisk(HANDLE file, const void* bytes, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
  if (overlapped || GetFileType(file) != FILE_TYPE_DISK) return RealWriteFile()(file, bytes, size, written, overlapped);
  RealWriteFile()(file, bytes, size / 2, written, nullptr);
  SetLastError(ERROR_DISK_FULL);
  return FALSE;
}

TEST(CamviewLive, ClassifiesALineByItsLastData) {
  const auto judge = [](const LineTimes& times, double now) {
    const LineJudgment judgment = JudgeLine(times, now);
    return std::pair(judgment.state, judgment.since);
  };
  EXPECT_EQ(std::pair(LiveState::kOpening, 5.0), judge({5, 2, 2, 2}, 5.5));
  EXPECT_EQ(std::pair(LiveState::kSilent, 5.0), judge({5, 2, 2, 2}, 8));
  EXPECT_EQ(std::pair(LiveState::kSilent, 6.0), judge({5, 6, 6, 6}, 9));
  EXPECT_EQ(std::pair(LiveState::kMalformed, 6.0), judge({5, 8.9, 6, 6}, 9));
  EXPECT_EQ(std::pair(LiveState::kDark, 6.0), judge({5, 8.9, 8.9, 6}, 9));
  EXPECT_EQ(std::pair(LiveState::kRecords, 5.0), judge({5, 8.9, 8.9, 8.5}, 9));
}

TEST(CamviewLive, ReconnectsAfterDisconnectionAndContinuesRecording) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine has no pair of ports that can be unplugged";
  const std::string path = TemporaryPath("camview live.twr");
  DeleteFileA(path.c_str());
  LiveSource live(3);
  IntakeBatch batch;
  const auto isInState = [&](LiveState state) { return live.Status().state == state; };
  EXPECT_TRUE(Within20Seconds([&] { return isInState(LiveState::kAbsent); }));
  SerialLine line({3, 4});
  PlayedCamera camera(4);
  EXPECT_TRUE(Within20Seconds([&] { return isInState(LiveState::kSilent); }));
  DWORD error = 0;
  ASSERT_TRUE(live.StartRecording(path, false, &error)) << error;
  EXPECT_FALSE(live.StartRecording(path + "2", false, &error)) << "one at a time";
  const auto send = [&](std::string_view bytes, LiveState state) {
    EXPECT_TRUE(Within20Seconds([&] {
      camera.Send(bytes);
      Sleep(5);
      return isInState(state);
    })) << bytes
        << static_cast<int>(live.Status().state);
  };
  send(kRecord, LiveState::kRecords);
  send(kDark, LiveState::kDark);
  send("garbage", LiveState::kMalformed);
  send(kRecord, LiveState::kRecords);
  EXPECT_GT(live.Status().recordsPerSecond, 10);
  line.Unplug();
  EXPECT_TRUE(Within20Seconds([&] { return isInState(LiveState::kGone); }));
  line.PlugIn();
  camera.Reopen();
  EXPECT_TRUE(Within20Seconds([&] { return isInState(LiveState::kSilent); }));
  const long long before = live.Status().records;
  send(kRecord, LiveState::kRecords);
  const LiveStatus status = live.Status();
  EXPECT_GT(status.records, before);
  EXPECT_EQ(LiveRecordingState::kOn, status.recording.state);
  // The file, which is intact while it is written, contains the delivered data.
  for (long long bytes = -1; bytes != live.Status().bytes; Sleep(200)) bytes = live.Status().bytes;
  live.Take(&batch);
  LoadedRecording loaded = Load(path);
  EXPECT_TRUE(loaded.isTruncated);
  EXPECT_EQ(0, loaded.damageCount);
  live.StopRecording();
  EXPECT_EQ(LiveRecordingState::kComplete, live.Status().recording.state);
  loaded = Load(path);
  EXPECT_FALSE(loaded.isTruncated);
  EXPECT_EQ(3u, loaded.header.port);
  ASSERT_EQ(batch.records.size(), static_cast<size_t>(loaded.store->End()));
  const double shift = batch.records[0].seconds - loaded.store->Seconds(0);
  for (size_t i = 0; i < batch.records.size(); ++i) {
    EXPECT_NEAR(batch.records[i].seconds - shift, loaded.store->Seconds(static_cast<long long>(i)), 1e-5);
  }
  RecordStore store;
  EXPECT_TRUE(StoreBatch(&batch, &store));
  EXPECT_FALSE(store.Sections(SectionKind::kMalformed).empty());
  EXPECT_GE(store.Sections(SectionKind::kSilent).size(), 2u) << "before the first record, and while disconnected";
  // The beginning of a record from before an interruption and the end of one from after it are not a record.
  const long long records = live.Status().records;
  const auto receive = [&](std::string_view bytes) {
    const long long requested = live.Status().bytes + static_cast<long long>(bytes.size());
    camera.Send(bytes);
    EXPECT_TRUE(Within20Seconds([&] { return live.Status().bytes == requested; }));
  };
  receive(std::string_view(kRecord).substr(0, 20));
  line.Unplug();
  EXPECT_TRUE(Within20Seconds([&] { return isInState(LiveState::kGone); }));
  line.PlugIn();
  camera.Reopen();
  EXPECT_TRUE(Within20Seconds([&] { return isInState(LiveState::kSilent); }));
  receive(std::string_view(kRecord).substr(20));
  EXPECT_EQ(records, live.Status().records);
  EXPECT_TRUE(Within20Seconds([&] {
    batch = {};
    live.Take(&batch);
    return !batch.sections.empty() && batch.sections.back().kind == SectionKind::kSilent;
  })) << "before it ends";
  DeleteFileA(path.c_str());
}

TEST(CamviewLive, ReportsTheOwnerOfABusyPortAndAFullDisk) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create a pair of ports";
  SerialLine line({3, 4});
  LiveSource live(3);
  EXPECT_TRUE(Within20Seconds([&] { return live.Status().state == LiveState::kSilent; }));
  {
    LiveSource second(3);
    EXPECT_TRUE(Within20Seconds([&] { return second.Status().state == LiveState::kBusy; }));
  }
  DWORD error = 0;
  EXPECT_FALSE(live.StartRecording(TemporaryPath("camview no folder\\a.twr"), false, &error));
  EXPECT_EQ(static_cast<DWORD>(ERROR_PATH_NOT_FOUND), error);
  EXPECT_EQ(LiveRecordingState::kNone, live.Status().recording.state);

  // The disk is full during recording: the written part is intact, and the display continues.
  const std::string path = TemporaryPath("camview full.twr");
  DeleteFileA(path.c_str());
  PlayedCamera camera(4);
  const auto sendUntil = [&](const std::function<bool(const LiveStatus&)>& condition) {
    EXPECT_TRUE(Within20Seconds([&] {
      camera.Send(kRecord);
      Sleep(5);
      return condition(live.Status());
    }));
  };
  ASSERT_TRUE(live.StartRecording(path, false, &error)) << error;
  sendUntil([](const LiveStatus& status) { return status.recording.bytes > 200; });
  {
    const kvtest::ReplacedImport full("WriteFile", reinterpret_cast<void*>(WriteToFullDisk));
    ASSERT_TRUE(full.isInPlace());
    sendUntil([](const LiveStatus& status) { return status.recording.state == LiveRecordingState::kFailed; });
  }
  const LiveStatus failed = live.Status();
  EXPECT_EQ(static_cast<DWORD>(ERROR_DISK_FULL), failed.recording.systemError);
  sendUntil([&](const LiveStatus& status) { return status.records > failed.records + 5; });
  const LoadedRecording loaded = Load(path);
  EXPECT_EQ(failed.recording.bytes, loaded.bytes);
  EXPECT_EQ(0, loaded.truncatedBytes);
  EXPECT_TRUE(live.StartRecording(path, true, &error)) << error << ": another recording can start";
  live.StopRecording();
  DeleteFileA(path.c_str());
}

TEST(CamviewPorts, AreReportedOnceWithTheirData) {
  if (!SerialLine::CanUnplug()) GTEST_SKIP() << "this machine cannot create pairs of ports";
  SerialLine cameraLine({7, 8}), talking({5, 6}), silent({9, 10});
  PlayedCamera camera(8), talker(6);
  camera::Port own;
  ASSERT_EQ(camera::PortState::kOpened, camera::OpenPort(10, nullptr, &own).state);
  PortFinder finder;
  std::map<int, FoundState> states;
  int reports = 0;
  const auto isAsExpected = [&] {
    return states[7] == FoundState::kCamera && states[5] == FoundState::kSending && states[9] == FoundState::kSilent &&
           states[10] == FoundState::kBusy;
  };
  // A scan has a time limit, within which a busy machine may open or receive too little: the next one finds the rest.
  EXPECT_TRUE(Within20Seconds([&] {
    reports = 0;
    for (finder.Start(); !finder.IsDone(); Sleep(5)) {
      camera.Send(kRecord);
      talker.Send("hello ");
      for (const FoundPort& port : finder.Take()) {
        states[port.number] = port.state;
        reports += port.number >= 5;
      }
    }
    return isAsExpected();
  })) << "states "
      << static_cast<int>(states[7]) << ' ' << static_cast<int>(states[5]) << ' ' << static_cast<int>(states[9]) << ' '
      << static_cast<int>(states[10]);
  EXPECT_EQ(6, reports) << "each present port once";
}

}  // namespace
}  // namespace camview
