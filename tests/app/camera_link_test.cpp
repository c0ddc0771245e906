#include "app/camera_link.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <stop_token>
#include <string>
#include <thread>
#include <tuple>

#include "camera/camera_record.h"
#include "tests/support/replaced_import.h"
#include "tests/support/serial_line.h"
#include "tests/support/test_window.h"

namespace kv {
namespace {

using kvtest::PlayedCamera;
using kvtest::SerialLine;
using kvtest::WaitUntil;
using std::chrono::milliseconds;

const int kPort = kvtest::GivenComPair().port, kFarPort = kvtest::GivenComPair().farPort;

bool IsAt(const CameraPoint& point, LONG x, LONG y) {
  return point.x == x && point.y == y;
}

// A context as start-up and the main dialog create it; optionally with the reader thread.
class CameraLinkTest : public testing::Test {
 protected:
  void SetUp() override {
    if (kPort == 0) GTEST_SKIP() << kvtest::kNoComPair;
    ASSERT_TRUE(line_.isPlugged());
    context_.hQuitEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    context_.hConnectEvent = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    context_.nPort = -1;
    context_.hPort = INVALID_HANDLE_VALUE;
  }
  void TearDown() override {
    if (context_.hPort != INVALID_HANDLE_VALUE) CloseHandle(context_.hPort);
    context_.hPort = INVALID_HANDLE_VALUE;
    SetEvent(context_.hQuitEvent);
    if (context_.hReaderThread) {
      EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(context_.hReaderThread, 1000)) << "the reader did not end";
      DWORD code = 0;
      GetExitCodeThread(context_.hReaderThread, &code);
      EXPECT_EQ(1u, code);
      CloseHandle(context_.hReaderThread);
    }
    CloseHandle(context_.hQuitEvent);
    CloseHandle(context_.hConnectEvent);
  }

  void StartReader() {
    context_.hReaderThread = CreateThread(nullptr, 0, CameraReaderThread, &context_, 0, &context_.dwReaderThreadId);
  }
  void OpenAndRead() {
    context_.hPort = OpenCameraPort(kPort);
    ASSERT_NE(INVALID_HANDLE_VALUE, context_.hPort);
    context_.nPort = kPort;
    StartReader();
  }
  bool FirstPointBecomes(LONG x, LONG y, milliseconds limit = milliseconds(3000)) {
    return WaitUntil([&] { return IsAt(context_.points[0], x, y); }, limit);
  }
  // The camera sends continuously; on a busy machine the scan may still receive nothing within its 250 ms.
  bool Connects() { return ConnectCamera(&context_, TRUE) || ConnectCamera(&context_, TRUE); }
  // Sends nothing until a started read has ended.
  void Quiet() { Sleep(60); }

  SerialLine line_;
  PlayedCamera camera_{kFarPort};
  AppContext context_{};
};

std::string RecordOf(LONG x, LONG y) {
  const CameraPoint points[kPointCount] = {{x, y}, {1, 2}, {kNoPoint, kNoPoint}, {4, 5}};
  char record[kRecordLength];
  WriteRecord(points, record);
  return std::string(record, sizeof(record));
}

TEST_F(CameraLinkTest, OpensWithTheCamerasLineSettings) {
  for (const int number : {-1, 0, 1000}) EXPECT_EQ(INVALID_HANDLE_VALUE, OpenCameraPort(number));
  EXPECT_EQ(INVALID_HANDLE_VALUE, OpenCameraPort(97));
  HANDLE port = OpenCameraPort(kPort);
  ASSERT_NE(INVALID_HANDLE_VALUE, port);
  DCB state{};
  state.DCBlength = sizeof(state);
  ASSERT_TRUE(GetCommState(port, &state));
  EXPECT_EQ(std::tuple(38400u, 8, NOPARITY, ONESTOPBIT),
            std::tuple(state.BaudRate, state.ByteSize, state.Parity, state.StopBits));
  EXPECT_FALSE(state.fOutX || state.fInX || state.fOutxCtsFlow || state.fOutxDsrFlow);
  COMMTIMEOUTS timeouts{};
  ASSERT_TRUE(GetCommTimeouts(port, &timeouts));
  EXPECT_EQ(5u, timeouts.ReadIntervalTimeout);
  EXPECT_EQ(0u, timeouts.ReadTotalTimeoutConstant | timeouts.ReadTotalTimeoutMultiplier);

  EXPECT_EQ(1u, SetPortBaudRate(port, 9600));
  ASSERT_TRUE(GetCommState(port, &state));
  EXPECT_EQ(std::tuple(9600u, 8), std::tuple(state.BaudRate, state.ByteSize));
  CloseHandle(port);
  EXPECT_EQ(0u, SetPortBaudRate(port, 9600));
  EXPECT_EQ(0u, SetPortBaudRate(INVALID_HANDLE_VALUE, 9600));
}

HANDLE WINAPI NoEvent(SECURITY_ATTRIBUTES*, BOOL, BOOL, const char*) {
  return nullptr;
}

TEST_F(CameraLinkTest, ReaderRetriesUntilItsEventCanBeCreated) {
  {
    const kvtest::ReplacedImport scarce("CreateEventA", reinterpret_cast<void*>(NoEvent));
    ASSERT_TRUE(scarce.isInPlace());
    OpenAndRead();
    Quiet();
  }
  EXPECT_TRUE(WaitUntil([&] {
    camera_.Send(RecordOf(31, 41));
    return FirstPointBecomes(31, 41, milliseconds(100));
  }));
}

TEST_F(CameraLinkTest, TransactionSendsAndReceives) {
  HANDLE port = OpenCameraPort(kPort);
  OVERLAPPED overlapped{};
  overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  char reply[256] = "untouched";
  EXPECT_EQ(0u, PortTransaction(INVALID_HANDLE_VALUE, nullptr, nullptr, reply, &overlapped));
  EXPECT_EQ(0u, PortTransaction(port, nullptr, nullptr, reply, nullptr));
  EXPECT_EQ(0u, PortTransaction(port, nullptr, nullptr, nullptr, &overlapped));
  EXPECT_EQ(7u, PortTransaction(port, nullptr, "command", nullptr, &overlapped));

  const DWORD start = GetTickCount();
  EXPECT_EQ(0u, PortTransaction(port, nullptr, nullptr, reply, &overlapped));
  EXPECT_GE(GetTickCount() - start, 200u);
  EXPECT_STREQ("untouched", reply);
  CloseHandle(port);

  port = OpenCameraPort(kPort);
  std::thread answer([&] {
    Sleep(60);
    camera_.Send("fifteen bytes..");
  });
  EXPECT_EQ(15u, PortTransaction(port, context_.hQuitEvent, nullptr, reply, &overlapped));
  EXPECT_STREQ("fifteen bytes..", reply);
  answer.join();
  CloseHandle(port);

  // The extra event ends the wait early.
  port = OpenCameraPort(kPort);
  SetEvent(context_.hQuitEvent);
  const DWORD again = GetTickCount();
  EXPECT_EQ(0u, PortTransaction(port, context_.hQuitEvent, nullptr, reply, &overlapped));
  EXPECT_LT(GetTickCount() - again, 150u);
  CloseHandle(port);
  CloseHandle(overlapped.hEvent);
}

// Sends the same bytes periodically during its lifetime.
std::jthread Chatter(PlayedCamera* camera, const std::string& bytes, DWORD periodMs) {
  return std::jthread([=](const std::stop_token& stop) {
    while (!stop.stop_requested()) {
      camera->Send(bytes);
      Sleep(periodMs);
    }
  });
}

TEST_F(CameraLinkTest, ScanSkipsSilentPortsAndTakesTheCameras) {
  const SerialLine silent(SerialLine::CanUnplug() ? kvtest::ComPair{2, 12} : kvtest::ComPair{});
  EXPECT_EQ(0u, ConnectCamera(nullptr, TRUE));
  EXPECT_EQ(0u, ConnectCamera(&context_, TRUE)) << "no data is sent";
  EXPECT_EQ(-1, context_.nPort);
  EXPECT_EQ(INVALID_HANDLE_VALUE, context_.hPort);

  const std::jthread chatter = Chatter(&camera_, RecordOf(1, 2), 40);
  ResetEvent(context_.hConnectEvent);
  ASSERT_TRUE(Connects());
  EXPECT_EQ(kPort, context_.nPort);
  EXPECT_EQ(1u, context_.bConnected);
  EXPECT_NE(INVALID_HANDLE_VALUE, context_.hPort);
  EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(context_.hConnectEvent, 0));

  HANDLE first = context_.hPort;
  ASSERT_TRUE(Connects()) << "connecting again closes the port first";
  DWORD flags = 0;
  EXPECT_TRUE(context_.hPort == first || !GetHandleInformation(first, &flags));
  EXPECT_EQ(1u, ConnectCamera(&context_, FALSE));
  EXPECT_EQ(-1, context_.nPort);
  EXPECT_EQ(0u, context_.bConnected);
}

TEST_F(CameraLinkTest, ScanRequiresMoreThanFifteenBytes) {
  // A busy machine may deliver two pieces as one, or too late: one correct result of several tries is enough.
  const auto answers = [&](size_t pieceBytes, DWORD expected) {
    const std::jthread chatter = Chatter(&camera_, std::string(pieceBytes, '1'), 120);
    for (int tries = 0; tries < 5; ++tries) {
      const DWORD connected = ConnectCamera(&context_, TRUE);
      ConnectCamera(&context_, FALSE);
      if (connected == expected) return true;
    }
    return false;
  };
  EXPECT_TRUE(answers(15, 0));
  EXPECT_TRUE(answers(16, 1));
}

TEST_F(CameraLinkTest, ReaderStoresChangedPointsOnly) {
  OpenAndRead();
  EXPECT_TRUE(IsAt(context_.points[0], 0, 0)) << "nothing before the first record";
  ASSERT_TRUE(camera_.Send("0100,0200,0300,0400,1023,1023,1023,1023\r\n"));
  ASSERT_TRUE(WaitUntil([&] { return context_.bChanged && context_.points[3].x == 1023; }));
  EXPECT_TRUE(IsAt(context_.points[0], 100, 200));
  EXPECT_TRUE(IsAt(context_.points[1], 300, 400));
  EXPECT_TRUE(IsAt(context_.points[2], 1023, 1023));

  context_.bChanged = FALSE;
  ASSERT_TRUE(camera_.Send("0100,0200,0300,0400,1023,1023,1023,1023\r\n"));
  Quiet();
  EXPECT_FALSE(context_.bChanged);
  ASSERT_TRUE(camera_.Send("0100,0200,0300,0400,1023,1023,1023,1022\r\n"));
  EXPECT_TRUE(WaitUntil([&] { return context_.bChanged && IsAt(context_.points[3], 1023, 1022); }));
}

TEST_F(CameraLinkTest, ReaderDropsInvalidRecordsAndResynchronizes) {
  OpenAndRead();
  ASSERT_TRUE(camera_.Send(RecordOf(10, 10)));
  ASSERT_TRUE(FirstPointBecomes(10, 10));
  const std::string disturbed[] = {
      RecordOf(20, 20).substr(7),                                    // starts in the middle
      RecordOf(20, 20).substr(0, 40),                                // one byte short
      RecordOf(20, 20).substr(0, 12) + RecordOf(20, 20).substr(15),  // lost bytes
      "x" + RecordOf(20, 20),                                        // garbage in front
      std::string(300, ','),                                         // only garbage
      std::string(41, '\0'),
  };
  LONG next = 30;
  for (const std::string& bytes : disturbed) {
    ASSERT_TRUE(camera_.Send(bytes));
    Quiet();
    EXPECT_FALSE(IsAt(context_.points[0], 20, 20)) << bytes;
    ASSERT_TRUE(camera_.Send(RecordOf(next, next)));
    EXPECT_TRUE(FirstPointBecomes(next, next)) << "out of sync after " << bytes;
    Quiet();
    ++next;
  }
}

TEST_F(CameraLinkTest, ReaderJoinsARecordOnlyAcrossAShortGap) {
  OpenAndRead();
  const std::string late = RecordOf(50, 51);
  ASSERT_TRUE(camera_.Send(late.substr(0, 20)));
  Quiet();
  ASSERT_TRUE(camera_.Send(late.substr(20)));
  Quiet();
  EXPECT_FALSE(IsAt(context_.points[0], 50, 51)) << "two halves with a pause between them are not a record";

  // A busy machine may extend a gap beyond 5 ms, so one success of several tries is enough.
  bool joined = false;
  for (LONG x = 60; x < 70 && !joined; ++x) {
    const std::string record = RecordOf(x, x);
    camera_.Send(record.substr(0, 17));
    camera_.Send(record.substr(17));
    joined = FirstPointBecomes(x, x, milliseconds(100));
  }
  EXPECT_TRUE(joined);
}

}  // namespace
}  // namespace kv
