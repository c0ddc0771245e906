// A text file that is written sequentially, and deleted if it cannot be written completely. One thread per file.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace kv {

class TextFile {
 public:
  // Capacity of LineBuffer() in characters.
  static constexpr size_t kLineCapacity = 1024;

  // Creates or truncates the file in the C runtime's text mode: 8-bit characters, and "\n" becomes "\r\n". `path` must
  // outlive the object.
  explicit TextFile(const wchar_t* path);
  // Deletes the file unless Close() has succeeded.
  ~TextFile();
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;

  bool IsOpen() const { return file_ != nullptr; }

  void Write(std::string_view text);

  // For text formatted in place: a buffer of kLineCapacity characters, valid until the next call of any member.
  // CommitLine takes the end of the text.
  char* LineBuffer();
  void CommitLine(const char* end) { used_ = static_cast<size_t>(end - buffer_); }

  // Writes the remaining text and closes the file. If any text could not be written (a full disk), deletes the file and
  // returns false.
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
