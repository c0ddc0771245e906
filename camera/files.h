// Files: UTF-8 names, errors as sentences. Any thread; a file belongs to one.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "camera/record_stream.h"
#include "camera/recording.h"

namespace camera {

// A file that is being written. Until PublishOutput it has a temporary name in its target's folder, so that a file that
// is to be replaced stays intact.
struct OutputFile {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::string path;       // of the target, as the user wrote it; "-" is standard output
  std::wstring part;      // the temporary name; "" after PublishOutput
  bool replaces = false;  // the target exists and is not empty
  LONGLONG size = 0;
};

// Creates the file. Rejects a target that is not empty unless `overwrite`, one that is a device, and one that is the
// same file as `source` (an open file, may be null) under whatever name. False with a sentence in `error`.
bool OpenOutput(const std::string& path, bool overwrite, HANDLE source, OutputFile* output, std::string* error);

// Adds bytes: all or (a full disk) none. False with a sentence in `error`, or with none when the reader of
// standard output has closed it.
bool AppendToOutput(OutputFile* output, std::string_view bytes, std::string* error);

// Renames the file to its target, replacing it; more can be added afterwards. Does nothing the second time. False, with
// a sentence in `error` and the target unchanged, on failure.
bool PublishOutput(OutputFile* output, std::string* error);

// Closes the file, and deletes it if it was not published.
void CloseOutput(OutputFile* output);

// Opens a file for reading; "-" is standard input. Returns INVALID_HANDLE_VALUE, with a sentence in `error`, on
// failure. CloseInput closes it.
HANDLE OpenForReading(const std::string& path, std::string* error);
void CloseInput(HANDLE file);

// Reads a whole file of at most `limit` bytes; "-" is standard input.
bool ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error);

// ---- Recordings -----------------------------------------------------------------------------------------------------

// Why OpenRecording failed.
enum class OpenFailure { kNone, kUnreadable, kEmpty, kForeign, kOtherVersion };

struct RecordingFile {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::string path, error;
  RecordingDecoder decoder;
  size_t truncatedBytes = 0;
  OpenFailure failure = OpenFailure::kNone;
  std::string part;  // the buffer that is read into
  Chunk chunk{};
};

// False, with a reason in `failure` and a sentence in `error`, when the file cannot be read or is not a recording.
bool OpenRecording(const std::string& path, RecordingFile* recording);

// The next chunk. False at the end of the file, after which `truncatedBytes` is set, and on a failed read (then there
// is an error).
bool NextChunk(RecordingFile* recording, Chunk* chunk);

// The records that the next chunk completes (often one, sometimes none), found by `stream`, which is ended after the
// last chunk. Returns false like NextChunk.
bool NextRecords(RecordingFile* recording, RecordStream* stream, std::vector<FoundRecord>* records);

// Starts again with the first chunk.
void Rewind(RecordingFile* recording);

void CloseRecording(RecordingFile* recording);

// What was wrong with a recording that was read to its end, as a sentence; "" when nothing was.
std::string DescribeDamage(const RecordingFile& recording);

}  // namespace camera
