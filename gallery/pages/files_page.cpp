#include "gallery/pages/files_page.h"

#include <shlobj.h>

#include <string>

#include "framework/file_dialog.h"
#include "framework/file_path.h"
#include "gallery/page.h"
#include "gallery/pages/files_ids.h"
#include "gallery/pages/notes_file.h"
#include "gallery/texts.h"

namespace gallery {

namespace {

// What the dialogs propose: the file that was chosen last, at first one beside the program.
wchar_t proposedPath[kv::kPathCharacters];

bool MayWriteIn(const std::wstring& folder) {
  wchar_t name[kv::kPathCharacters];
  return GetTempFileNameW(folder.c_str(), L"kv", 0, name) && DeleteFileW(name);
}

// Beside the program, or among the user's documents where programs lie out of the user's reach.
void ProposeFile() {
  wchar_t folder[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(folder);
  if (!MayWriteIn(folder)) SHGetFolderPathW(nullptr, CSIDL_PERSONAL, nullptr, 0, folder);
  const std::wstring file = std::wstring(folder) + (folder[0] && folder[lstrlenW(folder) - 1] == L'\\' ? L"" : L"\\");
  lstrcpynW(proposedPath, (file + L"notes.txt").c_str(), kv::kPathCharacters);
}

void ShowStatus(HWND page, UINT textId, const wchar_t* path = L"") {
  SetDlgItemTextW(page, IDC_FILES_STATUS, TextWith(textId, path).c_str());
}

void ShowTexts(HWND page) {
  wchar_t folder[kv::kPathCharacters] = L"";
  kv::ProgramDirectory(folder);
  SetDlgItemTextW(page, IDC_FILES_FOLDER, TextWith(IDS_FILES_FOLDER, folder).c_str());
  SetDlgItemTextW(page, IDC_FILES_STATUS, L"");
}

std::wstring NotesOf(HWND page) {
  std::wstring notes(GetWindowTextLengthW(GetDlgItem(page, IDC_FILES_NOTES)) + 1, L'\0');
  notes.resize(GetDlgItemTextW(page, IDC_FILES_NOTES, notes.data(), static_cast<int>(notes.size())));
  return notes;
}

bool Choose(HWND page, UINT titleId, BOOL save) {
  return kv::ChooseFile(GetAncestor(page, GA_ROOT), proposedPath, Text(titleId).c_str(), save);
}

void Open(HWND page) {
  if (!Choose(page, IDS_FILES_OPEN_TITLE, FALSE)) return ShowStatus(page, IDS_FILES_CANCELLED);
  std::wstring notes;
  if (!ReadNotes(proposedPath, &notes)) return ShowStatus(page, IDS_FILES_NOT_READ, proposedPath);
  SetDlgItemTextW(page, IDC_FILES_NOTES, notes.c_str());
  ShowStatus(page, IDS_FILES_OPENED, proposedPath);
}

// The save dialog makes a folder of the proposed path if nothing has that name, and then no file could be saved under
// it. So there is a file meanwhile, which goes with its handle, whatever becomes of this program.
bool ChooseToSave(HWND page) {
  const HANDLE placeholder =
      CreateFileW(proposedPath, GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  CREATE_NEW, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  const bool chosen = Choose(page, IDS_FILES_SAVE_TITLE, TRUE);
  if (placeholder != INVALID_HANDLE_VALUE) CloseHandle(placeholder);
  return chosen;
}

// The dialog does not ask before it hands out the name of a file that exists.
bool MayReplace(HWND page) {
  if (GetFileAttributesW(proposedPath) == INVALID_FILE_ATTRIBUTES) return true;
  return ShowMessage(GetAncestor(page, GA_ROOT), TextWith(IDS_FILES_REPLACE, proposedPath), IDS_FILES_SAVE_TITLE,
                     MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void Save(HWND page) {
  if (!ChooseToSave(page) || !MayReplace(page)) return ShowStatus(page, IDS_FILES_CANCELLED);
  const bool saved = WriteNotes(proposedPath, NotesOf(page));
  ShowStatus(page, saved ? IDS_FILES_SAVED : IDS_FILES_NOT_WRITTEN, proposedPath);
}

INT_PTR OnInit(HWND page) {
  ProposeFile();
  SendDlgItemMessageW(page, IDC_FILES_NOTES, EM_SETLIMITTEXT, kLargestNotes, 0);
  return HandlePageMessage(page, WM_INITDIALOG, 0, 0);
}

INT_PTR OnCommand(HWND page, UINT id) {
  switch (id) {
    case IDC_FILES_OPEN: Open(page); return TRUE;
    case IDC_FILES_SAVE: Save(page); return TRUE;
    default: return FALSE;
  }
}

}  // namespace

INT_PTR CALLBACK FilesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case kTextsChanged: ShowTexts(page); break;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
