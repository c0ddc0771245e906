// camtool export: a recording as comma-separated values.
#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

#include "camera/files.h"
#include "camera/record_stream.h"
#include "camera/text.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

struct Settings {
  bool overwrite = false;
} settings;

const kv::Option kOptions[] = {{"--overwrite", nullptr, "replace an existing file", &settings.overwrite}};

constexpr int kExits[] = {kDone, kFailed, kUsageError, kDamaged, kEmpty};

struct Exporter {
  camera::RecordingFile recording;
  camera::OutputFile out;
  std::string error, buffer;
  camera::RecordStream stream;
};

bool WriteRows(Exporter* exporter) {
  ProgressLine progress;
  exporter->buffer = camera::CsvHeader();
  const auto flush = [&](size_t atLeast) {
    return FlushToOutput(&exporter->out, atLeast, &exporter->buffer, &exporter->error);
  };
  std::vector<camera::FoundRecord> found;
  exporter->recording.onPart = [&] {
    if (progress.IsDue())
      progress.Show(camera::Counted(static_cast<unsigned long long>(exporter->stream.records), "record"));
    return true;
  };
  while (NextRecords(&exporter->recording, &exporter->stream, &found)) {
    for (const camera::FoundRecord& record : found) {
      if (record.isInRange) camera::AppendCsvRow(record, &exporter->buffer);
    }
    if (!flush(camera::kOutputBuffer)) return false;
  }
  return flush(0);
}

int ExportAll(Exporter* exporter) {
  const bool done = WriteRows(exporter);
  // The reader of standard output has closed it.
  if (!done && exporter->error.empty()) return kDone;
  if (exporter->error.empty()) exporter->error = exporter->recording.error;
  if (exporter->error.empty() && exporter->recording.isStopped)
    exporter->error = "interrupted before the end of the recording";
  if (exporter->error.empty()) camera::PublishOutput(&exporter->out, &exporter->error);
  if (exporter->error.empty()) {
    PrintStreamReport(exporter->stream, DescribeDamage(exporter->recording));
    return exporter->recording.decoder.damageCount > 0 ? kDamaged : kDone;
  }
  PrintError(exporter->error);
  return kFailed;
}

int RunExport(const std::vector<std::string>& operands) {
  Exporter exporter{};
  int result = OpenRecordingOrPrintError(operands[0], &exporter.recording);
  if (result != kDone) return result;
  result = kFailed;
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
    "converts a recording to comma-separated values",
    "Writes to standard output when no CSV file is named, or -. FILE may be - for standard input. Each record is a "
    "row\n"
    "with its time in seconds and four points; malformed bytes are counted on standard error.\n",
    kOptions,
    kExits,
    RunExport};

}  // namespace camtool
