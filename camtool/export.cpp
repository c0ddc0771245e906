// camtool export: a recording as comma-separated values.
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "camera/files.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/text.h"
#include "camtool/arguments.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "camtool/point_paths.h"

namespace camtool {

namespace {

constexpr size_t kBufferBytes = 65536;

struct Settings {
  bool overwrite = false;
} settings;

const Option kOptions[] = {{"--overwrite", nullptr, "replace a file that exists", &settings.overwrite}};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kDamaged, kEmpty};

struct Exporter {
  camera::RecordingFile recording;
  camera::OutputFile out;
  std::string error, buffer;
  camera::RecordStream stream;
};

bool Flush(Exporter* exporter) {
  const bool done = camera::AppendToOutput(&exporter->out, exporter->buffer, &exporter->error);
  exporter->buffer.clear();
  return done;
}

bool WriteRows(Exporter* exporter) {
  ProgressLine progress;
  exporter->buffer = camera::CsvHeader();
  camera::Chunk chunk;
  std::vector<camera::FoundRecord> found;
  while (!IsStopRequested() && camera::NextChunk(&exporter->recording, &chunk)) {
    found.clear();
    camera::FeedStream(&exporter->stream, static_cast<double>(chunk.microseconds) / 1e6, chunk.bytes, &found);
    for (const camera::FoundRecord& record : found) {
      if (record.isInRange) camera::AppendCsvRow(record, &exporter->buffer);
    }
    if (exporter->buffer.size() >= kBufferBytes && !Flush(exporter)) return false;
    if (progress.IsDue()) progress.Show(std::to_string(exporter->stream.records) + " records");
  }
  camera::EndStream(&exporter->stream);
  return Flush(exporter);
}

// Everything that the rows do not show.
void Report(const Exporter& exporter) {
  const camera::RecordStream& stream = exporter.stream;
  std::fprintf(stderr, "%lld records; %s", stream.records, camera::DescribeMalformed(stream).c_str());
  if (stream.leadBytes > 0) std::fprintf(stderr, "; began within a record, %lld bytes of it", stream.leadBytes);
  if (!stream.pending.empty()) std::fprintf(stderr, "; ended within a record, %zu bytes of it", stream.pending.size());
  if (stream.oddRecords > 0) {
    std::fprintf(stderr, "; %lld odd (their numbers are not digits to the end), read as Tarnwick reads them",
                 stream.oddRecords);
  }
  if (stream.outOfRange > 0) {
    std::fprintf(stderr, "; %lld of them omitted because a coordinate is not within 0 to 1023", stream.outOfRange);
  }
  std::fputs("\n", stderr);
  for (const camera::MalformedStretch& stretch : stream.stretches) {
    std::fprintf(stderr, "  at %.6f s, %lld bytes: %s%s\n", stretch.seconds, stretch.bytes,
                 camera::Printable(stretch.sample).c_str(),
                 stretch.bytes > static_cast<long long>(stretch.sample.size()) ? " ..." : "");
  }
  const auto more = stream.malformedStretches - static_cast<long long>(stream.stretches.size());
  if (more > 0) std::fprintf(stderr, "  and %lld more\n", more);
  const std::string damage = camera::DescribeDamage(exporter.recording);
  if (!damage.empty()) PrintError(damage);
}

int ExportAll(Exporter* exporter) {
  const bool done = WriteRows(exporter);
  // Who reads standard output has seen enough.
  if (!done && exporter->error.empty()) return kDone;
  if (exporter->error.empty()) exporter->error = exporter->recording.error;
  if (exporter->error.empty() && IsStopRequested()) exporter->error = "interrupted; nothing was exported";
  if (exporter->error.empty()) camera::PublishOutput(&exporter->out, &exporter->error);
  if (exporter->error.empty()) {
    Report(*exporter);
    return exporter->recording.decoder.damagedPlaces > 0 ? kDamaged : kDone;
  }
  PrintError(exporter->error);
  return kFailed;
}

int RunExport(const std::vector<std::string>& operands) {
  Exporter exporter{};
  if (!camera::OpenRecording(operands[0], &exporter.recording)) {
    PrintError(exporter.recording.error);
    return exporter.recording.isEmpty ? kEmpty : kFailed;
  }
  StopEvent();
  int result = kFailed;
  const std::string path = operands.size() > 1 ? operands[1] : "-";
  if (camera::OpenOutput(path, settings.overwrite, exporter.recording.file, &exporter.out, &exporter.error)) {
    result = ExportAll(&exporter);
  } else {
    PrintError(exporter.error);
  }
  camera::CloseOutput(&exporter.out);
  camera::CloseRecording(&exporter.recording);
  return result;
}

}  // namespace

const Command kExportCommand = {
    "export",
    "FILE [CSV]",
    {1, 2},
    "writes a recording's points as comma-separated values",
    "To a file, or to standard output when none is named. Each record is a row of its time in seconds and four\n"
    "points; what is no record is counted on standard error.\n",
    kOptions,
    kExits,
    RunExport};

}  // namespace camtool
