#include "camview/live_source.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>

#include "camera/files.h"
#include "camera/ports.h"
#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/recorder.h"
#include "camera/shared_thread.h"
#include "camview/record_store.h"

namespace camview {

namespace {

constexpr DWORD kTurnMs = 100, kRetryMs = 500, kEndMs = 1000;
constexpr double kRateSeconds = 2;

bool HasPoint(const camera::FoundRecord& record) {
  return record.isInRange && std::ranges::any_of(record.points, camera::IsSeen);
}

LiveState StateOf(camera::PortState state, bool wasOpen) {
  switch (state) {
    case camera::PortState::kBusy: return LiveState::kBusy;
    case camera::PortState::kAccessDenied: return LiveState::kAccessDenied;
    case camera::PortState::kUnusable: return LiveState::kUnusable;
    default: return wasOpen ? LiveState::kGone : LiveState::kAbsent;
  }
}

}  // namespace

LineJudgment JudgeLine(const LineTimes& times, double now) {
  const double bytes = std::max(times.bytes, times.opened), record = std::max(times.record, times.opened);
  const double point = std::max(times.point, times.opened);
  if (now - bytes >= kJudgeSeconds) return {LiveState::kSilent, bytes};
  if (now - record >= kJudgeSeconds) return {LiveState::kMalformed, record};
  if (record == times.opened) return {LiveState::kOpening, times.opened};
  if (now - point >= kJudgeSeconds) return {LiveState::kDark, point};
  return {LiveState::kRecords, times.opened};
}

struct LiveSource::Reader {
  int number = 0;
  double start = 0;  // by camera::Now()
  std::uint64_t startTime = 0;
  HANDLE stop = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  std::atomic<bool> isStopped{false};  // set before the event; asking it costs no call of the system

  // Used by the reader thread only.
  camera::Port port;
  RecordIntake intake;

  std::mutex lock;  // guards the following members
  IntakeBatch batch;
  LiveStatus status;
  LineTimes times;
  bool isOpen = false;
  std::deque<double> recent;  // times of the records of the last kRateSeconds

  // Guards the following members. Held while the file is written, which may take long, so it is separate from `lock`.
  // Locked before `lock`.
  std::mutex recordingLock;
  std::unique_ptr<camera::Recorder> recorder;

  ~Reader() { CloseHandle(stop); }
  double Seconds() const { return camera::Now() - start; }
  void Run();
  bool Open();
  void Read();
  void Take(double time, const std::string& bytes);
  void Record(double time, const std::string& bytes);
  void EndRecording(DWORD systemError = 0);
  void Publish(double seconds, size_t first);
};

// ---- The thread -----------------------------------------------------------------------------------------------------

void LiveSource::Reader::Run() {
  while (!isStopped) {
    if (Open()) Read();
    // At once, because an adapter whose old port is open reappears under another number.
    port.Close();
    WaitForSingleObject(stop, kRetryMs);
  }
}

bool LiveSource::Reader::Open() {
  const camera::PortStatus opened = camera::OpenPort(number, nullptr, &port);
  const std::lock_guard guard(lock);
  isOpen = port.isOpen();
  if (isOpen) {
    times.opened = Seconds();
    return true;
  }
  AddSilence(&intake, Seconds(), &batch);
  const LiveState state = StateOf(opened.state, times.opened > 0);
  if (state != status.state) status.since = Seconds();
  status.state = state;
  status.holder = opened.holder;
  status.error = opened.error;
  return false;
}

void LiveSource::Reader::Read() {
  camera::PortReader reader(port.handle());
  std::string bytes;
  double time = 0;
  while (!isStopped) {
    const camera::PortReader::Outcome outcome = reader.Read(kTurnMs, stop, &bytes, &time);
    if (outcome == camera::PortReader::Outcome::kBytes) Take(time, bytes);
    if (outcome == camera::PortReader::Outcome::kNothing) {
      const std::lock_guard guard(lock);
      AddSilence(&intake, Seconds(), &batch);
    }
    if (outcome != camera::PortReader::Outcome::kGone) continue;
    const double seconds = Seconds();
    const std::lock_guard guard(lock);
    EndIntake(&intake, &batch);
    Publish(seconds, batch.records.size());
    isOpen = false;
    status.state = LiveState::kGone;
    status.since = seconds;
    return;
  }
}

void LiveSource::Reader::Take(double time, const std::string& bytes) {
  const double seconds = time - start;
  Record(time, bytes);
  const std::lock_guard guard(lock);
  const size_t before = batch.records.size();
  AddBytes(&intake, seconds, bytes, &batch);
  Publish(seconds, before);
}

// Counts the records of the batch from that one on. Call with `lock` held.
void LiveSource::Reader::Publish(double seconds, size_t first) {
  times.bytes = std::max(times.bytes, intake.stream.lastArrival);
  for (const camera::FoundRecord& record : std::span(batch.records).subspan(first)) {
    times.record = record.seconds;
    if (HasPoint(record)) times.point = record.seconds;
    recent.push_back(record.seconds);
  }
  while (!recent.empty() && recent.front() < seconds - kRateSeconds) recent.pop_front();
  status.bytes = intake.stream.bytes;
  status.records = intake.stream.records;
}

void LiveSource::Reader::Record(double time, const std::string& bytes) {
  const std::lock_guard recordingGuard(recordingLock);
  if (!recorder) return;
  std::string error;
  const bool isWritten = camera::AddToRecording(recorder.get(), time, bytes, &error);
  {
    const std::lock_guard guard(lock);
    status.recording.bytes += isWritten ? static_cast<long long>(bytes.size()) : 0;
  }
  if (!isWritten) EndRecording(recorder->file.failure);
}

// Call with `recordingLock` held.
void LiveSource::Reader::EndRecording(DWORD systemError) {
  if (!recorder) return;
  const double seconds = camera::EndRecording(recorder.get());
  // Without data the recording has not taken the place of the file.
  const bool hasKeptFile = !recorder->file.file.isPublished();
  camera::CloseOutput(&recorder->file);
  recorder.reset();
  const std::lock_guard guard(lock);
  LiveRecording& recording = status.recording;
  recording.state = systemError ? LiveRecordingState::kFailed : LiveRecordingState::kComplete;
  recording.systemError = systemError;
  recording.seconds = seconds;
  recording.hasKeptFile = hasKeptFile;
}

// ---- The main thread ------------------------------------------------------------------------------------------------

LiveSource::LiveSource(int port) : reader_(std::make_shared<Reader>()) {
  reader_->number = reader_->status.port = port;
  reader_->start = camera::Now();
  reader_->startTime = camera::TimeOfDay();
  thread_ = camera::StartShared<&Reader::Run>(reader_);
}

LiveSource::~LiveSource() {
  StopRecording();
  reader_->isStopped = true;
  SetEvent(reader_->stop);
  if (!thread_) return;
  WaitForSingleObject(thread_, kEndMs);
  CloseHandle(thread_);
}

void LiveSource::Take(IntakeBatch* batch) {
  const std::lock_guard guard(reader_->lock);
  std::swap(*batch, reader_->batch);
}

LiveStatus LiveSource::Status() const {
  const std::lock_guard guard(reader_->lock);
  LiveStatus status = reader_->status;
  status.now = reader_->Seconds();
  if (reader_->isOpen) {
    const LineJudgment judgment = JudgeLine(reader_->times, status.now);
    status.state = judgment.state;
    status.since = judgment.since;
  }
  const std::deque<double>& recent = reader_->recent;
  const bool isFlowing =
      recent.size() > 1 && status.now - recent.back() < kRateSeconds && recent.back() > recent.front();
  if (isFlowing) status.recordsPerSecond = static_cast<double>(recent.size() - 1) / (recent.back() - recent.front());
  LiveRecording& recording = status.recording;
  if (recording.state == LiveRecordingState::kOn) recording.seconds = status.now - recording.began;
  return status;
}

std::uint64_t LiveSource::startTime() const {
  return reader_->startTime;
}

bool LiveSource::StartRecording(const std::string& path, bool overwrite, DWORD* error) {
  const std::lock_guard recordingGuard(reader_->recordingLock);
  *error = 0;
  if (reader_->recorder) return false;
  auto recorder = std::make_unique<camera::Recorder>();
  std::string message;
  const bool isOpen = camera::OpenOutput(path, overwrite, nullptr, &recorder->file, &message);
  if (!isOpen || !camera::BeginRecording(recorder.get(), reader_->number, &message)) {
    *error = recorder->file.failure;
    camera::CloseOutput(&recorder->file);
    return false;
  }
  reader_->recorder = std::move(recorder);
  const std::lock_guard guard(reader_->lock);
  reader_->status.recording = {.state = LiveRecordingState::kOn, .path = path, .began = reader_->Seconds()};
  return true;
}

void LiveSource::StopRecording() {
  const std::lock_guard recordingGuard(reader_->recordingLock);
  reader_->EndRecording();
}

}  // namespace camview
