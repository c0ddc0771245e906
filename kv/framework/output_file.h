// Files that replace older ones only when they are complete: a full disk, a write-protected folder or the end of the
// process leaves the older file as it was. A file belongs to one thread at a time.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace kv {

// The functions return false on failure. GetLastError then returns the reason, also after the destructor;
// kv/toolkit/error_text.h has a sentence for it.
class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile() { Close(); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Creates a temporary file beside the target `path`, named "target.PROCESS.part". Fails at once if it could not
  // replace the target later: a folder, a device, a write-protected file, or one that another program has opened for
  // itself. Deletes temporary files of this target that ended processes have left behind.
  bool Create(const std::wstring& path);
  // Whether the target existed then, and was not empty.
  bool replaces() const { return replaces_; }

  // Appends all bytes, or none.
  bool Append(std::string_view bytes);
  LONGLONG size() const { return size_; }

  // Flushes the file and renames it to its target, replacing that. More bytes can be appended afterward. Does nothing
  // the second time.
  bool Publish();
  bool isPublished() const { return isPublished_; }

  // Waits until the disk has what was appended, which then outlasts a power failure.
  void Flush() { FlushFileBuffers(file_); }

  // Closes the file, and deletes it if it was not published.
  void Close();

 private:
  HANDLE file_ = INVALID_HANDLE_VALUE;
  std::wstring path_, part_;  // of the target and of the temporary file
  LONGLONG size_ = 0;
  bool replaces_ = false, isPublished_ = false;
};

// Writes a whole file. On failure an existing one is unchanged.
bool WriteWholeFile(const std::wstring& path, std::string_view bytes);

// Writes all bytes to a file or pipe. Returns false, with GetLastError's reason, if it took only some of them.
bool WriteBytes(HANDLE file, std::string_view bytes);

}  // namespace kv
