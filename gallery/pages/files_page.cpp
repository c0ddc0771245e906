#include "gallery/pages.h"

#include <shlobj.h>

#include <string>

#include "gallery/pages/notes_file.h"
#include "gallery/resource_ids.h"
#include "kv/framework/file_path.h"
#include "kv/toolkit/ask_path.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/error_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

// The file that the dialogs propose: the last one, or initially one in the program's folder.
std::wstring proposedPath;

bool MayWriteIn(const std::wstring& folder) {
  wchar_t name[kv::kPathCharacters];
  return GetTempFileNameW(folder.c_str(), L"kv", 0, name) && DeleteFileW(name);
}

// In the program's folder, or in the user's documents if that folder is not writable.
void ProposeFile() {
  wchar_t folder[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(folder);
  if (!MayWriteIn(folder)) SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, 0, folder);
  proposedPath = folder;
  if (!proposedPath.ends_with(L'\\')) proposedPath += L'\\';
  proposedPath += L"notes.txt";
}

void ShowStatus(HWND page, UINT textId, const wchar_t* path = L"") {
  kv::SetControlText(page, IDC_FILES_STATUS, textId, path);
}

void ShowTexts(HWND page) {
  wchar_t folder[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(folder);
  kv::SetControlText(page, IDC_FILES_FOLDER, IDS_FILES_FOLDER, folder);
  SetDlgItemTextW(page, IDC_FILES_STATUS, L"");
  kv::SetEmptyText(page, IDC_FILES_NOTES, kv::ResourceText(IDS_FILES_EMPTY));
}

std::wstring NotesOf(HWND page) {
  std::wstring notes(GetWindowTextLengthW(GetDlgItem(page, IDC_FILES_NOTES)) + 1, L'\0');
  notes.resize(GetDlgItemTextW(page, IDC_FILES_NOTES, notes.data(), static_cast<int>(notes.size())));
  return notes;
}

void Open(HWND page) {
  if (!kv::AskOpenPath(GetAncestor(page, GA_ROOT), kv::ResourceText(IDS_FILES_OPEN_TITLE).c_str(), &proposedPath)) {
    return ShowStatus(page, IDS_FILES_CANCELED);
  }
  std::wstring notes;
  if (!ReadNotes(proposedPath.c_str(), &notes)) return ShowStatus(page, IDS_FILES_NOT_READ, proposedPath.c_str());
  SetDlgItemTextW(page, IDC_FILES_NOTES, notes.c_str());
  ShowStatus(page, IDS_FILES_OPENED, proposedPath.c_str());
}

void Save(HWND page) {
  if (!kv::AskSavePath(GetAncestor(page, GA_ROOT), kv::ResourceText(IDS_FILES_SAVE_TITLE).c_str(), &proposedPath)) {
    return ShowStatus(page, IDS_FILES_CANCELED);
  }
  if (WriteNotes(proposedPath.c_str(), NotesOf(page))) return ShowStatus(page, IDS_FILES_SAVED, proposedPath.c_str());
  const std::wstring reason = kv::ErrorText();
  ShowStatus(page, IDS_FILES_NOT_WRITTEN, (proposedPath + L" – " + reason).c_str());
}

INT_PTR OnInit(HWND page) {
  ProposeFile();
  SendDlgItemMessageW(page, IDC_FILES_NOTES, EM_SETLIMITTEXT, kMaxNotesBytes, 0);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT id) {
  switch (id) {
    case IDC_FILES_OPEN: Open(page); return TRUE;
    case IDC_FILES_SAVE: Save(page); return TRUE;
    default: return FALSE;
  }
}

}  // namespace

INT_PTR CALLBACK FilesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case kv::kLanguageChanged: ShowTexts(page); break;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
