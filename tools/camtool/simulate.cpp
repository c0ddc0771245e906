#include <windows.h>

#include <timeapi.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "app/camera_link.h"
#include "app/camera_record.h"
#include "tools/camtool/pace.h"
#include "tools/camtool/paths.h"
#include "tools/camtool/verbs.h"

namespace camtool {

namespace {

// A start bit, 8 data bits and a stop bit for each byte: what the line can carry, in whole records.
constexpr double kHighestRate = static_cast<int>(kv::kCameraBaudRate / 10 / kv::kRecordLength);

struct Options {
  int port = 0;
  double rate = kHighestRate;  // records a second
  double seconds = 0;          // 0 = without end
};

std::atomic<bool> stopRequested{false};

BOOL WINAPI OnConsoleControl(DWORD) {
  stopRequested = true;
  return TRUE;
}

bool ParseNumber(const char* text, double lowest, double highest, double* number) {
  char* end = nullptr;
  *number = std::strtod(text, &end);
  return end != text && *end == '\0' && *number >= lowest && *number <= highest;
}

std::optional<Options> ParseOptions(std::span<char* const> arguments) {
  Options options;
  double port = 0;
  if (arguments.empty() || _strnicmp(arguments[0], "COM", 3) != 0 || !ParseNumber(arguments[0] + 3, 1, 999, &port)) {
    std::fputs("camtool: the port must be COM1 to COM999\n", stderr);
    return std::nullopt;
  }
  options.port = static_cast<int>(port);
  for (size_t i = 1; i < arguments.size(); i += 2) {
    const bool isRate = std::strcmp(arguments[i], "--rate") == 0;
    const bool isSeconds = std::strcmp(arguments[i], "--seconds") == 0;
    const char* value = i + 1 < arguments.size() ? arguments[i + 1] : "";
    if (isRate && ParseNumber(value, 0.1, kHighestRate, &options.rate)) continue;
    if (isSeconds && ParseNumber(value, 0.1, 1e9, &options.seconds)) continue;
    if (isRate) {
      std::fprintf(stderr, "camtool: --rate takes 0.1 to %.0f records a second\n", kHighestRate);
    } else if (isSeconds) {
      std::fputs("camtool: --seconds takes a number of seconds from 0.1\n", stderr);
    } else {
      std::fprintf(stderr, "camtool: unknown option \"%s\"\n", arguments[i]);
    }
    return std::nullopt;
  }
  return options;
}

enum class Sent { kYes, kDropped, kFailed };

// A line without a listener fills up. As a real line would, it then loses the record instead of delaying all later
// ones.
Sent SendRecord(HANDLE port, const char (&record)[kv::kRecordLength], DWORD patienceMs, OVERLAPPED* overlapped) {
  ResetEvent(overlapped->hEvent);
  DWORD written = 0;
  if (WriteFile(port, record, sizeof(record), &written, overlapped)) return Sent::kYes;
  if (GetLastError() != ERROR_IO_PENDING) return Sent::kFailed;
  const bool done = WaitForSingleObject(overlapped->hEvent, patienceMs) == WAIT_OBJECT_0;
  if (!done) CancelIo(port);
  if (!GetOverlappedResult(port, overlapped, &written, TRUE)) return done ? Sent::kFailed : Sent::kDropped;
  return written == sizeof(record) ? Sent::kYes : Sent::kDropped;
}

int Stream(HANDLE port, const Options& options) {
  OVERLAPPED overlapped{};
  overlapped.hEvent = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  const double start = Now();
  long sent = 0, dropped = 0;
  Sent last = Sent::kYes;
  for (long i = 0; !stopRequested && last != Sent::kFailed; ++i) {
    const double due = i / options.rate;
    if (options.seconds > 0 && due >= options.seconds) break;
    SleepUntil(start + due);
    kv::CameraPoint points[kv::kPointCount];
    PointsAt(due, points);
    char record[kv::kRecordLength];
    kv::WriteRecord(points, record);
    last = SendRecord(port, record, static_cast<DWORD>(1000 / options.rate) + 1, &overlapped);
    if (last == Sent::kYes) ++sent;
    if (last == Sent::kDropped) ++dropped;
  }
  CloseHandle(overlapped.hEvent);
  std::printf("%ld records sent, %ld dropped because nobody listened, %.1f s\n", sent, dropped, Now() - start);
  if (last != Sent::kFailed) return kDone;
  std::fprintf(stderr, "camtool: COM%d took no more data\n", options.port);
  return kFailed;
}

}  // namespace

int Simulate(std::span<char* const> arguments) {
  const std::optional<Options> options = ParseOptions(arguments);
  if (!options) return kUsageError;
  HANDLE port = kv::OpenCameraPort(options->port);
  if (port == INVALID_HANDLE_VALUE) {
    std::fprintf(stderr, "camtool: cannot open COM%d; is it there, and not in use?\n", options->port);
    return kFailed;
  }
  SetConsoleCtrlHandler(OnConsoleControl, TRUE);
  std::printf("streaming to COM%d, %.0f records a second; Ctrl+C ends\n", options->port, options->rate);
  std::fflush(stdout);
  // Records are 11 ms apart; the default timer is too coarse for that.
  timeBeginPeriod(1);
  const int result = Stream(port, *options);
  timeEndPeriod(1);
  CloseHandle(port);
  return result;
}

}  // namespace camtool
