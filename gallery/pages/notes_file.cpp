#include "gallery/pages/notes_file.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "kv/framework/output_file.h"
#include "kv/framework/utf8.h"

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
  return kv::WriteWholeFile(path, kv::Narrow(text));
}

}  // namespace gallery
