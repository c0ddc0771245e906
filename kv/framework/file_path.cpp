#include "kv/framework/file_path.h"

#include <array>
#include <cwchar>

namespace kv {

namespace {
// Windows' limit: the program's path may be longer than a path buffer.
constexpr DWORD kMaxPathCharacters = 32767;
}  // namespace

BOOL IsReadableText(const wchar_t* text) {
  return !IsBadStringPtrW(text, kPathCharacters);
}

const wchar_t* FileNameOf(const wchar_t* path) {
  const wchar_t* name = path[0] != L'\0' && path[1] == L':' ? path + 2 : path;
  for (const wchar_t* at = name; *at != L'\0'; ++at) {
    if (*at == L'\\' || *at == L'/') name = at + 1;
  }
  return name;
}

const wchar_t* ExtensionOf(const wchar_t* path) {
  const wchar_t* name = FileNameOf(path);
  const wchar_t* dot = std::wcsrchr(name, L'.');
  return dot ? dot : name + std::wcslen(name);
}

BOOL DirectoryOf(const wchar_t* path, wchar_t* directory, size_t characters) {
  const size_t length = FileNameOf(path) - path;
  const bool ended = length > 0 && path[length - 1] == L'\\';
  if (length + (ended ? 0 : 1) >= characters) return FALSE;
  std::wmemcpy(directory, path, length);
  std::wcscpy(directory + length, ended ? L"" : L"\\");
  return TRUE;
}

BOOL ProgramDirectory(wchar_t* directory) {
  std::array<wchar_t, kMaxPathCharacters + 1> program{};
  std::array<wchar_t, kPathCharacters> folder;
  GetModuleFileNameW(nullptr, program.data(), kMaxPathCharacters);
  if (!DirectoryOf(program.data(), folder.data(), folder.size())) return TRUE;
  const size_t size = (std::wcslen(folder.data()) + 1) * sizeof(wchar_t);
  if (!IsBadWritePtr(directory, size)) std::wmemcpy(directory, folder.data(), size / sizeof(wchar_t));
  return TRUE;
}

}  // namespace kv
