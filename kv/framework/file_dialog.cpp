#include "kv/framework/file_dialog.h"

#include <commdlg.h>

#include <cstddef>
#include <cwchar>

#include "kv/framework/bounded_format.h"
#include "kv/framework/file_path.h"

namespace kv {

namespace {

// The struct's size before Windows 2000, without the places bar and reserved fields; every Windows accepts it.
constexpr DWORD kOpenFileNameSize = offsetof(OPENFILENAMEW, pvReserved);
static_assert(kOpenFileNameSize == 76);

constexpr DWORD kDialogFlags = OFN_ENABLESIZING | OFN_EXPLORER | OFN_NOVALIDATE | OFN_SHOWHELP | OFN_NOCHANGEDIR;
static_assert(kDialogFlags == 0x880118);

constexpr size_t kSeparatedCharacters = 256;  // the part of the filter in which separators become zeros

bool IsPath(const wchar_t* path) {
  return !IsBadReadPtr(path, kPathCharacters * sizeof(wchar_t)) && std::wmemchr(path, L'\0', kPathCharacters);
}

void ShowDialogError(HWND owner, const wchar_t* title, DWORD code) {
  wchar_t text[64];
  FormatBounded(text, sizeof(text), L"Error %ld", code);
  MessageBoxW(owner, text, title, MB_ICONHAND);
}

}  // namespace

FilterText BuildFilterText(const wchar_t* extension) {
  FilterText filter{};
  const wchar_t* type = extension[0] == L'.' ? extension + 1 : extension;
  FormatBounded(filter.text, sizeof(filter.text), L"%s files (*%s)\t*%s\rAll files (*.*)\t*.*\r", type, extension,
                extension);
  for (size_t i = 0; i < kSeparatedCharacters; ++i) {
    if (filter.text[i] < L' ') filter.text[i] = L'\0';
  }
  return filter;
}

BOOL ChooseFile(HWND owner, wchar_t* path, const wchar_t* title, BOOL save) {
  if (!IsPath(path) || IsBadWritePtr(path, kPathCharacters * sizeof(wchar_t)) || !IsReadableText(title)) return FALSE;

  const FilterText filter = BuildFilterText(ExtensionOf(path));
  wchar_t folder[kPathCharacters], file[kPathCharacters], fileTitle[kPathCharacters] = L"";
  lstrcpynW(folder, path, FileNameOf(path) - path + 1);
  lstrcpyW(file, FileNameOf(path));

  OPENFILENAMEW dialog{};
  dialog.lStructSize = kOpenFileNameSize;
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = filter.text;
  dialog.nFilterIndex = 1;
  dialog.lpstrFile = file;
  dialog.nMaxFile = kPathCharacters;
  dialog.lpstrFileTitle = fileTitle;
  dialog.nMaxFileTitle = kPathCharacters;
  dialog.lpstrInitialDir = folder;
  dialog.lpstrTitle = title;
  dialog.Flags = kDialogFlags;

  if (save) CreateDirectoryW(path, nullptr);
  if (save ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog)) {
    lstrcpynW(path, file, kPathCharacters);
    return TRUE;
  }
  if (const DWORD code = CommDlgExtendedError()) ShowDialogError(owner, title, code);
  return FALSE;
}

}  // namespace kv
