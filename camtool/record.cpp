// camtool record: records what a port receives.
#include <windows.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/recorder.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

constexpr DWORD kTurnMs = 100;
constexpr DWORD kForwardTimeoutMs = 20;
constexpr double kSmallestSize = camera::kRecordingHeaderBytes + 2 * camera::kChunkOverhead + kv::kRecordLength;

// A number of bytes with an optional suffix K, M or G (1024 each).
bool ParseSize(std::string_view text, double* bytes) {
  constexpr std::string_view kUnits = "KMG";
  const size_t unit = text.empty() ? kUnits.npos : kUnits.find(static_cast<char>(text.back() & ~0x20));
  double factor = 1;
  if (unit != kUnits.npos) {
    factor = std::pow(1024.0, static_cast<double>(unit + 1));
    text.remove_suffix(1);
  }
  if (!kv::ParseNumber(text, bytes) || *bytes * factor < 1 || *bytes * factor > 1e15) return false;
  *bytes *= factor;
  return true;
}

struct Settings {
  double seconds = 0;  // 0 = no limit
  double size = 0;     // maximum file size in bytes; 0 = no limit
  bool overwrite = false;
  std::string forward;
} settings;

const kv::Option kOptions[] = {
    {"--seconds", "SECONDS", "end after this time (default: no limit)", kv::NumberOption{&settings.seconds, 0.1, 1e9}},
    {"--size", "BYTES", "end before the file is larger than this, such as 10M (default: no limit)",
     kv::ParsedBy<ParseSize>(&settings.size, "a number of bytes, such as 500K or 10M")},
    {"--forward", "PORT", "send the bytes to this port as well, for Tarnwick to show", &settings.forward},
    {"--overwrite", nullptr, "replace an existing file", &settings.overwrite},
};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kNoPort};

struct Recording {
  camera::Port port, forward;
  camera::Recorder recorder;
  camera::RecordStream stream;
  std::string error;
};

// Returns false when the file has reached its size limit or could not be written.
bool Store(Recording* recording, double time, const std::string& bytes) {
  if (!camera::AddToRecording(&recording->recorder, time, bytes, &recording->error)) return false;
  camera::FeedStream(&recording->stream, time - recording->recorder.start, bytes, nullptr);
  if (recording->forward.isOpen()) {
    camera::WritePort(recording->forward.handle(), bytes.data(), bytes.size(), kForwardTimeoutMs);
  }
  return true;
}

std::string Progress(const Recording& recording, double seconds, long long recordsBefore, double secondsBefore) {
  const double rate = seconds > secondsBefore
                          ? static_cast<double>(recording.stream.records - recordsBefore) / (seconds - secondsBefore)
                          : 0;
  return camera::Format("%7.1f s  %5.1f records/s  %lld records  %lld bytes", seconds, rate, recording.stream.records,
                        recording.stream.bytes);
}

// Returns a sentence with the reason why the recording ended early, or "".
std::string Record(Recording* recording, int port) {
  HANDLE stop = StopEvent();
  camera::PortReader reader(recording->port.handle());
  ProgressLine progress;
  long long recordsShown = 0;
  double secondsShown = 0;
  std::string bytes;
  for (;;) {
    double now = camera::Now() - recording->recorder.start, arrival = 0;
    if (IsStopRequested() || (settings.seconds > 0 && now >= settings.seconds)) return {};
    const camera::PortReader::Outcome outcome = reader.Read(kTurnMs, stop, &bytes, &arrival);
    if (outcome == camera::PortReader::Outcome::kGone) {
      return "COM" + std::to_string(port) + " was disconnected; everything recorded until then is intact";
    }
    if (outcome == camera::PortReader::Outcome::kBytes && !Store(recording, arrival, bytes)) {
      return recording->error.empty() ? std::string() : recording->error + "; everything recorded until then is intact";
    }
    now = camera::Now() - recording->recorder.start;
    if (!progress.IsDue()) continue;
    progress.Show(Progress(*recording, now, recordsShown, secondsShown));
    recordsShown = recording->stream.records;
    secondsShown = now;
  }
}

int RecordTo(Recording* recording, int port) {
  if (!camera::BeginRecording(&recording->recorder, port, &recording->error)) {
    PrintError(recording->error);
    return kFailed;
  }
  const std::string failure = Record(recording, port);
  const double seconds = camera::EndRecording(&recording->recorder);
  const camera::OutputFile& file = recording->recorder.file;
  camera::EndStream(&recording->stream);
  const camera::RecordStream& stream = recording->stream;
  FILE* out = file.stream ? stderr : stdout;
  std::fprintf(out, "%s, %s, %.1f s to %s\n",
               camera::Counted(static_cast<unsigned long long>(stream.records), "record").c_str(),
               camera::Counted(static_cast<unsigned long long>(stream.bytes), "byte").c_str(), seconds,
               file.stream ? "standard output" : file.path.c_str());
  if (stream.malformedSections > 0) {
    std::fprintf(out, "%s; they are in the recording, too\n", camera::DescribeMalformed(stream).c_str());
  }
  if (stream.bytes == 0) {
    PrintError(camera::Format("no data received in %.0f s", seconds) +
               (file.stream || file.file.isPublished() ? "" : "; \"" + file.path + "\" was not changed") +
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
  if (settings.size > 0 && settings.size < kSmallestSize) {
    PrintError(camera::Format("--size requires at least %.0f bytes, for one record", kSmallestSize));
    return kUsageError;
  }
  if (operands[1] == "-" && IsConsole(GetStdHandle(STD_OUTPUT_HANDLE))) {
    PrintError("standard output is a console; redirect it to a file or another program");
    return kUsageError;
  }
  Recording recording;
  recording.recorder.sizeLimit = settings.size;
  if (!OpenPortOrPrintError(port, &recording.port)) return kNoPort;
  if (forward && !OpenPortOrPrintError(forward, &recording.forward)) return kNoPort;
  int result = kFailed;
  if (camera::OpenOutput(operands[1], settings.overwrite, nullptr, &recording.recorder.file, &recording.error)) {
    result = RecordTo(&recording, port);
  } else {
    PrintError(recording.error);
  }
  camera::CloseOutput(&recording.recorder.file);
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
