#include "kv/toolkit/error_text.h"

#include <string>

#include "kv/framework/bounded_format.h"
#include "kv/resource.h"
#include "kv/toolkit/languages.h"

namespace kv {

namespace {

struct Reason {
  UINT id;
  const wchar_t* english;
};

Reason ReasonOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return {KV_REASON_NOT_FOUND, L"There is no such file or folder."};
    case ERROR_WRITE_PROTECT:
    case ERROR_ACCESS_DENIED: return {KV_REASON_PROTECTED, L"It is write-protected, or access is denied."};
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return {KV_REASON_IN_USE, L"Another program is using it."};
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return {KV_REASON_DISK_FULL, L"The disk is full."};
    case ERROR_BAD_DEVICE:
    case ERROR_INVALID_NAME: return {KV_REASON_INVALID_NAME, L"The file name is invalid."};
    default: return {KV_REASON_OTHER, L"System error %u."};
  }
}

}  // namespace

std::wstring ErrorText(DWORD error) {
  const Reason reason = ReasonOf(error);
  std::wstring text = ResourceText(reason.id);
  if (text.empty()) text = reason.english;
  wchar_t formatted[200];
  FormatBounded(formatted, sizeof(formatted), text.c_str(), error);
  return formatted;
}

}  // namespace kv
