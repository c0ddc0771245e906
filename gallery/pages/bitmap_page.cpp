#include "gallery/pages.h"

#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "gallery/resource_ids.h"
#include "kv/controls/simple_bitmap.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr int kLoggedLines = 200;

// A number in three notations, a name, and a name without a resource.
constexpr const wchar_t* kNames[] = {L"301", L"0x12D", L"0455", L"BACKDROP", L"MISSING"};

void Log(HWND page, const wchar_t* line) {
  HWND log = GetDlgItem(page, IDC_BITMAP_LOG);
  SendMessageW(log, LB_INSERTSTRING, 0, reinterpret_cast<LPARAM>(line));
  SendMessageW(log, LB_DELETESTRING, kLoggedLines, 0);
  SendMessageW(log, LB_SETTOPINDEX, 0, 0);
}

void OnBitmapNotification(HWND page, int controlId, UINT code) {
  const auto log = [&](UINT textId) { Log(page, kv::TextWith(textId, controlId - IDC_BITMAP_PLAIN + 1).c_str()); };
  switch (code) {
    case kv::kBitmapLeftClick: return log(IDS_BITMAP_LEFT);
    case kv::kBitmapRightClick: return log(IDS_BITMAP_RIGHT);
    case kv::kBitmapMiddleClick: return log(IDS_BITMAP_MIDDLE);
    case kv::kBitmapDoubleClick: return log(IDS_BITMAP_DOUBLE);
    default: return;
  }
}

void ShowChosen(HWND page) {
  const LRESULT choice = SendDlgItemMessageW(page, IDC_BITMAP_NAME, CB_GETCURSEL, 0, 0);
  if (choice >= 0 && choice < static_cast<LRESULT>(std::size(kNames))) {
    SetDlgItemTextW(page, IDC_BITMAP_CHOSEN, kNames[choice]);
  }
}

void OnCommand(HWND page, int controlId, UINT code) {
  if (controlId >= IDC_BITMAP_PLAIN && controlId <= IDC_BITMAP_LAST) {
    return OnBitmapNotification(page, controlId, code);
  }
  switch (controlId) {
    case IDC_BITMAP_NAME:
      if (code == CBN_SELCHANGE) ShowChosen(page);
      break;
    case IDC_BITMAP_BUTTON:
      if (code == BN_CLICKED) Log(page, kv::ResourceText(IDS_BITMAP_BUTTON).c_str());
      break;
    case IDC_BITMAP_EDIT:
      if (code == EN_UPDATE && GetFocus() == GetDlgItem(page, IDC_BITMAP_EDIT))
        Log(page, kv::ResourceText(IDS_BITMAP_TYPED).c_str());
      break;
    case IDC_BITMAP_CLEAR: SendDlgItemMessageW(page, IDC_BITMAP_LOG, LB_RESETCONTENT, 0, 0); break;
    default: break;
  }
}

void OnInit(HWND page) {
  for (const wchar_t* name : kNames) {
    SendDlgItemMessageW(page, IDC_BITMAP_NAME, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
  }
  SendDlgItemMessageW(page, IDC_BITMAP_NAME, CB_SETCURSEL, 0, 0);
}

// A bitmap's label without its access key; the log uses it.
std::wstring LabelText(HWND page, int bitmap) {
  wchar_t text[128] = L"";
  GetDlgItemTextW(page, IDC_BITMAP_LABEL + bitmap, text, ARRAYSIZE(text));
  std::wstring name = text;
  if (const size_t key = name.find(L"(&"); key != name.npos) name.erase(key, 4);  // scripts that put it after the text
  std::erase(name, L'&');
  return name;
}

// The template's texts are also the names of the bitmaps; the selected name is set again.
void OnTextsChanged(HWND page) {
  ShowChosen(page);
  kv::SetEmptyText(page, IDC_BITMAP_LOG, kv::ResourceText(IDS_BITMAP_EMPTY));
  for (int i = 0; i <= IDC_BITMAP_LAST - IDC_BITMAP_PLAIN; ++i)
    kv::NameControl(page, IDC_BITMAP_PLAIN + i, LabelText(page, i).c_str());
}

}  // namespace

INT_PTR CALLBACK BitmapPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_COMMAND: OnCommand(page, LOWORD(wParam), HIWORD(wParam)); return TRUE;
    case kv::kLanguageChanged: OnTextsChanged(page); return TRUE;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
