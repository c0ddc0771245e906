// camtool simulate: simulates the camera, with the faults of a serial line.
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "camera/camera_port.h"
#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/ports.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "camtool/faults.h"
#include "camtool/point_paths.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

// 10 bits for each byte: the maximum number of complete records per second.
constexpr double kMaxRate = static_cast<int>(kv::kCameraBaudRate / 10 / kv::kRecordLength);
constexpr size_t kMaxPathFileBytes = 64 * 1024 * 1024;
constexpr double kReopenSeconds = 0.25;

struct Settings {
  double rate = kMaxRate;  // records a second
  double seconds = 0;      // 0 = no limit
  double seed = 1;
  std::string path;
  FaultPlan faults;
} settings;

kv::ParsedOption HowOften(Fault fault) {
  return kv::ParsedBy<ParseTrigger>(&settings.faults.triggers[fault],
                                    "a probability for each record (5%), a count (50) or a period (10s, 500ms)");
}

const kv::Option kOptions[] = {
    {"--rate", "RECORDS", "records a second (default 93)", kv::NumberOption{&settings.rate, 0.1, kMaxRate}},
    {"--seconds", "SECONDS", "end after this time (default: no limit)", kv::NumberOption{&settings.seconds, 0.1, 1e9}},
    {"--path", "FILE", "points from comma-separated values, as export writes them (default: built-in curves)",
     &settings.path},
    {"--drop", "HOW-OFTEN", "omit a record", HowOften(kDropFault)},
    {"--duplicate", "HOW-OFTEN", "send a record twice", HowOften(kDuplicateFault)},
    {"--corrupt", "HOW-OFTEN", "replace one to three bytes of a record", HowOften(kCorruptFault)},
    {"--truncate", "HOW-OFTEN", "end a record early", HowOften(kTruncateFault)},
    {"--merge", "HOW-OFTEN", "let a record run into the next one, without closing bytes", HowOften(kMergeFault)},
    {"--garbage", "HOW-OFTEN", "send up to 64 random bytes before a record", HowOften(kGarbageFault)},
    {"--pause", "HOW-OFTEN", "send nothing for some time", HowOften(kPauseFault)},
    {"--pause-seconds", "SECONDS", "how long (default 0.5)",
     kv::NumberOption{&settings.faults.pauseSeconds, 0.001, 3600}},
    {"--disconnect", "HOW-OFTEN", "close the port for some time, then open it again", HowOften(kDisconnectFault)},
    {"--disconnect-seconds", "SECONDS", "how long (default 2)",
     kv::NumberOption{&settings.faults.disconnectSeconds, 0.001, 3600}},
    {"--slow", "HOW-OFTEN", "send at a quarter of the rate for some time", HowOften(kSlowFault)},
    {"--fast", "HOW-OFTEN", "send at three times the rate for some time", HowOften(kFastFault)},
    {"--rate-change-seconds", "SECONDS", "how long slow and fast last (default 2)",
     kv::NumberOption{&settings.faults.rateChangeSeconds, 0.01, 3600}},
    {"--seed", "NUMBER", "the same number gives the same faults (default 1)",
     kv::NumberOption{&settings.seed, 0, 4294967295.0}},
};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kNoPort, kEmpty};

constexpr char kDetails[] =
    "Runs until Ctrl+C or --seconds. HOW-OFTEN is a probability for each record (5% or 0.05), a count (50: every 50th\n"
    "record) or a period of the camera's own time (10s, 500ms); without the option, the fault does not happen.\n"
    "A file of --path has a row for each moment with up to four x,y pairs, with the time in seconds before them or\n"
    "without; then each row is for one record. FILE may be - for standard input.\n";

struct Camera {
  int number;
  camera::Port port;
  PointPath path;  // no rows: the built-in curves
  FaultInjector faults;
  double start;
  long sent = 0, lost = 0;
  bool isGone = false;
};

std::string RecordAt(const Camera& camera, double seconds, long index) {
  kv::CameraPoint points[kv::kPointCount];
  if (camera.path.rows.empty()) {
    PointsAt(seconds, points);
  } else {
    PointsOnPath(camera.path, seconds, index, points);
  }
  char record[kv::kRecordLength];
  kv::WriteRecord(points, record);
  return std::string(record, sizeof(record));
}

// Closes the port and opens it again, as with a loose plug; waits as long as another program uses it.
void HangUp(Camera* camera, double until) {
  camera->port.Close();
  while (camera::WaitUntil(until, StopEvent())) {
    camera::OpenPort(camera->number, nullptr, &camera->port);
    if (camera->port.isOpen()) return;
    until += kReopenSeconds;
  }
}

void Stream(Camera* camera) {
  // `due` is the camera's clock, by which faults repeat; delays of the line do not affect it.
  double due = 0;
  ProgressLine progress;
  for (long i = 0; !camera->isGone; ++i) {
    if (settings.seconds > 0 && due >= settings.seconds) return;
    if (!camera::WaitUntil(camera->start + due, StopEvent())) return;
    const FaultStep step = InjectFaults(&camera->faults, due, RecordAt(*camera, due, i));
    const auto timeoutMs = static_cast<DWORD>(1000 / settings.rate) + 1;
    const camera::Written written =
        camera::WritePort(camera->port.handle(), step.bytes.data(), step.bytes.size(), timeoutMs);
    if (!step.bytes.empty()) ++(written == camera::Written::kAll ? camera->sent : camera->lost);
    camera->isGone = written == camera::Written::kGone;
    due += 1 / (settings.rate * step.pace) + step.pauseSeconds + step.disconnectSeconds;
    if (step.disconnectSeconds > 0 && !camera->isGone) HangUp(camera, camera->start + due);
    if (progress.IsDue()) progress.Show(camera::Format("%7.1f s  %ld records sent", due, camera->sent));
  }
}

void PrintSummary(const Camera& camera) {
  std::printf("%ld records sent, %ld dropped because nothing read them, %.1f s\n", camera.sent, camera.lost,
              camera::Now() - camera.start);
  std::string faults;
  for (int i = 0; i < kFaultCount; ++i) {
    if (settings.faults.triggers[i].kind == Trigger::kNever) continue;
    faults += (faults.empty() ? "faults: " : ", ") + std::to_string(camera.faults.happened[i]) + " " + kFaultNames[i];
  }
  if (!faults.empty()) std::printf("%s (seed %.0f)\n", faults.c_str(), settings.seed);
}

int ReadPath(PointPath* path) {
  std::string text, error;
  if (camera::ReadWholeFile(settings.path, kMaxPathFileBytes, &text, &error) && text.empty()) {
    PrintError("\"" + settings.path + "\" is empty");
    return kEmpty;
  }
  if (text.starts_with(camera::kRecordingMagic)) {
    error = "\"" + settings.path +
            "\" is a recording; send it with \"camtool replay\", or convert it with \"camtool export\"";
  }
  if (error.empty() && !ParsePath(text, path, &error)) error = "\"" + settings.path + "\": " + error;
  if (error.empty()) return kDone;
  PrintError(error);
  return kFailed;
}

int RunSimulate(const std::vector<std::string>& operands) {
  Camera camera{};
  camera.number = PortOrPrintError(operands[0]);
  if (camera.number == 0) return kUsageError;
  const int read = settings.path.empty() ? kDone : ReadPath(&camera.path);
  if (read != kDone) return read;
  StopEvent();
  if (!OpenPortOrPrintError(camera.number, &camera.port)) return kNoPort;
  settings.faults.seed = static_cast<std::uint32_t>(settings.seed);
  camera.faults = MakeFaultInjector(settings.faults);
  camera.start = camera::Now();
  std::printf("streaming to COM%d, %.0f records a second; Ctrl+C ends\n", camera.number, settings.rate);
  std::fflush(stdout);
  Stream(&camera);
  PrintSummary(camera);
  if (!camera.isGone) return kDone;
  PrintError("COM" + std::to_string(camera.number) + " was disconnected");
  return kFailed;
}

}  // namespace

const Command kSimulateCommand = {
    "simulate", "PORT",     "sends records to a port as a camera would, optionally with faults", kDetails, kOptions,
    kExits,     RunSimulate};

}  // namespace camtool
