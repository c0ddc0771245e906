#include "tests/support/serial_line.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "camera/camera_port.h"
#include "camera/camera_record.h"

namespace kvtest {

namespace {

// KV_SOURCE_DIR is the project's folder on the machine that runs Wine; its file system is drive Z.
bool IsMarked(int port) {
  const char* desktop = std::getenv("KV_DESKTOP");
  char path[MAX_PATH];
  std::snprintf(path, sizeof(path), "Z:%s/build/serial%s/line-com%d.pid", KV_SOURCE_DIR, desktop ? desktop : "", port);
  return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

// Wine starts native programs without a handle to wait for: the marker file shows when one has ended.
bool RunPairScript(const std::string& arguments, int port, bool expectMarked) {
  std::string command = "\"Z:\\bin\\bash\" \"" KV_SOURCE_DIR "/tools/serial_pair.sh\" " + arguments;
  STARTUPINFOA start{};
  start.cb = sizeof(start);
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process)) {
    return false;
  }
  for (int waited = 0; waited < 10000; waited += 5) {
    if (IsMarked(port) == expectMarked) return true;
    Sleep(5);
  }
  return false;
}

}  // namespace

ComPair GivenComPair() {
  if (SerialLine::CanUnplug()) return {3, 4};
  ComPair pair{};
  const char* given = std::getenv("KV_COM_PAIR");
  const bool whole = given && std::sscanf(given, "COM%d,COM%d", &pair.port, &pair.farPort) == 2;
  return whole ? pair : ComPair{};
}

bool SerialLine::CanUnplug() {
  static const bool isWine = GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
  return isWine;
}

SerialLine::SerialLine(ComPair pair) : pair_(pair) {
  PlugIn();
}

SerialLine::~SerialLine() {
  Unplug();
}

void SerialLine::Unplug() {
  if (plugged_ && CanUnplug()) RunPairScript("unplug com" + std::to_string(pair_.port), pair_.port, false);
  plugged_ = false;
}

void SerialLine::PlugIn() {
  const std::string ports = "com" + std::to_string(pair_.port) + " com" + std::to_string(pair_.farPort);
  plugged_ = CanUnplug() ? RunPairScript("plug " + ports, pair_.port, true) : pair_.port != 0;
}

PlayedCamera::PlayedCamera(int farPort)
    : farPort_(farPort), port_(kv::OpenCameraPort(farPort)), written_(CreateEventA(nullptr, TRUE, FALSE, nullptr)) {}

PlayedCamera::~PlayedCamera() {
  if (isOpen()) CloseHandle(port_);
  CloseHandle(written_);
}

void PlayedCamera::Reopen() {
  if (isOpen()) CloseHandle(port_);
  port_ = kv::OpenCameraPort(farPort_);
}

bool PlayedCamera::Send(std::string_view bytes) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = written_;
  ResetEvent(written_);
  DWORD written = 0;
  if (!WriteFile(port_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, &overlapped)) {
    if (GetLastError() != ERROR_IO_PENDING) return false;
    if (WaitForSingleObject(written_, 100) != WAIT_OBJECT_0) CancelIo(port_);
    if (!GetOverlappedResult(port_, &overlapped, &written, TRUE)) return false;
  }
  return written == bytes.size();
}

bool PlayedCamera::SendRecord(const kv::CameraPoint (&points)[kv::kPointCount]) {
  char record[kv::kRecordLength];
  kv::WriteRecord(points, record);
  return Send(std::string_view(record, sizeof(record)));
}

}  // namespace kvtest
