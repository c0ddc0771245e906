#include "gallery/pages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>

#include "gallery/resource_ids.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/bounded_format.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/list_navigation.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/list_columns.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr UINT kShowCost = WM_APP + 10;

constexpr UINT kCounts[] = {10, 1000, 100000, 10000000};
constexpr int kFirstCount = 3, kFirstHeight = 1;

constexpr int kPointNumbers = 8;  // x and y of four points
constexpr int kRecordMs = 11;     // between two records at full line rate

// Design sizes in pixels for this text height. The columns are wider than most windows, to show horizontal scrolling.
constexpr int kDesignTextPx = 14;
constexpr int kHeights[] = {17, 24, 36};
constexpr int kColumnWidths[] = {130, 120, 72, 72, 72, 72, 72, 72, 72, 72, 360};
constexpr int kColumns = static_cast<int>(std::size(kColumnWidths));

// Numbers are right-aligned; the record's text is left-aligned with a fixed-pitch font.
const auto columns = [] {
  std::array<kv::ListColumn, kColumns> list;
  for (int i = 0; i < kColumns; ++i) {
    list[i] = {MAKEINTRESOURCEW(IDS_LIST_COLUMN + i), kColumnWidths[i], DT_RIGHT};
  }
  list.back().align = DT_LEFT;
  list.back().fixedPitch = true;
  return list;
}();

// There is one page.
struct {
  UINT rowCount;
  int rowHeight;
  UINT rowsAsked;  // since the header was drawn
} state;

int Scaled(HWND page, int length) {
  return MulDiv(length, kv::TextHeightOf(page), kDesignTextPx);
}

// ---- Rows, computed from their index --------------------------------------------------------------------------------

std::array<int, kPointNumbers> PointsOfRow(UINT row) {
  std::array<int, kPointNumbers> numbers{};
  const double time = row * (kRecordMs / 1000.0);
  for (int i = 0; i < kPointNumbers; i += 2) {
    numbers[i] = static_cast<int>(512 + 400 * std::cos(time * (0.31 + 0.13 * i) + i));
    numbers[i + 1] = static_cast<int>(384 + 300 * std::sin(time * (0.47 + 0.11 * i) - i));
  }
  return numbers;
}

std::wstring RecordTime(UINT row) {
  const unsigned long long ms = static_cast<unsigned long long>(row) * kRecordMs;
  const unsigned seconds = static_cast<unsigned>(ms / 1000);
  wchar_t text[32];
  kv::FormatBounded(text, sizeof(text), L"%u:%02u:%02u%s%03u", seconds / 3600, seconds / 60 % 60, seconds % 60,
                    kv::DecimalSign().c_str(), static_cast<unsigned>(ms % 1000));
  return text;
}

std::wstring SentText(const std::array<int, kPointNumbers>& numbers) {
  wchar_t text[64];
  kv::FormatBounded(text, sizeof(text), L"%04d,%04d,%04d,%04d,%04d,%04d,%04d,%04d", numbers[0], numbers[1], numbers[2],
                    numbers[3], numbers[4], numbers[5], numbers[6], numbers[7]);
  return text;
}

std::wstring CellText(UINT row, int column) {
  if (column == 0) return kv::NumberText(row + 1.0);
  if (column == 1) return RecordTime(row);
  const auto numbers = PointsOfRow(row);
  return column == kColumns - 1 ? SentText(numbers) : std::to_wstring(numbers[column - 2]);
}

void OnDrawItem(HWND page, const DRAWITEMSTRUCT& item) {
  if (item.itemID == kv::kHeaderRow) {
    state.rowsAsked = 0;
    PostMessageA(page, kShowCost, 0, 0);
  } else {
    ++state.rowsAsked;
  }
  kv::DrawListRow(item, columns, CellText, {}, kv::TextHeightOf(page) * 7 / 8);  // without the internal leading
}

void ShowCost(HWND page) {
  kv::SetControlText(page, IDC_LIST_COST, IDS_LIST_COST, state.rowsAsked, kv::NumberText(state.rowCount));
}

// ---- Driving the list -----------------------------------------------------------------------------------------------

HWND ListOf(HWND page) {
  return GetDlgItem(page, IDC_LIST_LIST);
}

// Applies the selected count and height. Keeps the first row and a visible selected row in place.
void Apply(HWND page) {
  const LRESULT count = SendDlgItemMessageA(page, IDC_LIST_COUNT, CB_GETCURSEL, 0, 0);
  const LRESULT height = SendDlgItemMessageA(page, IDC_LIST_HEIGHT, CB_GETCURSEL, 0, 0);
  const HWND list = ListOf(page);
  const UINT firstRow = kv::ListRowAt(list, {0, state.rowHeight}), selected = kv::SelectedListRow(list);
  const UINT lastRow = kv::ListRowAt(list, {0, kv::ClientSize(list).cy - 1});
  state.rowCount = kCounts[std::clamp<LRESULT>(count, 0, std::size(kCounts) - 1)];
  state.rowHeight = Scaled(page, kHeights[std::clamp<LRESULT>(height, 0, std::size(kHeights) - 1)]);
  int width = 0;
  for (const int column : kColumnWidths) width += Scaled(page, column);
  SendMessageA(list, LB_SETHORIZONTALEXTENT, width, 0);
  SendMessageA(list, LB_SETCOUNT, state.rowCount, 0);
  kv::RedrawList(list);
  if (firstRow < state.rowCount) kv::ScrollListTo(list, firstRow);
  if (selected >= firstRow && selected <= lastRow) kv::SelectListRow(list, selected);
}

void NameList(HWND page) {
  kv::NameListRow(ListOf(page), kv::ResourceText(IDS_TITLE_FIRST + PAGE_INDEX_LIST), columns, CellText,
                  kv::ResourceText(IDS_LIST_CELL));
}

void SelectRow(HWND page, UINT row) {
  kv::SelectListRow(ListOf(page), row);
  NameList(page);
}

void OnCommand(HWND page, int controlId, UINT code) {
  switch (controlId) {
    case IDC_LIST_LIST:
      if (code == LBN_SELCHANGE) NameList(page);
      break;
    case IDC_LIST_COUNT:
    case IDC_LIST_HEIGHT:
      if (code == CBN_SELCHANGE) Apply(page);
      break;
    case IDC_LIST_FIRST: SelectRow(page, 0); break;
    case IDC_LIST_MIDDLE: SelectRow(page, state.rowCount / 2); break;
    case IDC_LIST_LAST: SelectRow(page, state.rowCount - 1); break;
    default: break;
  }
}

// ---- Life -----------------------------------------------------------------------------------------------------------

// Refills a combo box and restores its selection.
template <class Numbers, class Value>
void FillChoice(HWND page, int controlId, const Numbers& numbers, int firstChoice, Value value) {
  const HWND combo = GetDlgItem(page, controlId);
  const LRESULT chosen = SendMessageW(combo, CB_GETCURSEL, 0, 0);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const auto number : numbers) {
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(kv::NumberText(value(number)).c_str()));
  }
  SendMessageW(combo, CB_SETCURSEL, chosen < 0 ? firstChoice : chosen, 0);
}

INT_PTR Refresh(HWND page) {
  FillChoice(page, IDC_LIST_COUNT, kCounts, kFirstCount, [](UINT count) { return count; });
  FillChoice(page, IDC_LIST_HEIGHT, kHeights, kFirstHeight, [page](int height) { return Scaled(page, height); });
  Apply(page);
  return TRUE;
}

void OnTextsChanged(HWND page) {
  NameList(page);
  Refresh(page);
  ShowCost(page);
}

}  // namespace

INT_PTR CALLBACK ListPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: kv::AddListNavigation(ListOf(page)); return Refresh(page);
    case WM_MEASUREITEM: reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = state.rowHeight; return TRUE;
    case WM_DRAWITEM: OnDrawItem(page, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    case WM_COMMAND: OnCommand(page, LOWORD(wParam), HIWORD(wParam)); return TRUE;
    case WM_SIZE: return Refresh(page);
    case kShowCost: ShowCost(page); return TRUE;
    case kv::kLanguageChanged: OnTextsChanged(page); return TRUE;
    default: return FALSE;
  }
}

}  // namespace gallery
