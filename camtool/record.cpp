// camtool record: records what a port receives.
#include <windows.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "app/camera_link.h"
#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/arguments.h"
#include "camtool/commands.h"
#include "camtool/console.h"

namespace camtool {

namespace {

constexpr DWORD kTurnMs = 100;
constexpr double kFlushSeconds = 1;
constexpr DWORD kForwardPatienceMs = 20;

struct Settings {
  double seconds = 0;  // 0 = without end
  double size = 0;     // bytes of the file, 0 = without limit
  bool overwrite = false;
  std::string forward;
} settings;

const Option kOptions[] = {
    {"--seconds", "SECONDS", "end after this time (default: no limit)", NumberOption{&settings.seconds, 0.1, 1e9}},
    {"--size", "BYTES", "end before the file is larger than this, such as 10M (default: no limit)",
     SizeOption{&settings.size}},
    {"--forward", "PORT", "send the bytes to this port as well, for Tarnwick to show", &settings.forward},
    {"--overwrite", nullptr, "replace an existing file", &settings.overwrite},
};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kNoPort};

struct Recorder {
  camera::Port port, forward;
  camera::OutputFile file;
  double start = 0, lastFlush = 0;
  camera::RecordStream stream;
  std::string error;
};

std::uint64_t Microseconds(double seconds) {
  return static_cast<std::uint64_t>(std::llround(seconds * 1e6));
}

bool Append(Recorder* recorder, const std::string& encoded) {
  return camera::AppendToOutput(&recorder->file, encoded, &recorder->error);
}

bool Begin(Recorder* recorder, int port) {
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  recorder->start = recorder->lastFlush = camera::Now();
  const std::uint64_t startTime = (std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime;
  const std::string header = camera::EncodeHeader({startTime, kv::kCameraBaudRate, static_cast<std::uint32_t>(port)});
  // What a recording replaces stays until the new one holds something.
  return Append(recorder, header) &&
         (recorder->file.replaces || camera::PublishOutput(&recorder->file, &recorder->error));
}

// False when the chunk would make the file too large (the end's chunk must fit, too) or was not written.
bool Store(Recorder* recorder, double seconds, const std::string& bytes) {
  const std::string chunk = camera::EncodeChunks(Microseconds(seconds), bytes);
  const double size =
      static_cast<double>(recorder->file.size) + static_cast<double>(chunk.size() + camera::kChunkOverhead);
  if (settings.size > 0 && size > settings.size) return false;
  if (!Append(recorder, chunk) || !camera::PublishOutput(&recorder->file, &recorder->error)) return false;
  camera::FeedStream(&recorder->stream, seconds, bytes, nullptr);
  if (recorder->forward.isOpen()) {
    camera::WritePort(recorder->forward.handle(), bytes.data(), bytes.size(), kForwardPatienceMs);
  }
  // A crash of this process loses nothing; a machine that loses its power loses at most this much.
  if (recorder->file.path != "-" && seconds + recorder->start - recorder->lastFlush >= kFlushSeconds) {
    FlushFileBuffers(recorder->file.file);
    recorder->lastFlush = seconds + recorder->start;
  }
  return true;
}

std::string Progress(const Recorder& recorder, double seconds, long long recordsBefore, double secondsBefore) {
  const double rate = seconds > secondsBefore
                          ? static_cast<double>(recorder.stream.records - recordsBefore) / (seconds - secondsBefore)
                          : 0;
  return camera::Format("%7.1f s  %5.1f records/s  %lld records  %lld bytes", seconds, rate, recorder.stream.records,
                        recorder.stream.bytes);
}

// Returns the sentence that says why the recording ended before its time, or "".
std::string Record(Recorder* recorder, int port) {
  HANDLE stop = StopEvent();
  camera::PortReader reader(recorder->port.handle());
  ProgressLine progress;
  long long recordsShown = 0;
  double secondsShown = 0;
  std::string bytes;
  for (;;) {
    double now = camera::Now() - recorder->start, arrival = 0;
    if (IsStopRequested() || (settings.seconds > 0 && now >= settings.seconds)) return {};
    const camera::PortReader::Outcome outcome = reader.Read(kTurnMs, stop, &bytes, &arrival);
    if (outcome == camera::PortReader::Outcome::kGone) {
      return "COM" + std::to_string(port) + " was disconnected; everything recorded until then is intact";
    }
    if (outcome == camera::PortReader::Outcome::kBytes && !Store(recorder, arrival - recorder->start, bytes)) {
      return recorder->error.empty() ? std::string() : recorder->error + "; everything recorded until then is intact";
    }
    now = camera::Now() - recorder->start;
    if (!progress.IsDue()) continue;
    progress.Show(Progress(*recorder, now, recordsShown, secondsShown));
    recordsShown = recorder->stream.records;
    secondsShown = now;
  }
}

int RecordTo(Recorder* recorder, int port) {
  if (!Begin(recorder, port)) {
    PrintError(recorder->error);
    return kFailed;
  }
  const std::string failure = Record(recorder, port);
  const double seconds = camera::Now() - recorder->start;
  std::string unused;
  camera::AppendToOutput(&recorder->file, camera::EncodeEnd(Microseconds(seconds)), &unused);
  camera::EndStream(&recorder->stream);
  const camera::RecordStream& stream = recorder->stream;
  FILE* out = recorder->file.path == "-" ? stderr : stdout;
  std::fprintf(out, "%lld records, %lld bytes, %.1f s to %s\n", stream.records, stream.bytes, seconds,
               recorder->file.path == "-" ? "standard output" : recorder->file.path.c_str());
  if (stream.malformedStretches > 0) {
    std::fprintf(out, "%s; they are in the recording, too\n", camera::DescribeMalformed(stream).c_str());
  }
  if (stream.bytes == 0) {
    PrintError(camera::Format("no data received in %.0f s", seconds) +
               (recorder->file.part.empty() ? "" : "; \"" + recorder->file.path + "\" was left as it was") +
               "; run \"camtool scan\" to see which ports send");
  }
  if (failure.empty()) return kDone;
  PrintError(failure);
  return kFailed;
}

int RunRecord(const std::vector<std::string>& operands) {
  const int port = PortOrPrintError(operands[0]);
  const int forward = settings.forward.empty() ? 0 : PortOrPrintError(settings.forward);
  if (port == 0 || (forward == 0 && !settings.forward.empty())) return kUsageError;
  if (forward == port) {
    PrintError("--forward requires another port than the one that is recorded");
    return kUsageError;
  }
  if (operands[1] == "-" && IsConsole(GetStdHandle(STD_OUTPUT_HANDLE))) {
    PrintError("standard output is a console; redirect it to a file or another program");
    return kUsageError;
  }
  Recorder recorder;
  if (!OpenPortOrPrintError(port, &recorder.port)) return kNoPort;
  if (forward && !OpenPortOrPrintError(forward, &recorder.forward)) return kNoPort;
  int result = kFailed;
  if (camera::OpenOutput(operands[1], settings.overwrite, nullptr, &recorder.file, &recorder.error)) {
    result = RecordTo(&recorder, port);
  } else {
    PrintError(recorder.error);
  }
  camera::CloseOutput(&recorder.file);
  return result;
}

}  // namespace

const Command kRecordCommand = {
    "record",
    "PORT FILE",
    "records what a port receives, with the time of each arrival",
    "Runs until Ctrl+C or a limit. The recording stays readable wherever it ends. FILE may be - for standard output.\n",
    kOptions,
    kExits,
    RunRecord};

}  // namespace camtool
