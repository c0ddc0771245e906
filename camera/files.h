// Files of camtool: UTF-8 names, errors as sentences. Any thread; a file belongs to one.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "camera/record_stream.h"
#include "camera/recording.h"

namespace camera {

// A file that is being written. It stands beside its target under a name of its own until PublishOutput, so that a file
// which is to be replaced stays whole until the new one is worth it.
struct OutputFile {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::string path;       // of the target, as the user wrote it; "-" is standard output
  std::wstring part;      // the present name; "" when it is the target's
  bool replaces = false;  // the target exists and holds something
  LONGLONG size = 0;
};

// Begins a file. Refuses a target that holds something unless `overwrite`, one that is a device, and one that is the
// same file as `source` (an open file, may be null) under whatever name. False with a sentence in `error`.
bool OpenOutput(const std::string& path, bool overwrite, HANDLE source, OutputFile* output, std::string* error);

// Adds bytes: all or (a full disk) none. False with a sentence in `error`, or with none when whoever reads standard
// output has closed it.
bool AppendToOutput(OutputFile* output, std::string_view bytes, std::string* error);

// Gives the file its target's name; more can be added afterwards. Does nothing the second time. False with a sentence
// in `error`; the target is as it was then.
bool PublishOutput(OutputFile* output, std::string* error);

// Deletes the file if it was not published.
void CloseOutput(OutputFile* output);

// For reading; "-" is standard input. INVALID_HANDLE_VALUE, with a sentence in `error`, on failure. CloseInput closes
// it.
HANDLE OpenForReading(const std::string& path, std::string* error);
void CloseInput(HANDLE file);

// A whole small file of at most `limit` bytes; "-" is standard input.
bool ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error);

// ---- Recordings ----------------------------------------------------------------------------------------------------

struct RecordingFile {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::string path, error;
  RecordingDecoder decoder;
  size_t tornBytes = 0;
  bool isEmpty = false;  // not one byte; OpenRecording returns false
  std::string part;      // the buffer that is read into
  Chunk chunk{};
};

// False, with a sentence in `error`, when the file cannot be read or is no recording.
bool OpenRecording(const std::string& path, RecordingFile* recording);

// The next chunk. False at the end of the file, after which `tornBytes` is set, and on a failed read (then there is an
// error).
bool NextChunk(RecordingFile* recording, Chunk* chunk);

// The records that the next chunk completes, often one, sometimes none, found by `stream`, which is ended behind the
// last chunk. False as from NextChunk.
bool NextRecords(RecordingFile* recording, RecordStream* stream, std::vector<FoundRecord>* records);

// Starts again with the first chunk.
void Rewind(RecordingFile* recording);

void CloseRecording(RecordingFile* recording);

// What was wrong with a recording that was read to its end, as a sentence; "" when nothing was.
std::string DescribeDamage(const RecordingFile& recording);

}  // namespace camera
