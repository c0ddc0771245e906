// camtool watch: prints the records of a port or a recording as lines of text.
#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

constexpr DWORD kTurnMs = 100;
constexpr double kSilentSeconds = 5;

struct Settings {
  double seconds = 0;  // 0 = no limit
  bool csv = false, json = false;
} settings;

const kv::Option kOptions[] = {
    {"--csv", nullptr, "comma-separated values, as export writes them", &settings.csv},
    {"--json", nullptr, "a JSON object on each line", &settings.json},
    {"--seconds", "SECONDS", "end after this time (default: no limit)", kv::NumberOption{&settings.seconds, 0.1, 1e9}},
};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kNoPort, kDamaged, kEmpty};

struct Watcher {
  camera::OutputFile out;
  camera::RecordStream stream;
  std::vector<camera::FoundRecord> found;
  std::string buffer, error;
  bool isOver = false;  // the time limit has passed
};

void AppendText(const camera::FoundRecord& record, std::string* text) {
  *text += camera::Format("%10.3f", record.seconds);
  for (const kv::CameraPoint& point : record.points) {
    const std::string shown = camera::IsSeen(point) ? camera::Format("%ld,%ld", point.x, point.y) : std::string("-");
    *text += camera::Format("  %9s", shown.c_str());
  }
  *text += record.isInvalid ? "  invalid numbers\n" : "\n";
}

void AppendJson(const camera::FoundRecord& record, std::string* text) {
  *text += camera::Format("{\"seconds\":%.6f,\"points\":", record.seconds);
  char separator = '[';
  for (const kv::CameraPoint& point : record.points) {
    *text += separator + (camera::IsSeen(point) ? camera::Format("[%ld,%ld]", point.x, point.y) : std::string("null"));
    separator = ',';
  }
  *text += record.isInvalid ? "],\"invalid\":true}\n" : "]}\n";
}

bool Flush(Watcher* watcher, size_t atLeast = 0) {
  return FlushToOutput(&watcher->out, atLeast, &watcher->buffer, &watcher->error);
}

// Prints the last records found, at once if `isLive`. Returns false when they cannot be written.
bool Show(Watcher* watcher, bool isLive) {
  for (const camera::FoundRecord& record : watcher->found) {
    watcher->isOver = settings.seconds > 0 && record.seconds > settings.seconds;
    if (watcher->isOver) break;
    if (settings.json) {
      AppendJson(record, &watcher->buffer);
    } else if (!settings.csv) {
      AppendText(record, &watcher->buffer);
    } else if (record.isInRange) {
      camera::AppendCsvRow(record, &watcher->buffer);
    }
  }
  return Flush(watcher, isLive ? 0 : camera::kOutputBuffer);
}

// Returns the exit code of a watch that ended early, or kDone.
int EndOf(const Watcher& watcher) {
  if (watcher.error.empty()) return kDone;
  PrintError(watcher.error);
  return kFailed;
}

int WatchRecording(Watcher* watcher, const std::string& path) {
  camera::RecordingFile recording;
  if (const int failure = OpenRecordingOrPrintError(path, &recording); failure != kDone) return failure;
  bool isWritten = true;
  while (isWritten && !IsStopRequested() && !watcher->isOver &&
         NextRecords(&recording, &watcher->stream, &watcher->found)) {
    isWritten = Show(watcher, path == "-");
  }
  // Without an error message, the reader of standard output has closed it.
  isWritten = isWritten && Flush(watcher);
  if (watcher->error.empty()) watcher->error = recording.error;
  const bool isWhole = isWritten && watcher->error.empty() && !watcher->isOver && !IsStopRequested();
  CloseRecording(&recording);
  if (!isWhole) return EndOf(*watcher);
  PrintStreamReport(watcher->stream, DescribeDamage(recording));
  return recording.decoder.damageCount > 0 ? kDamaged : kDone;
}

int WatchPort(Watcher* watcher, int number) {
  camera::Port port;
  if (!OpenPortOrPrintError(number, &port)) return kNoPort;
  camera::PortReader reader(port.handle());
  const double start = camera::Now();
  double lastArrival = start;
  bool isReported = false;
  std::string bytes;
  if (!Flush(watcher)) return EndOf(*watcher);
  while (!IsStopRequested() && !watcher->isOver) {
    double arrival = 0;
    const camera::PortReader::Outcome outcome = reader.Read(kTurnMs, StopEvent(), &bytes, &arrival);
    if (outcome == camera::PortReader::Outcome::kGone) {
      watcher->error = "COM" + std::to_string(number) + " was disconnected";
      break;
    }
    const double now = camera::Now();
    watcher->isOver = settings.seconds > 0 && now - start >= settings.seconds;
    if (outcome == camera::PortReader::Outcome::kBytes) {
      lastArrival = arrival;
      isReported = false;
      watcher->found.clear();
      FeedStream(&watcher->stream, arrival - start, bytes, &watcher->found);
      if (!Show(watcher, true)) return EndOf(*watcher);
    } else if (!isReported && now - lastArrival >= kSilentSeconds) {
      isReported = true;
      PrintError(camera::Format("no data received in %.0f s", kSilentSeconds));
    }
  }
  EndStream(&watcher->stream);
  PrintStreamReport(watcher->stream, "");
  return EndOf(*watcher);
}

int RunWatch(const std::vector<std::string>& operands) {
  if (settings.csv && settings.json) {
    PrintError("--csv and --json exclude each other");
    return kUsageError;
  }
  Watcher watcher;
  if (!camera::OpenOutput("-", false, nullptr, &watcher.out, &watcher.error)) return EndOf(watcher);
  StopEvent();
  if (settings.csv) watcher.buffer = camera::CsvHeader();
  const int port = camera::ParsePort(operands[0]);
  return port > 0 ? WatchPort(&watcher, port) : WatchRecording(&watcher, operands[0]);
}

}  // namespace

const Command kWatchCommand = {"watch",
                               "PORT|FILE",
                               "prints the records of a port, live, or of a recording",
                               "Each line has the time in seconds since the start and the four points; - is a point "
                               "that the camera does not see.\n"
                               "A port is watched until Ctrl+C or --seconds. FILE may be - for standard input. Ends "
                               "when standard output is closed.\n",
                               kOptions,
                               kExits,
                               RunWatch};

}  // namespace camtool
