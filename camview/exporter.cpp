#include "camview/exporter.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "camera/camera_record.h"
#include "camera/files.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camview/record_store.h"
#include "camview/worker.h"

namespace camview {

namespace {

constexpr size_t kBatchRecords = 256;
constexpr std::uint64_t kFileTimePerMicrosecond = 10;

std::uint64_t Microseconds(double seconds) {
  constexpr double kMaxTime = 1e18;
  return static_cast<std::uint64_t>(std::llround(std::clamp(seconds * 1e6, 0.0, kMaxTime)));
}

struct Export {
  const ExportTask& task;
  Worker* worker;
  ExportResult* result;
  std::uint64_t from = Microseconds(task.from), to = Microseconds(task.to);
  camera::OutputFile out{};
  std::string buffer{};
};

bool Fail(Export* job, ExportFailure failure, DWORD systemError = 0) {
  job->result->failure = failure;
  job->result->systemError = systemError;
  return false;
}

bool Flush(Export* job, size_t atLeast) {
  std::string message;
  return camera::FlushToOutput(&job->out, atLeast, &job->buffer, &message) ||
         Fail(job, ExportFailure::kSystem, job->out.failure);
}

// Returns whether to continue with data of that time.
bool IsInRange(Export* job, std::uint64_t microseconds) {
  if (job->to > 0) job->worker->SetProgress(static_cast<double>(microseconds) / static_cast<double>(job->to));
  return !job->worker->IsCanceled() && Flush(job, camera::kOutputBuffer);
}

void AddHeader(Export* job, camera::RecordingHeader header) {
  if (header.startTime > 0) header.startTime += job->from * kFileTimePerMicrosecond;
  job->buffer += camera::EncodeHeader(header);
}

void AddChunk(Export* job, std::uint64_t microseconds, std::string_view bytes) {
  job->buffer += camera::EncodeChunks(microseconds - job->from, bytes);
}

void AddEnd(Export* job, std::uint64_t sourceEnd) {
  const std::uint64_t end = std::clamp(sourceEnd, job->from, std::max(job->from, job->to));
  job->buffer += camera::EncodeEnd(end - job->from);
}

// Returns false when canceled or when reading or writing failed.
bool AddRecording(Export* job, camera::RecordingFile* recording) {
  AddHeader(job, recording->decoder.header);
  camera::RecordStream stream;
  camera::Chunk chunk{};
  const RecordStore& store = *job->task.store;
  const bool isToEnd = store.EndOf(job->task.to) == store.End();
  while (camera::NextChunk(recording, &chunk) && chunk.microseconds <= job->to) {
    if (chunk.microseconds >= job->from && (chunk.microseconds < job->to || isToEnd)) {
      AddChunk(job, chunk.microseconds, chunk.bytes);
      camera::FeedStream(&stream, 0, chunk.bytes, nullptr);
    }
    if (!IsInRange(job, chunk.microseconds)) return false;
  }
  if (recording->isStopped) return false;
  const std::uint64_t expected = std::min(job->to, Microseconds(job->task.recordingSeconds));
  if (recording->systemError) return Fail(job, ExportFailure::kSystem, recording->systemError);
  if (recording->decoder.endTime < expected) return Fail(job, ExportFailure::kSourceIsShorter);
  AddEnd(job, recording->decoder.endTime);
  job->result->records = stream.records;
  return true;
}

void AddStored(Export* job, const StoredRecord& record) {
  if (record.flags & kOutOfRange) return;
  ++job->result->records;
  camera::FoundRecord found{};
  found.seconds = record.seconds;
  std::ranges::copy(record.points, found.points);
  if (job->task.isCsv) return camera::AppendCsvRow(found, &job->buffer);
  char bytes[kv::kRecordLength];
  kv::WriteRecord(found.points, bytes);
  AddChunk(job, Microseconds(record.seconds), {bytes, sizeof(bytes)});
}

bool AddStore(Export* job) {
  if (job->task.isCsv) {
    job->buffer = camera::CsvHeader();
  } else {
    AddHeader(job, job->task.header);
  }
  const RecordStore& store = *job->task.store;
  const long long end = store.EndOf(job->task.to);
  std::array<StoredRecord, kBatchRecords> batch;
  for (long long number = store.Find(job->task.from); number < end;) {
    const auto requested = static_cast<size_t>(std::min<long long>(kBatchRecords, end - number));
    const size_t count = store.Read(number, {batch.data(), requested});
    for (size_t i = 0; i < count; ++i) AddStored(job, batch[i]);
    number += static_cast<long long>(count);
    if (!IsInRange(job, Microseconds(batch[count - 1].seconds))) return false;
  }
  if (!job->task.isCsv) AddEnd(job, job->to);
  return true;
}

bool Write(Export* job, camera::RecordingFile* recording) {
  std::string message;
  const ExportTask& task = job->task;
  if (!task.recording.empty() && !camera::OpenRecording(task.recording, recording) && !task.isCsv) {
    // Its records are in the store, but not its bytes.
    return recording->systemError ? Fail(job, ExportFailure::kSystem, recording->systemError)
                                  : Fail(job, ExportFailure::kSourceIsShorter);
  }
  if (!camera::OpenOutput(task.target, true, recording->file, &job->out, &message)) {
    const DWORD failure = job->out.failure;
    return Fail(job, failure ? ExportFailure::kSystem : ExportFailure::kTargetIsSource, failure);
  }
  const bool isAdded = task.isCsv || task.recording.empty() ? AddStore(job) : AddRecording(job, recording);
  if (!isAdded || !Flush(job, 0)) return false;
  return camera::PublishOutput(&job->out, &message) || Fail(job, ExportFailure::kSystem, job->out.failure);
}

}  // namespace

bool Exporter::Start(const ExportTask& task) {
  worker_.Cancel();
  worker_.Wait();
  task_ = task;
  result_ = {};
  return worker_.Start([this] { Run(); });
}

void Exporter::Run() {
  Export job{task_, &worker_, &result_};
  camera::RecordingFile recording;  // also to reject it as target
  recording.onPart = [this] { return !worker_.IsCanceled(); };
  result_.isDone = Write(&job, &recording);
  camera::CloseOutput(&job.out);
  camera::CloseRecording(&recording);
}

}  // namespace camview
