// A text file that is written from start to end and is either whole or not there at all. One thread per file.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace kv {

class TextFile {
 public:
  // Room that LineBuffer() gives, in characters.
  static constexpr size_t kLineCapacity = 1024;

  // Creates the file or empties an existing one, in the C run-time's text mode: 8-bit characters, and "\n" becomes
  // "\r\n" in the file. `path` must outlive the object.
  explicit TextFile(const wchar_t* path);
  // A file that was not closed with success is removed.
  ~TextFile();
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  bool IsOpen() const { return file_ != nullptr; }

  void Write(std::string_view text);

  // For text that is formatted in place: room for kLineCapacity characters, valid until the next call of any member,
  // and the end of what was put there.
  char* LineBuffer();
  void CommitLine(const char* end) { used_ = static_cast<size_t>(end - buffer_); }

  // Writes what is left and closes. If any of the text could not be written (a full disk), the file is removed and the
  // result is false.
  bool Close();

 private:
  void Flush();

  const wchar_t* path_;
  FILE* file_;
  bool failed_ = false;
  size_t used_ = 0;
  char buffer_[32 * 1024];
};

}  // namespace kv
