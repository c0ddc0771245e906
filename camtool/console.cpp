#include "camtool/console.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/text.h"
#include "camtool/commands.h"

namespace camtool {

namespace {

constexpr DWORD kConsolePeriodMs = 250;
constexpr DWORD kLogPeriodMs = 10000;
// Windows ends a process five seconds after its console is closed.
constexpr DWORD kClosingMs = 4500;

HANDLE stopEvent = nullptr;
std::atomic<bool> isStopRequested{false};  // set by the handler's thread

BOOL WINAPI OnConsoleControl(DWORD event) {
  isStopRequested = true;
  SetEvent(stopEvent);
  // After these events the process ends when this handler returns; wait until the main thread has finished.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kClosingMs);
  return TRUE;
}

}  // namespace

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != FALSE;
}

HANDLE StopEvent() {
  if (!stopEvent) {
    stopEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    // A process started in the background may inherit that it ignores Ctrl+C.
    SetConsoleCtrlHandler(nullptr, FALSE);
    SetConsoleCtrlHandler(OnConsoleControl, TRUE);
  }
  return stopEvent;
}

bool IsStopRequested() {
  return isStopRequested;
}

void PrintError(const std::string& sentence) {
  std::fflush(stdout);
  std::fprintf(stderr, "camtool: %s\n", sentence.c_str());
}

bool OpenPortOrPrintError(int number, camera::Port* port) {
  const camera::PortStatus status = camera::OpenPort(number, nullptr, port);
  if (!port->isOpen()) {
    PrintError((status.state == camera::PortState::kBusy ? "busy: " : "") + camera::WhyNotOpened(number, status));
  }
  return port->isOpen();
}

int OpenRecordingOrPrintError(const std::string& path, camera::RecordingFile* recording) {
  if (camera::ParsePort(path) > 0) {
    PrintError(path + " is a port, not a recording; \"camtool watch " + path + "\" shows what it sends");
    return kUsageError;
  }
  recording->stop = StopEvent();
  if (!camera::OpenRecording(path, recording)) {
    PrintError(recording->error);
    return recording->failure == camera::OpenFailure::kEmpty ? kEmpty : kFailed;
  }
  return kDone;
}

int PortOrPrintError(const std::string& text) {
  const int port = camera::ParsePort(text);
  if (port == 0) PrintError("\"" + text + "\" is not a port; ports are COM1 to COM999");
  return port;
}

void PrintStreamReport(const camera::RecordStream& stream, const std::string& damage) {
  const auto counted = [](long long count, const char* noun) {
    return camera::Counted(static_cast<unsigned long long>(count), noun);
  };
  std::string text = counted(stream.records, "record") + "; " + DescribeMalformed(stream);
  if (stream.leadBytes > 0) text += "; began within a record, " + counted(stream.leadBytes, "byte") + " of it";
  if (!stream.pending.empty()) {
    text += "; ended within a record, " + counted(static_cast<long long>(stream.pending.size()), "byte") + " of it";
  }
  if (stream.invalidRecords > 0) {
    text += "; " + counted(stream.invalidRecords, "record with invalid numbers") +
            " (a number is not all digits), read as Tarnwick reads them";
  }
  if (stream.outOfRange > 0) {
    text += "; " + std::to_string(stream.outOfRange) + " of them not exported: a coordinate is not within 0 to 1023";
  }
  std::fputs(text.c_str(), stderr);
  std::fputs("\n", stderr);
  for (const camera::MalformedSection& section : stream.sections) {
    std::fprintf(stderr, "  at %.6f s, %s: %s%s\n", section.seconds, counted(section.bytes, "byte").c_str(),
                 camera::Printable(section.sample).c_str(),
                 section.bytes > static_cast<long long>(section.sample.size()) ? " ..." : "");
  }
  const auto more = stream.malformedSections - static_cast<long long>(stream.sections.size());
  if (more > 0) std::fprintf(stderr, "  and %lld more\n", more);
  if (!damage.empty()) PrintError(damage);
}

ProgressLine::ProgressLine() : isConsole_(IsConsole(GetStdHandle(STD_ERROR_HANDLE))), nextMs_(GetTickCount64()) {
  if (!isConsole_) nextMs_ += kLogPeriodMs;
}

ProgressLine::~ProgressLine() {
  Clear();
}

bool ProgressLine::IsDue() {
  return GetTickCount64() >= nextMs_;
}

void ProgressLine::Show(const std::string& text) {
  nextMs_ = GetTickCount64() + (isConsole_ ? kConsolePeriodMs : kLogPeriodMs);
  if (!isConsole_) {
    std::fprintf(stderr, "%s\n", text.c_str());
    return;
  }
  std::fprintf(stderr, "\r%-*s", static_cast<int>(width_), text.c_str());
  width_ = text.size();
}

void ProgressLine::Clear() {
  if (width_ > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(width_), "");
  width_ = 0;
}

}  // namespace camtool
