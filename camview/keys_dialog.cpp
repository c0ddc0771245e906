#include "camview/dialogs.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "camview/resource_ids.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/scaled_dialog.h"

namespace camview {

namespace {

const kv::ListColumn kColumns[] = {{MAKEINTRESOURCEW(IDS_COLUMN_KEY), 42}, {MAKEINTRESOURCEW(IDS_COLUMN_ACTION), 58}};

using Keys = std::vector<std::pair<std::wstring, std::wstring>>;

// The text has a line for each key: the key, a tab and its command.
Keys ReadKeys() {
  Keys keys;
  const std::wstring text = kv::ResourceText(IDS_KEYS_TEXT) + L"\n";
  for (size_t begin = 0, end; (end = text.find(L'\n', begin)) != text.npos; begin = end + 1) {
    const std::wstring line = text.substr(begin, end - begin);
    const size_t tab = line.find(L'\t');
    if (tab != line.npos) keys.emplace_back(line.substr(0, tab), line.substr(tab + 1));
  }
  return keys;
}

INT_PTR OnInit(HWND dialog, LPARAM keys) {
  SetWindowLongW(dialog, DWL_USER, static_cast<LONG>(keys));
  kv::AddListNavigation(GetDlgItem(dialog, IDC_KEYS));
  SendDlgItemMessageW(dialog, IDC_KEYS, LB_SETCOUNT, reinterpret_cast<const Keys*>(keys)->size(), 0);
  return TRUE;
}

INT_PTR OnDrawItem(HWND dialog, const DRAWITEMSTRUCT& item) {
  const auto& keys = *reinterpret_cast<const Keys*>(GetWindowLongW(dialog, DWL_USER));
  const int textPx = static_cast<int>(item.rcItem.bottom - item.rcItem.top) * 7 / 10;  // as large as the button's
  if (item.itemID < keys.size() && keys[item.itemID].first.empty()) {
    // A heading across both columns.
    const kv::ListColumn heading{keys[item.itemID].second.c_str(), 1};
    DRAWITEMSTRUCT row = item;
    row.itemID = kv::kHeaderRow;
    kv::DrawListRow(row, {&heading, 1}, {}, {}, textPx);
    return TRUE;
  }
  kv::DrawListRow(
      item, kColumns, [&](UINT row, int column) { return column == 0 ? keys[row].first : keys[row].second; }, {},
      textPx);
  return TRUE;
}

INT_PTR CALLBACK KeysProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(dialog, lParam);
    case kv::kLanguageChanged: return SetWindowTextW(dialog, kv::ResourceText(IDS_KEYS_CAPTION).c_str());
    case WM_COMMAND: return LOWORD(wParam) == IDC_KEYS_CLOSE && EndDialog(dialog, IDOK);
    case WM_DRAWITEM: return OnDrawItem(dialog, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    default: return FALSE;
  }
}

}  // namespace

void ShowKeys(HWND parent) {
  const Keys keys = ReadKeys();
  kv::RunModalDialog(parent, {.templateName = L"KEYS",
                              .procedure = KeysProcedure,
                              .parameter = reinterpret_cast<LPARAM>(&keys),
                              .positionName = "Camview.Keys"});
}

}  // namespace camview
