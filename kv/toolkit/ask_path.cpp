#include "kv/toolkit/ask_path.h"

#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "kv/framework/file_path.h"

namespace kv {

namespace {

// The filters of BuildFilterText for two types, either of which may be empty.
std::wstring FilterOf(const wchar_t* extension, const wchar_t* otherExtension) {
  std::wstring filter;
  for (const wchar_t* one : {extension, otherExtension}) {
    if (!*one) continue;
    for (const wchar_t* part : {one + 1, L" files (*", one, L")|*", one, L"|"}) filter += part;
  }
  filter += L"All files (*.*)|*.*|";
  std::ranges::replace(filter, L'|', L'\0');  // which no file name contains
  return filter;
}

BOOL Ask(HWND owner, const wchar_t* title, const wchar_t* otherExtension, std::wstring* path, DWORD flags,
         BOOL(WINAPI* show)(OPENFILENAMEW*)) {
  constexpr size_t kMaxPathCharacters = 32768;
  const wchar_t* name = FileNameOf(path->c_str());
  const wchar_t* extension = ExtensionOf(name);
  const std::wstring folder = path->substr(0, static_cast<size_t>(name - path->c_str()));
  const std::wstring filter = FilterOf(extension, otherExtension);
  std::vector<wchar_t> file(kMaxPathCharacters);
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof(dialog);
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = filter.c_str();
  dialog.lpstrFile = file.data();
  dialog.nMaxFile = static_cast<DWORD>(file.size());
  dialog.lpstrInitialDir = folder.c_str();
  dialog.lpstrTitle = title;
  dialog.lpstrDefExt = *extension ? extension + 1 : nullptr;
  dialog.Flags = OFN_EXPLORER | OFN_ENABLESIZING | OFN_HIDEREADONLY | OFN_NOCHANGEDIR | flags;
  lstrcpynW(file.data(), name, static_cast<int>(file.size()));
  BOOL chosen = show(&dialog);
  if (!chosen && CommDlgExtendedError() == FNERR_INVALIDFILENAME) {
    file[0] = L'\0';
    chosen = show(&dialog);
  }
  if (chosen) *path = file.data();
  return chosen;
}

}  // namespace

BOOL AskOpenPath(HWND owner, const wchar_t* title, std::wstring* path) {
  return Ask(owner, title, L"", path, OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST, GetOpenFileNameW);
}

BOOL AskSavePath(HWND owner, const wchar_t* title, std::wstring* path, const wchar_t* otherExtension) {
  return Ask(owner, title, otherExtension, path, OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST, GetSaveFileNameW);
}

}  // namespace kv
