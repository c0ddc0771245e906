#include "camera/files.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "camera/shared_thread.h"
#include "camera/text.h"
#include "kv/framework/output_file.h"

namespace camera {

namespace {

constexpr DWORD kPartBytes = 65536;

std::string Reason(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return "it does not exist";
    case ERROR_WRITE_PROTECT: return "it is write-protected";
    case ERROR_ACCESS_DENIED: return "access is denied";
    case ERROR_SHARING_VIOLATION: return "it is in use by another program";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return "the disk is full";
    case ERROR_INVALID_NAME: return "the file name is invalid";
    default: return "system error " + std::to_string(error);
  }
}

bool IsFolder(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::string CannotRead(const std::string& path, DWORD error) {
  return "cannot read \"" + path + "\": " + (IsFolder(path) ? "it is a folder" : Reason(error));
}

std::string CannotWrite(const std::string& path, DWORD error) {
  if (path == "-")
    return "cannot write to standard output: " + (error == ERROR_INVALID_HANDLE ? "it is closed" : Reason(error));
  const std::string start = "cannot write \"" + path + "\": ";
  if (IsFolder(path)) return start + "it is a folder";
  if (error == ERROR_ACCESS_DENIED) return start + "it is write-protected, or access is denied";
  return start + (error == ERROR_PATH_NOT_FOUND ? "its folder does not exist" : Reason(error));
}

bool IsUsable(HANDLE handle) {
  return handle && handle != INVALID_HANDLE_VALUE;
}

// Two handles may be of one file under different names or links.
bool IsSameFile(HANDLE a, HANDLE b) {
  BY_HANDLE_FILE_INFORMATION first{}, second{};
  return IsUsable(a) && IsUsable(b) && GetFileType(a) == FILE_TYPE_DISK && GetFileInformationByHandle(a, &first) &&
         GetFileInformationByHandle(b, &second) && first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
         first.nFileIndexHigh == second.nFileIndexHigh && first.nFileIndexLow == second.nFileIndexLow;
}

// For its identity.
HANDLE OpenNamed(const std::string& path) {
  return CreateFileW(Wide(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                     OPEN_EXISTING, 0, nullptr);
}

bool IsFile(const std::string& path, HANDLE file) {
  const HANDLE named = OpenNamed(path);
  const bool isSame = IsSameFile(named, file);
  if (named != INVALID_HANDLE_VALUE) CloseHandle(named);
  return isSame;
}

bool Fail(OutputFile* output, std::string* error) {
  output->failure = GetLastError();
  *error = output->failure == ERROR_BAD_DEVICE ? "\"" + output->path + "\" is a device, not a file; choose another name"
                                               : CannotWrite(output->path, output->failure);
  return false;
}

}  // namespace

bool IsSameFile(const std::string& path, const std::string& other) {
  const HANDLE file = OpenNamed(other);
  const bool isSame = IsFile(path, file);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
  return isSame;
}

bool OpenOutput(const std::string& path, bool overwrite, HANDLE source, OutputFile* output, std::string* error) {
  output->path = path;
  if (path == "-") {
    output->stream = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!IsUsable(output->stream)) *error = "there is no standard output";
    if (IsSameFile(output->stream, source)) *error = "standard output is the file that is read";
    return error->empty();
  }
  if (!output->file.Create(Wide(path))) return Fail(output, error);
  if (IsFile(path, source)) {
    *error = "\"" + path + "\" is the file that is read; choose another name";
  } else if (output->file.replaces() && !overwrite) {
    *error = "\"" + path + "\" exists and was left as it is; choose another name, or add --overwrite";
  }
  if (!error->empty()) output->file.Close();
  return error->empty();
}

bool AppendToOutput(OutputFile* output, std::string_view bytes, std::string* error) {
  if (output->stream ? kv::WriteBytes(output->stream, bytes) : output->file.Append(bytes)) return true;
  Fail(output, error);
  // The reader of a pipe may end before the writer.
  if (output->stream && GetFileType(output->stream) == FILE_TYPE_PIPE) error->clear();
  return false;
}

bool FlushToOutput(OutputFile* output, size_t atLeast, std::string* buffer, std::string* error) {
  if (buffer->size() < atLeast) return true;
  const bool isWritten = AppendToOutput(output, *buffer, error);
  buffer->clear();
  return isWritten;
}

bool PublishOutput(OutputFile* output, std::string* error) {
  return output->stream || output->file.Publish() || Fail(output, error);
}

void CloseOutput(OutputFile* output) {
  output->file.Close();
}

HANDLE OpenForReading(const std::string& path, std::string* error) {
  if (path == "-") {
    HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    if (IsUsable(input)) return input;
    *error = "there is no standard input";
    return INVALID_HANDLE_VALUE;
  }
  // Other programs can read a recording while it is written.
  HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file != INVALID_HANDLE_VALUE) return file;
  const DWORD failure = GetLastError();
  *error = CannotRead(path, failure);
  SetLastError(failure);
  return file;
}

void CloseInput(HANDLE file) {
  if (file != INVALID_HANDLE_VALUE && file != GetStdHandle(STD_INPUT_HANDLE)) CloseHandle(file);
}

namespace {

struct Part {
  HANDLE file;
  std::string bytes;
  DWORD failure = 0;
};

void Read(Part& part) {
  DWORD read = 0;
  part.bytes.resize(kPartBytes);
  const bool done =
      ReadFile(part.file, part.bytes.data(), kPartBytes, &read, nullptr) || GetLastError() == ERROR_BROKEN_PIPE;
  part.failure = done ? 0 : GetLastError();
  part.bytes.resize(read);
}

// Returns false if `stop` was signaled before there was something to read; then the thread remains blocked. Canceling
// its read would not work everywhere.
bool ReadUnlessStopped(const std::shared_ptr<Part>& part, HANDLE stop) {
  HANDLE thread = StartShared<&Read>(part);
  if (!thread) {
    Read(*part);
    return true;
  }
  const HANDLE waits[] = {thread, stop};
  const bool isRead = WaitForMultipleObjects(2, waits, FALSE, INFINITE) == WAIT_OBJECT_0;
  CloseHandle(thread);
  return isRead;
}

// Reads the next part of a file; 0 bytes at its end, or when `stop` (may be null) is signaled. On failure, GetLastError
// says why.
bool ReadPart(HANDLE file, const std::string& path, HANDLE stop, std::string* bytes, std::string* error) {
  const auto part = std::make_shared<Part>(Part{file, std::move(*bytes)});
  bytes->clear();
  if (!stop || GetFileType(file) == FILE_TYPE_DISK) {
    Read(*part);
  } else if (!ReadUnlessStopped(part, stop)) {
    return true;
  }
  *bytes = std::move(part->bytes);
  if (part->failure) *error = CannotRead(path, part->failure);
  SetLastError(part->failure);
  return part->failure == 0;
}

bool ReadNext(RecordingFile* recording, std::string* error) {
  const bool isRead = ReadPart(recording->file, recording->path, recording->stop, &recording->part, error);
  if (!isRead) recording->systemError = GetLastError();
  recording->isStopped = (recording->onPart && !recording->onPart()) ||
                         (recording->stop && WaitForSingleObject(recording->stop, 0) == WAIT_OBJECT_0);
  return isRead;
}

}  // namespace

bool ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error) {
  HANDLE file = OpenForReading(path, error);
  if (file == INVALID_HANDLE_VALUE) return false;
  std::string part;
  while (ReadPart(file, path, nullptr, &part, error) && !part.empty() && bytes->size() <= limit) *bytes += part;
  CloseInput(file);
  if (bytes->size() > limit) *error = "\"" + path + "\" is larger than " + std::to_string(limit) + " bytes";
  return error->empty();
}

// ---- Recordings -----------------------------------------------------------------------------------------------------

namespace {

bool Fail(OpenFailure failure, const std::string& error, RecordingFile* recording) {
  recording->failure = failure;
  recording->error = error;
  return false;
}

// Feeds the decoder until it has decoded the header.
bool ReadHeader(RecordingFile* recording) {
  Chunk none;
  const std::string quoted = "\"" + recording->path + "\"";
  for (;;) {
    switch (DecodeNext(&recording->decoder, &none)) {
      case Decoded::kHeader: recording->damagedBefore = recording->decoder.damagedBytes; return true;
      case Decoded::kNoRecording: return Fail(OpenFailure::kForeign, quoted + " is not a camtool recording", recording);
      case Decoded::kOtherVersion:
        return Fail(OpenFailure::kOtherVersion,
                    quoted + " has format version " + std::to_string(recording->decoder.version) +
                        "; this camtool reads version " + std::to_string(kRecordingVersion),
                    recording);
      default: break;
    }
    std::string error;
    if (!ReadNext(recording, &error)) return Fail(OpenFailure::kUnreadable, error, recording);
    if (recording->isStopped) return Fail(OpenFailure::kStopped, "interrupted", recording);
    if (recording->part.empty()) {
      // Truncated within the header: a recording without chunks.
      return !recording->decoder.pending.empty() || Fail(OpenFailure::kEmpty, quoted + " is empty", recording);
    }
    FeedDecoder(&recording->decoder, recording->part);
  }
}

}  // namespace

bool OpenRecording(const std::string& path, RecordingFile* recording) {
  recording->path = path == "-" ? "standard input" : path;
  std::string error;
  recording->file = OpenForReading(path, &error);
  if (recording->file == INVALID_HANDLE_VALUE) {
    recording->systemError = GetLastError();
    return Fail(IsFolder(path) ? OpenFailure::kForeign : OpenFailure::kUnreadable, error, recording);
  }
  if (ReadHeader(recording)) return true;
  CloseRecording(recording);
  return false;
}

double ShareRead(const RecordingFile& recording) {
  LARGE_INTEGER size{}, at{};
  if (!GetFileSizeEx(recording.file, &size) || !SetFilePointerEx(recording.file, {}, &at, FILE_CURRENT)) return 0;
  return size.QuadPart > 0 ? static_cast<double>(at.QuadPart) / static_cast<double>(size.QuadPart) : 0;
}

namespace {

bool MayBeContinued(const RecordingFile& recording) {
  return recording.isFollowed && !recording.decoder.hasEnd;
}

// Reads the header once more.
std::string HeaderOf(HANDLE file) {
  std::string header(kRecordingHeaderBytes, '\0');
  DWORD read = 0;
  const bool isRead = SetFilePointer(file, 0, nullptr, FILE_BEGIN) == 0 &&
                      ReadFile(file, header.data(), kRecordingHeaderBytes, &read, nullptr);
  header.resize(isRead ? read : 0);
  return header;
}

}  // namespace

void PauseReading(RecordingFile* recording) {
  if (recording->file == INVALID_HANDLE_VALUE) return;
  SetFilePointerEx(recording->file, {}, &recording->pausedAt, FILE_CURRENT);
  CloseRecording(recording);
}

FileGrowth LookForMore(RecordingFile* recording) {
  const auto isMissing = [](DWORD failure) {
    return failure == ERROR_FILE_NOT_FOUND || failure == ERROR_PATH_NOT_FOUND;
  };
  recording->error.clear();
  recording->systemError = 0;
  if (recording->file == INVALID_HANDLE_VALUE) {
    std::string unused;
    recording->file = OpenForReading(recording->path, &unused);
    if (recording->file == INVALID_HANDLE_VALUE) {
      recording->systemError = GetLastError();
      return isMissing(recording->systemError) ? FileGrowth::kGone : FileGrowth::kFailed;
    }
    SetFilePointerEx(recording->file, recording->pausedAt, nullptr, FILE_BEGIN);
  }
  LARGE_INTEGER size{}, at{};
  HANDLE file = recording->file;
  if (!GetFileSizeEx(file, &size) || !SetFilePointerEx(file, {}, &at, FILE_CURRENT)) {
    recording->systemError = GetLastError();
    return FileGrowth::kFailed;
  }
  if (size.QuadPart < at.QuadPart) return FileGrowth::kReplaced;
  // A file that was written anew may have become longer again.
  const std::string header = HeaderOf(file);
  if (!SetFilePointerEx(file, at, nullptr, FILE_BEGIN) || header.empty()) {
    recording->systemError = GetLastError();
    return FileGrowth::kFailed;
  }
  if (recording->start.empty()) recording->start = header;
  if (header != recording->start) return FileGrowth::kReplaced;
  if (size.QuadPart > at.QuadPart) return FileGrowth::kLonger;
  if (IsFile(recording->path, file)) return FileGrowth::kSame;
  const DWORD attributes = GetFileAttributesW(Wide(recording->path).c_str());
  const DWORD failure = attributes == INVALID_FILE_ATTRIBUTES ? GetLastError() : 0;
  if (failure == 0) return FileGrowth::kReplaced;
  return isMissing(failure) ? FileGrowth::kGone : FileGrowth::kSame;
}

bool NextChunk(RecordingFile* recording, Chunk* chunk) {
  while (recording->decoder.hasHeader) {
    switch (DecodeNext(&recording->decoder, chunk)) {
      case Decoded::kChunk: return true;
      case Decoded::kNeedMore: break;
      default: continue;
    }
    if (!ReadNext(recording, &recording->error) || recording->isStopped) return false;
    if (recording->part.empty()) {
      const Decoded last = DecodeAtEnd(&recording->decoder, chunk);
      if (last == Decoded::kChunk) return true;
      if (last == Decoded::kNeedMore) break;
    }
    FeedDecoder(&recording->decoder, recording->part);
  }
  RecordingDecoder& decoder = recording->decoder;
  recording->truncatedBytes =
      MayBeContinued(*recording) ? decoder.pending.size() - decoder.at : FinishDecoding(&decoder);
  return false;
}

bool NextRecords(RecordingFile* recording, RecordStream* stream, std::vector<FoundRecord>* records) {
  records->clear();
  if (NextChunk(recording, &recording->chunk)) {
    const Chunk& chunk = recording->chunk;
    FeedStream(stream, static_cast<double>(chunk.microseconds) / 1e6, chunk.bytes, records);
    return true;
  }
  EndStream(stream);
  return false;
}

bool NextBatch(RecordingFile* recording, RecordIntake* intake, IntakeBatch* batch) {
  const bool isThere = NextChunk(recording, &recording->chunk);
  const std::uint64_t damaged = recording->decoder.damagedBytes - recording->damagedBefore;
  const double seconds =
      static_cast<double>(isThere ? recording->chunk.microseconds : recording->decoder.endTime) / 1e6;
  if (damaged > 0) AddDamage(intake, seconds, static_cast<long long>(damaged), batch);
  recording->damagedBefore += damaged;
  if (isThere) {
    AddBytes(intake, seconds, recording->chunk.bytes, batch);
    return true;
  }
  if (MayBeContinued(*recording)) return false;
  EndIntake(intake, batch);
  if (!recording->isStopped) AddSilence(intake, seconds, batch);
  return false;
}

void Rewind(RecordingFile* recording) {
  SetFilePointer(recording->file, 0, nullptr, FILE_BEGIN);
  recording->decoder = {};
  ReadHeader(recording);
}

void CloseRecording(RecordingFile* recording) {
  CloseInput(recording->file);
  recording->file = INVALID_HANDLE_VALUE;
}

std::string DescribeDamage(const RecordingFile& recording) {
  const RecordingDecoder& decoder = recording.decoder;
  std::string text;
  if (decoder.damageCount > 0) {
    text = "\"" + recording.path + "\" is damaged in " + Counted(decoder.damageCount, "place") + "; " +
           Counted(decoder.damagedBytes, "byte") + " skipped";
  }
  if (!decoder.hasEnd) {
    text += text.empty() ? "\"" + recording.path + "\" is" : std::string(", and it is");
    text += " truncated";
    if (recording.truncatedBytes > 0)
      text += "; " + Counted(recording.truncatedBytes, "byte") + " of an incomplete chunk skipped";
  }
  return text;
}

}  // namespace camera
