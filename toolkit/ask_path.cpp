#include "toolkit/ask_path.h"

#include <commdlg.h>

#include <cstddef>
#include <string>
#include <vector>

#include "framework/file_dialog.h"
#include "framework/file_path.h"

namespace kv {

namespace {

BOOL Ask(HWND owner, const wchar_t* title, std::wstring* path, DWORD flags, BOOL(WINAPI* show)(OPENFILENAMEW*)) {
  constexpr size_t kMaxPathCharacters = 32768;
  const wchar_t* name = FileNameOf(path->c_str());
  const wchar_t* extension = ExtensionOf(name);
  const std::wstring folder = path->substr(0, static_cast<size_t>(name - path->c_str()));
  const FilterText filter = BuildFilterText(extension);
  std::vector<wchar_t> file(kMaxPathCharacters);
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof(dialog);
  dialog.hwndOwner = owner;
  // Without an extension only the filter "all files", the second of the list.
  dialog.lpstrFilter = *extension ? filter.text : L"*.*\0*.*\0";
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
  return Ask(owner, title, path, OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST, GetOpenFileNameW);
}

BOOL AskSavePath(HWND owner, const wchar_t* title, std::wstring* path) {
  return Ask(owner, title, path, OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST, GetSaveFileNameW);
}

}  // namespace kv
