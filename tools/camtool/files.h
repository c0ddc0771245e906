// Files of camtool: UTF-8 names, errors as sentences. Any thread; a file belongs to one.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "tools/camtool/recording.h"

namespace camtool {

// Between UTF-8 and the system's texts.
std::wstring Wide(std::string_view text);
std::string Narrow(std::wstring_view text);

// A file that is written from its beginning. One that holds something already is refused unless `overwrite`.
// INVALID_HANDLE_VALUE, with a sentence in `error`, when it cannot be made.
HANDLE CreateNewFile(const std::string& path, bool overwrite, std::string* error);

// Adds bytes at the end, all or (a full disk) none. On false `error` has a sentence.
bool AppendToFile(HANDLE file, const std::string& path, std::string_view bytes, std::string* error);

// For reading. INVALID_HANDLE_VALUE, with a sentence in `error`, on failure.
HANDLE OpenForReading(const std::string& path, std::string* error);

// A whole small file of at most `limit` bytes.
bool ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error);

// ---- Recordings ----------------------------------------------------------------------------------------------------

struct RecordingFile {
  HANDLE file = INVALID_HANDLE_VALUE;
  std::string path, error;
  RecordingDecoder decoder;
  size_t tornBytes = 0;
};

// False, with a sentence in `error`, when the file cannot be read or is no recording.
bool OpenRecording(const std::string& path, RecordingFile* recording);

// The next chunk. False at the end of the file, after which `tornBytes` is set, and on a failed read (then there is an
// error).
bool NextChunk(RecordingFile* recording, Chunk* chunk);

// Starts again with the first chunk.
void Rewind(RecordingFile* recording);

void CloseRecording(RecordingFile* recording);

// What was wrong with a recording that was read to its end, as a sentence; "" when nothing was.
std::string DescribeDamage(const RecordingFile& recording);

}  // namespace camtool
