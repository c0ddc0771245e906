#include "gallery/pages.h"

#include <commctrl.h>

#include <string>

#include "gallery/frame.h"
#include "gallery/resource_ids.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/language.h"
#include "kv/framework/modules.h"
#include "kv/framework/painting.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

struct Column {
  UINT title;
  int share;  // percent of the table's width
};
constexpr Column kColumns[] = {{IDS_LANGUAGE_COLUMN_NAME, 22},
                               {IDS_LANGUAGE_COLUMN_CODE, 14},
                               {IDS_LANGUAGE_COLUMN_LIBRARY, 37},
                               {IDS_LANGUAGE_COLUMN_HELP, 27}};

constexpr COLORREF kClear = RGB(255, 0, 255);
constexpr int kFlagPx = 13;  // width and height of the menu's images

HWND TableOf(HWND page) {
  return GetDlgItem(page, IDC_LANGUAGE_TABLE);
}

// Returns the name of the file that FindLanguageFile finds, which may be another language's.
std::wstring FileText(int language, const wchar_t* extension) {
  wchar_t path[kv::kPathCharacters];
  if (kv::FindLanguageFile(language, kFileStem, extension, path, FALSE) == kv::kLanguageFileNone) {
    return kv::ResourceText(IDS_LANGUAGE_MISSING);
  }
  return kv::FileNameOf(path);
}

// The item data of a row is the language index; reserved indexes have no row.
int LanguageOfRow(HWND table, int row) {
  LVITEMW item{};
  item.mask = LVIF_PARAM;
  item.iItem = row;
  return SendMessageW(table, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) ? static_cast<int>(item.lParam) : -1;
}

int SelectedRow(HWND table) {
  return static_cast<int>(SendMessageW(table, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

int SelectedLanguage(HWND page) {
  const HWND table = TableOf(page);
  const int row = SelectedRow(table);
  const int language = row < 0 ? -1 : LanguageOfRow(table, row);
  return language < 0 ? kv::CurrentLanguage() : language;
}

void SetCell(HWND table, int row, int column, const std::wstring& text) {
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = const_cast<wchar_t*>(text.c_str());
  SendMessageW(table, LVM_SETITEMTEXTW, row, reinterpret_cast<LPARAM>(&item));
}

// The unchecked images of the language menu, scaled with the text.
HIMAGELIST FlagImages(int textPx) {
  const int flagPx = textPx * 13 / 15, rowPx = flagPx + 4;
  const HIMAGELIST images = ImageList_Create(flagPx, rowPx, ILC_COLOR24 | ILC_MASK, kv::kLanguageCount, 0);
  const kv::WindowDc screen(nullptr);
  for (int i = 0; i < kv::kLanguageCount; ++i) {
    const kv::OwnedBitmap flag(LoadBitmapA(kv::modules.application, MAKEINTRESOURCEA(IDB_LANGUAGE_FIRST + i)));
    // Images have the height of the rows, with the flag in the middle and transparency around it.
    const kv::OwnedBitmap image(CreateCompatibleBitmap(screen, flagPx, rowPx));
    const kv::MemoryDc dc(screen);
    {
      const kv::SelectedObject selected(dc, image);
      kv::FillSolid(dc, {0, 0, flagPx, rowPx}, kClear);
      kv::ShowBitmap(dc, {0, 2, flagPx, 2 + flagPx}, flag, {kFlagPx, kFlagPx});
    }
    ImageList_AddMasked(images, image, kClear);
  }
  return images;
}

void AddRow(HWND table, int language) {
  LVITEMW item{};
  item.mask = LVIF_TEXT | LVIF_PARAM | LVIF_IMAGE;
  item.iImage = language;
  item.iItem = kv::kLanguageCount;
  item.pszText = const_cast<wchar_t*>(kv::kLanguages[language].menuName);
  item.lParam = language;
  const int row = static_cast<int>(SendMessageW(table, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
  SetCell(table, row, 1, kv::kLanguages[language].code);
  SetCell(table, row, 2, language == 0 ? kv::ResourceText(IDS_LANGUAGE_BUILT_IN) : FileText(language, L".dll"));
  SetCell(table, row, 3, FileText(language, L".chm"));
  if (language != kv::CurrentLanguage()) return;
  item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
  SendMessageW(table, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&item));
  SendMessageW(table, LVM_ENSUREVISIBLE, row, FALSE);
}

void FillTable(HWND table) {
  SendMessageW(table, WM_SETREDRAW, FALSE, 0);
  SendMessageW(table, LVM_DELETEALLITEMS, 0, 0);
  for (int i = 0; i < static_cast<int>(ARRAYSIZE(kColumns)); ++i) {
    std::wstring title = kv::ResourceText(kColumns[i].title);
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT;
    column.pszText = title.data();
    SendMessageW(table, LVM_SETCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
  }
  for (int i = 0; i < kv::kLanguageCount; ++i) {
    if (kv::kLanguages[i].code[0] != L'\0') AddRow(table, i);
  }
  SendMessageW(table, WM_SETREDRAW, TRUE, 0);
}

void ShareWidth(HWND table) {
  RECT client{};
  GetClientRect(table, &client);
  for (int i = 0; i < static_cast<int>(ARRAYSIZE(kColumns)); ++i) {
    SendMessageW(table, LVM_SETCOLUMNWIDTH, i, client.right * kColumns[i].share / 100);
  }
}

void ShowResult(HWND page) {
  wchar_t word[kv::kPathCharacters];
  GetDlgItemTextW(page, IDC_LANGUAGE_WORD, word, ARRAYSIZE(word));
  if (!word[0]) {
    SetDlgItemTextW(page, IDC_LANGUAGE_RESULT, L"");
    return;
  }
  const bool every = IsDlgButtonChecked(page, IDC_LANGUAGE_EVERY) == BST_CHECKED;
  const BOOL yes = kv::IsAffirmative(every ? kv::kEveryLanguage : SelectedLanguage(page), word);
  SetPageText(page, IDC_LANGUAGE_RESULT, yes ? IDS_LANGUAGE_YES : IDS_LANGUAGE_NO);
}

void ShowTexts(HWND page) {
  const int current = kv::CurrentLanguage();
  const std::wstring now = TextWith(IDS_LANGUAGE_NOW, kv::kLanguages[current].menuName, current);
  SetDlgItemTextW(page, IDC_LANGUAGE_NOW, now.c_str());
  FillTable(TableOf(page));
  ShowResult(page);
}

INT_PTR OnInit(HWND page) {
  const HWND table = TableOf(page);
  SendMessageW(table, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
  for (int i = 0; i < static_cast<int>(ARRAYSIZE(kColumns)); ++i) {
    LVCOLUMNW column{};
    SendMessageW(table, LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
  }
  return TRUE;
}

// The table owns its images and deletes the last ones itself.
void ScaleFlags(HWND page) {
  const auto images = reinterpret_cast<LPARAM>(FlagImages(kv::TextHeightOf(page)));
  const LRESULT former = SendMessageW(TableOf(page), LVM_SETIMAGELIST, LVSIL_SMALL, images);
  ImageList_Destroy(reinterpret_cast<HIMAGELIST>(former));
}

INT_PTR OnSize(HWND page) {
  ScaleFlags(page);
  ShareWidth(TableOf(page));
  SendMessageW(TableOf(page), LVM_ENSUREVISIBLE, SelectedRow(TableOf(page)), FALSE);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT id, UINT code) {
  switch (id) {
    case IDC_LANGUAGE_USE: kv::SwitchLanguage(nullptr, nullptr, SelectedLanguage(page)); return TRUE;
    case IDC_LANGUAGE_WORD:
      if (code == EN_CHANGE) ShowResult(page);
      return TRUE;
    case IDC_LANGUAGE_EVERY: ShowResult(page); return TRUE;
    default: return FALSE;
  }
}

INT_PTR OnNotify(HWND page, const NMHDR& notification) {
  if (notification.idFrom != IDC_LANGUAGE_TABLE) return FALSE;
  if (notification.code == LVN_ITEMCHANGED) ShowResult(page);
  const bool chosen =
      notification.code == static_cast<UINT>(NM_DBLCLK) || notification.code == static_cast<UINT>(NM_RETURN);
  if (chosen) OnCommand(page, IDC_LANGUAGE_USE, 0);
  return TRUE;
}

}  // namespace

INT_PTR CALLBACK LanguagePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_SIZE: return OnSize(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case WM_NOTIFY: return OnNotify(page, kv::NotificationOf(lParam));
    case kv::kLanguageChanged: ShowTexts(page); break;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
