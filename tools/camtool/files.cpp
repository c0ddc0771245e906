#include "tools/camtool/files.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/camtool/recording.h"

namespace camtool {

namespace {

constexpr DWORD kPartBytes = 65536;

std::string Reason(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return "it is not there";
    case ERROR_ACCESS_DENIED: return "it is write-protected, a folder, or not for this user";
    case ERROR_SHARING_VIOLATION: return "another program uses it";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return "the disk is full";
    case ERROR_INVALID_NAME: return "that is no file name";
    default: return "system error " + std::to_string(error);
  }
}

}  // namespace

std::wstring Wide(std::string_view text) {
  const int characters = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<size_t>(characters), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), characters);
  return wide;
}

std::string Narrow(std::wstring_view text) {
  const int bytes =
      WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(), bytes, nullptr, nullptr);
  return narrow;
}

HANDLE CreateNewFile(const std::string& path, bool overwrite, std::string* error) {
  HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    const DWORD code = GetLastError();
    *error =
        "cannot write \"" + path + "\": " + (code == ERROR_PATH_NOT_FOUND ? "its folder is not there" : Reason(code));
    return file;
  }
  LARGE_INTEGER size{};
  GetFileSizeEx(file, &size);
  if (size.QuadPart == 0 || (overwrite && SetEndOfFile(file))) return file;
  CloseHandle(file);
  *error = "\"" + path + "\" exists and was left as it is; choose another name, or add --overwrite";
  return INVALID_HANDLE_VALUE;
}

bool AppendToFile(HANDLE file, const std::string& path, std::string_view bytes, std::string* error) {
  LARGE_INTEGER before{};
  SetFilePointerEx(file, {}, &before, FILE_CURRENT);
  DWORD written = 0;
  const BOOL done = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  if (done && written == bytes.size()) return true;
  *error = "cannot write \"" + path + "\": " + Reason(done ? ERROR_DISK_FULL : GetLastError());
  SetFilePointerEx(file, before, nullptr, FILE_BEGIN);
  SetEndOfFile(file);
  return false;
}

HANDLE OpenForReading(const std::string& path, std::string* error) {
  // A recording can be looked at while it is being made.
  HANDLE file = CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) *error = "cannot read \"" + path + "\": " + Reason(GetLastError());
  return file;
}

bool ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error) {
  HANDLE file = OpenForReading(path, error);
  if (file == INVALID_HANDLE_VALUE) return false;
  LARGE_INTEGER size{};
  DWORD read = 0;
  bool done = GetFileSizeEx(file, &size) != FALSE;
  if (done && size.QuadPart > static_cast<LONGLONG>(limit)) {
    *error = "\"" + path + "\" is larger than " + std::to_string(limit) + " bytes";
    done = false;
  } else if (done) {
    bytes->resize(static_cast<size_t>(size.QuadPart));
    done = ReadFile(file, bytes->data(), static_cast<DWORD>(bytes->size()), &read, nullptr) && read == bytes->size();
    if (!done) *error = "cannot read \"" + path + "\": " + Reason(GetLastError());
  }
  CloseHandle(file);
  return done;
}

// ---- Recordings ----------------------------------------------------------------------------------------------------

namespace {

// Feeds the decoder until it knows what the file begins with.
bool ReadHeader(RecordingFile* recording) {
  Chunk none;
  std::string part(kPartBytes, '\0');
  for (;;) {
    switch (DecodeNext(&recording->decoder, &none)) {
      case Decoded::kHeader: return true;
      case Decoded::kNoRecording:
        recording->error = "\"" + recording->path + "\" is no recording of camtool";
        return false;
      default: break;
    }
    DWORD read = 0;
    if (!ReadFile(recording->file, part.data(), kPartBytes, &read, nullptr)) {
      recording->error = "cannot read \"" + recording->path + "\": " + Reason(GetLastError());
      return false;
    }
    // Cut off within its header: a recording of nothing.
    if (read == 0) return true;
    FeedDecoder(&recording->decoder, std::string_view(part).substr(0, read));
  }
}

}  // namespace

bool OpenRecording(const std::string& path, RecordingFile* recording) {
  recording->path = path;
  recording->file = OpenForReading(path, &recording->error);
  if (recording->file == INVALID_HANDLE_VALUE) return false;
  if (ReadHeader(recording)) return true;
  CloseRecording(recording);
  return false;
}

bool NextChunk(RecordingFile* recording, Chunk* chunk) {
  std::string part(kPartBytes, '\0');
  while (recording->decoder.hasHeader) {
    switch (DecodeNext(&recording->decoder, chunk)) {
      case Decoded::kChunk: return true;
      case Decoded::kNeedMore: break;
      default: continue;
    }
    DWORD read = 0;
    if (!ReadFile(recording->file, part.data(), kPartBytes, &read, nullptr)) {
      recording->error = "cannot read \"" + recording->path + "\": " + Reason(GetLastError());
      return false;
    }
    if (read == 0) break;
    FeedDecoder(&recording->decoder, std::string_view(part).substr(0, read));
  }
  recording->tornBytes = FinishDecoding(&recording->decoder);
  return false;
}

void Rewind(RecordingFile* recording) {
  SetFilePointer(recording->file, 0, nullptr, FILE_BEGIN);
  recording->decoder = {};
  ReadHeader(recording);
}

void CloseRecording(RecordingFile* recording) {
  if (recording->file != INVALID_HANDLE_VALUE) CloseHandle(recording->file);
  recording->file = INVALID_HANDLE_VALUE;
}

std::string DescribeDamage(const RecordingFile& recording) {
  const RecordingDecoder& decoder = recording.decoder;
  std::string text;
  if (decoder.damagedPlaces > 0) {
    text = "\"" + recording.path + "\" is damaged in " + std::to_string(decoder.damagedPlaces) + " places; " +
           std::to_string(decoder.damagedBytes) + " bytes were left out";
  }
  if (!decoder.hasEnd) {
    text += text.empty() ? "\"" + recording.path + "\" was" : std::string(", and it was");
    text += " cut off; " + std::to_string(recording.tornBytes) + " bytes of a torn chunk were left out";
  }
  return text;
}

}  // namespace camtool
