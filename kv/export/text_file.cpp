#include "kv/export/text_file.h"

#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string_view>

namespace kv {

TextFile::TextFile(const wchar_t* path) : path_(path), file_(_wfopen(path, L"w")) {}

TextFile::~TextFile() {
  failed_ = true;
  Close();
}

void TextFile::Write(std::string_view text) {
  while (!text.empty()) {
    if (used_ == sizeof(buffer_)) Flush();
    const std::string_view piece = text.substr(0, sizeof(buffer_) - used_);
    std::memcpy(buffer_ + used_, piece.data(), piece.size());
    used_ += piece.size();
    text.remove_prefix(piece.size());
  }
}

char* TextFile::LineBuffer() {
  if (sizeof(buffer_) - used_ < kLineCapacity) Flush();
  return buffer_ + used_;
}

bool TextFile::Close() {
  if (!file_) return false;
  Flush();
  // Some runtimes' fclose does not report that its flush failed.
  if (std::fflush(file_) != 0) failed_ = true;
  if (std::fclose(file_) != 0) failed_ = true;
  file_ = nullptr;
  if (failed_) DeleteFileW(path_);
  return !failed_;
}

void TextFile::Flush() {
  if (!failed_ && std::fwrite(buffer_, 1, used_, file_) != used_) failed_ = true;
  used_ = 0;
}

}  // namespace kv
