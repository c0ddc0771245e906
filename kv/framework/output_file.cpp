#include "kv/framework/output_file.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "kv/framework/file_path.h"

namespace kv {

namespace {

// NUL, CON and COM3 are devices in any folder.
bool IsDeviceName(const std::wstring& path) {
  wchar_t full[MAX_PATH];
  const DWORD length = GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
  return length < MAX_PATH && std::wstring_view(full, length).starts_with(L"\\\\.\\");
}

// Returns the reason why the target cannot be replaced, or 0.
DWORD TargetError(const std::wstring& path, bool* replaces) {
  *replaces = false;
  if (path.empty()) return ERROR_INVALID_NAME;
  if (IsDeviceName(path)) return ERROR_BAD_DEVICE;
  const HANDLE existing =
      CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, 0, nullptr);
  if (existing == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_FILE_NOT_FOUND ? 0 : GetLastError();
  BY_HANDLE_FILE_INFORMATION found{};
  const bool isFile = GetFileType(existing) == FILE_TYPE_DISK && GetFileInformationByHandle(existing, &found);
  CloseHandle(existing);
  *replaces = found.nFileSizeHigh > 0 || found.nFileSizeLow > 0;
  if (!isFile) return ERROR_BAD_DEVICE;
  // Elsewhere than on Windows, an administrator may open a write-protected file for writing.
  return found.dwFileAttributes & FILE_ATTRIBUTE_READONLY ? ERROR_WRITE_PROTECT : 0;
}

// A temporary file that a process still writes is open; that of an ended one is not.
void DeleteIfAbandoned(const std::wstring& part) {
  const HANDLE file = CreateFileW(part.c_str(), DELETE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

constexpr std::wstring_view kPart = L".part";

void DeleteAbandoned(const std::wstring& path) {
  const size_t folder = static_cast<size_t>(FileNameOf(path.c_str()) - path.c_str());
  const size_t name = path.size() - folder + 1;  // with the dot before the number of the process
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW((path + L".*" + std::wstring(kPart)).c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    std::wstring_view process = found.cFileName;
    if (process.size() <= name + kPart.size()) continue;
    process = process.substr(name, process.size() - name - kPart.size());
    if (process.find_first_not_of(L"0123456789") == process.npos)
      DeleteIfAbandoned(path.substr(0, folder) + found.cFileName);
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

}  // namespace

bool WriteBytes(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    constexpr size_t kMaxBytes = 1 << 24;
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kMaxBytes)), &written, nullptr))
      return false;
    if (written == 0) {
      SetLastError(ERROR_DISK_FULL);
      return false;
    }
    bytes.remove_prefix(written);
  }
  return true;
}

bool OutputFile::Create(const std::wstring& path) {
  Close();
  const DWORD error = TargetError(path, &replaces_);
  if (error) {
    SetLastError(error);
    return false;
  }
  DeleteAbandoned(path);
  const std::wstring part = path + L"." + std::to_wstring(GetCurrentProcessId()) + std::wstring(kPart);
  file_ =
      CreateFileW(part.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (file_ == INVALID_HANDLE_VALUE) return false;
  path_ = path;
  part_ = part;
  size_ = 0;
  isPublished_ = false;
  return true;
}

bool OutputFile::Append(std::string_view bytes) {
  if (WriteBytes(file_, bytes)) {
    size_ += static_cast<LONGLONG>(bytes.size());
    return true;
  }
  const DWORD error = GetLastError();
  LARGE_INTEGER before{};
  before.QuadPart = size_;
  if (SetFilePointerEx(file_, before, nullptr, FILE_BEGIN)) SetEndOfFile(file_);
  SetLastError(error);
  return false;
}

bool OutputFile::Publish() {
  if (!isPublished_) {
    isPublished_ = FlushFileBuffers(file_) && MoveFileExW(part_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING);
  }
  return isPublished_;
}

void OutputFile::Close() {
  if (file_ == INVALID_HANDLE_VALUE) return;
  const DWORD error = GetLastError();
  CloseHandle(file_);
  file_ = INVALID_HANDLE_VALUE;
  if (!isPublished_) DeleteFileW(part_.c_str());
  SetLastError(error);
}

bool WriteWholeFile(const std::wstring& path, std::string_view bytes) {
  OutputFile file;
  return file.Create(path) && file.Append(bytes) && file.Publish();
}

}  // namespace kv
