#include "gallery/pages/notes_file.h"
#include <cstddef>
#include <string>
#include <string_view>

namespace gallery {

namespace {

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

bool ReadBytes(const wchar_t* path, std::string* bytes) {
  const HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  LARGE_INTEGER size{};
  DWORD read = 0;
  bool done = GetFileSizeEx(file, &size) && size.QuadPart <= kMaxNotesBytes;
  if (done) {
    bytes->resize(static_cast<size_t>(size.QuadPart));
    done = ReadFile(file, bytes->data(), static_cast<DWORD>(bytes->size()), &read, nullptr) && read == bytes->size();
  }
  CloseHandle(file);
  return done;
}

bool WriteBytes(const wchar_t* path, const std::string& bytes) {
  const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  DWORD written = 0;
  const bool done =
      WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) && written == bytes.size();
  return CloseHandle(file) && done;
}

}  // namespace

bool DecodeNotes(std::string_view bytes, std::wstring* text) {
  if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(sizeof(kByteOrderMark) - 1);
  const int size = static_cast<int>(bytes.size());
  const int characters = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
  if (size > 0 && characters == 0) return false;
  text->resize(characters);
  MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text->data(), characters);
  return true;
}

bool ReadNotes(const wchar_t* path, std::wstring* text) {
  std::string bytes;
  return ReadBytes(path, &bytes) && DecodeNotes(bytes, text);
}

bool WriteNotes(const wchar_t* path, const std::wstring& text) {
  const int characters = static_cast<int>(text.size());
  std::string bytes(WideCharToMultiByte(CP_UTF8, 0, text.data(), characters, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), characters, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                      nullptr);
  const std::wstring beside = std::wstring(path) + L".new";
  if (WriteBytes(beside.c_str(), bytes) && MoveFileExW(beside.c_str(), path, MOVEFILE_REPLACE_EXISTING)) return true;
  DeleteFileW(beside.c_str());
  return false;
}

}  // namespace gallery
