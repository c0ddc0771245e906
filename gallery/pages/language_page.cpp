#include "gallery/pages.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

#include "gallery/frame.h"
#include "gallery/resource_ids.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/language.h"
#include "kv/framework/modules.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

// The first column has the flag.
const kv::ListColumn kColumns[] = {{L"", 5},
                                   {MAKEINTRESOURCEW(IDS_LANGUAGE_COLUMN_NAME), 20},
                                   {MAKEINTRESOURCEW(IDS_LANGUAGE_COLUMN_CODE), 14},
                                   {MAKEINTRESOURCEW(IDS_LANGUAGE_COLUMN_LIBRARY), 35},
                                   {MAKEINTRESOURCEW(IDS_LANGUAGE_COLUMN_HELP), 26}};

constexpr int kFlagPx = 13;  // width and height of the menu's images

// The table's rows. There is one page.
struct Row {
  int language;
  std::array<std::wstring, std::size(kColumns)> cells;
  kv::OwnedBitmap flag;
};
std::vector<Row> rows;

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

std::wstring CellText(UINT row, int column) {
  return rows[row].cells[static_cast<size_t>(column)];
}

int SelectedLanguage(HWND page) {
  const UINT row = kv::SelectedListRow(TableOf(page));
  return row < rows.size() ? rows[row].language : kv::CurrentLanguage();
}

// Reserved indexes have no row.
void FillRows(HWND page) {
  rows.clear();
  UINT current = 0;
  for (int i = 0; i < kv::kLanguageCount; ++i) {
    const kv::Language& language = kv::kLanguages[i];
    if (!language.code[0]) continue;
    if (i == kv::CurrentLanguage()) current = static_cast<UINT>(rows.size());
    rows.push_back({i,
                    {L"", language.menuName, language.code,
                     i == 0 ? kv::ResourceText(IDS_LANGUAGE_BUILT_IN) : FileText(i, L".dll"), FileText(i, L".chm")},
                    kv::OwnedBitmap(LoadBitmapA(kv::modules.application, MAKEINTRESOURCEA(IDB_LANGUAGE_FIRST + i)))});
  }
  SendMessageA(TableOf(page), LB_SETCOUNT, rows.size(), 0);
  kv::SelectListRow(TableOf(page), current);
}

// The unchecked images of the language menu, scaled with the text.
INT_PTR OnDrawItem(HWND page, const DRAWITEMSTRUCT& item) {
  const int textPx = kv::TextHeightOf(page), flagPx = textPx * 13 / 15;
  kv::DrawListRow(item, kColumns, CellText, {}, textPx * 7 / 8);  // without the internal leading
  if (item.itemID >= rows.size()) return TRUE;
  const LONG top = (item.rcItem.top + item.rcItem.bottom - flagPx) / 2, left = flagPx / 2;
  SetLayout(item.hDC, GetLayout(item.hDC) | LAYOUT_BITMAPORIENTATIONPRESERVED);
  kv::ShowBitmap(item.hDC, {left, top, left + flagPx, top + flagPx}, rows[item.itemID].flag, {kFlagPx, kFlagPx});
  return TRUE;
}

void ShowResult(HWND page) {
  wchar_t word[kv::kPathCharacters];
  GetDlgItemTextW(page, IDC_LANGUAGE_WORD, word, ARRAYSIZE(word));
  if (!word[0]) {
    SetDlgItemTextW(page, IDC_LANGUAGE_RESULT, L"");
    return;
  }
  const bool every = kv::IsChecked(page, IDC_LANGUAGE_EVERY);
  const BOOL yes = kv::IsAffirmative(every ? kv::kEveryLanguage : SelectedLanguage(page), word);
  kv::SetControlText(page, IDC_LANGUAGE_RESULT, yes ? IDS_LANGUAGE_YES : IDS_LANGUAGE_NO);
}

void OnSelected(HWND page) {
  kv::NameListRow(TableOf(page), kv::ResourceText(IDS_TITLE_FIRST + PAGE_INDEX_LANGUAGE), kColumns, CellText,
                  kv::ResourceText(IDS_LIST_CELL));
  ShowResult(page);
}

INT_PTR OnTextsChanged(HWND page) {
  const int current = kv::CurrentLanguage();
  kv::SetControlText(page, IDC_LANGUAGE_NOW, IDS_LANGUAGE_NOW, kv::kLanguages[current].menuName, current);
  FillRows(page);
  OnSelected(page);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT id, UINT code) {
  switch (id) {
    case IDC_LANGUAGE_USE: kv::SwitchLanguage(nullptr, nullptr, SelectedLanguage(page)); return TRUE;
    case IDC_LANGUAGE_TABLE:
      if (code == LBN_SELCHANGE) OnSelected(page);
      if (code == LBN_DBLCLK) kv::SwitchLanguage(nullptr, nullptr, SelectedLanguage(page));
      return TRUE;
    case IDC_LANGUAGE_WORD:
      if (code == EN_CHANGE) ShowResult(page);
      return TRUE;
    case IDC_LANGUAGE_EVERY: ShowResult(page); return TRUE;
    default: return FALSE;
  }
}

}  // namespace

INT_PTR CALLBACK LanguagePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return kv::AddListNavigation(TableOf(page));
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    case WM_DRAWITEM: return OnDrawItem(page, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case kv::kLanguageChanged: return OnTextsChanged(page);
    default: return FALSE;
  }
}

}  // namespace gallery
