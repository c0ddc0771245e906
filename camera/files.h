// File access with UTF-8 names and error messages as sentences. Any thread; a file belongs to one thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "camera/record_intake.h"
#include "camera/record_stream.h"
#include "camera/recording.h"
#include "kv/framework/output_file.h"

namespace camera {

// A file that is being written, or standard output. An existing target stays intact until PublishOutput.
struct OutputFile {
  kv::OutputFile file;
  HANDLE stream = nullptr;  // standard output
  std::string path;         // of the target, as given by the user; "-" is standard output
  DWORD failure = 0;        // the system's error for the last failure, for kv::ErrorText
};

// Creates the file. Rejects a target that is not empty (unless `overwrite`), a device, and the same file as `source`
// (an open file, may be null) under any name. Returns false with an error message in `error`.
bool OpenOutput(const std::string& path, bool overwrite, HANDLE source, OutputFile* output, std::string* error);

// Appends all bytes, or none (a full disk). Returns false with an error message in `error`, or with an empty one when
// the reader of standard output has closed it.
bool AppendToOutput(OutputFile* output, std::string_view bytes, std::string* error);

// Appends the buffer and empties it, if it has at least that number of bytes. Returns like AppendToOutput.
bool FlushToOutput(OutputFile* output, size_t atLeast, std::string* buffer, std::string* error);
inline constexpr size_t kOutputBuffer = 65536;  // a good size for writing

// Renames the file to its target, replacing it; more bytes can be appended afterward. Does nothing the second time. On
// failure returns false, with an error message in `error`, and the target does not change.
bool PublishOutput(OutputFile* output, std::string* error);

// Closes the file, and deletes it if it was not published.
void CloseOutput(OutputFile* output);

// Opens a file for reading; "-" is standard input. Returns INVALID_HANDLE_VALUE, with an error message in `error`, on
// failure. Close with CloseInput.
HANDLE OpenForReading(const std::string& path, std::string* error);
void CloseInput(HANDLE file);

// Reads a file of at most `limit` bytes; "-" is standard input.
bool ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error);

// ---- Recordings -----------------------------------------------------------------------------------------------------

// The reason for a failure of OpenRecording.
enum class OpenFailure { kNone, kUnreadable, kEmpty, kForeign, kOtherVersion, kStopped };

struct RecordingFile {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::string path, error;
  RecordingDecoder decoder;
  size_t truncatedBytes = 0;
  OpenFailure failure = OpenFailure::kNone;
  DWORD systemError = 0;  // with `error`, when the system could not open or read the file: for kv::ErrorText
  // Called after each part of the file, at most 64 KB, which may contain no chunk at all. When it returns false,
  // reading ends as at the end of the file, and `isStopped` is set.
  std::function<bool()> onPart;
  // An event that ends reading in the same way when it is signaled, even while a pipe or a console has nothing to read;
  // null: none.
  HANDLE stop = nullptr;
  bool isStopped = false;
  // The recording may still be written: at the end of the file without that of the recording, functions that read
  // return false as after the last chunk, but leave what is incomplete, and can be called again for what is appended.
  bool isFollowed = false;
  std::string start;                // of the file, once LookForMore has read it
  LARGE_INTEGER pausedAt = {};      // with PauseReading
  std::string part;                 // read buffer
  std::uint64_t damagedBefore = 0;  // damaged bytes that NextBatch has added
  Chunk chunk{};
};

// Returns false, with the reason in `failure` and an error message in `error`, when the file cannot be read or is not a
// recording.
bool OpenRecording(const std::string& path, RecordingFile* recording);

// Returns whether both names are of the same existing file.
bool IsSameFile(const std::string& path, const std::string& other);

// Returns the fraction of the file that was read, 0 to 1; 0 if its size is unknown.
double ShareRead(const RecordingFile& recording);

// Reads the next chunk. Returns false at the end of the file, when `truncatedBytes` is set, when reading fails, with an
// error message, and when `onPart` stops it.
bool NextChunk(RecordingFile* recording, Chunk* chunk);

// Returns the records that the next chunk completes (often one, sometimes none), found by `stream`, which is ended
// after the last chunk. Returns false like NextChunk.
bool NextRecords(RecordingFile* recording, RecordStream* stream, std::vector<FoundRecord>* records);

// Adds what the next chunk contains to the batch; with the last one, what the end of the recording shows. Returns false
// like NextChunk.
bool NextBatch(RecordingFile* recording, RecordIntake* intake, IntakeBatch* batch);

// Whether a recording that was read to the end of the file can be read on.
enum class FileGrowth {
  kSame,
  kLonger,
  kReplaced,  // is shorter than what was read, has another header, or another file has its name
  kGone,      // no file has its name
  kFailed,    // the reason is in `systemError`
};
FileGrowth LookForMore(RecordingFile* recording);
// Closes the file until LookForMore, so that it can be replaced.
void PauseReading(RecordingFile* recording);

// Returns to the first chunk.
void Rewind(RecordingFile* recording);

void CloseRecording(RecordingFile* recording);

// Describes the damage of a recording that was read to its end, as a sentence; "" if there was none.
std::string DescribeDamage(const RecordingFile& recording);

}  // namespace camera
