// A text file that is written sequentially, and replaces its target only when it is complete. One thread per file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kv/framework/output_file.h"

namespace kv {

class TextFile {
 public:
  // Capacity of LineBuffer() in characters.
  static constexpr size_t kLineCapacity = 1024;

  // Begins a file of 8-bit characters, in which "\n" becomes "\r\n".
  explicit TextFile(const wchar_t* path) : isComplete_(file_.Create(path)) {}

  // Whether nothing has failed yet.
  bool IsOpen() const { return isComplete_; }

  void Write(std::string_view text);

  // For text formatted in place: a buffer of kLineCapacity characters, valid until the next call of any member.
  // CommitLine takes the end of the text.
  char* LineBuffer();
  void CommitLine(const char* end) { used_ = static_cast<size_t>(end - buffer_); }

  // Writes the remaining text and replaces the target. Returns false, and leaves the target as it was, if anything
  // could not be written (a full disk); GetLastError then returns the reason.
  bool Close();

 private:
  void Flush();

  OutputFile file_;
  bool isComplete_;
  std::string lines_;  // as they are written
  size_t used_ = 0;
  char buffer_[32 * 1024];
};

}  // namespace kv
