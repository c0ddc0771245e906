#include "kv/export/text_file.h"

#include <cstring>
#include <string_view>

namespace kv {

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
  Flush();
  return isComplete_ && file_.Publish();
}

void TextFile::Flush() {
  lines_.clear();
  for (size_t from = 0; from < used_;) {
    const auto* end = static_cast<const char*>(std::memchr(buffer_ + from, '\n', used_ - from));
    const size_t to = end ? static_cast<size_t>(end - buffer_) : used_;
    lines_.append(buffer_ + from, to - from);
    if (end) lines_ += "\r\n";
    from = to + 1;
  }
  used_ = 0;
  isComplete_ = isComplete_ && file_.Append(lines_);
}

}  // namespace kv
