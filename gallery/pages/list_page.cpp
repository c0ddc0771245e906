#include "gallery/pages/list_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>

#include "framework/bounded_format.h"
#include "framework/guards.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "gallery/drawing.h"
#include "gallery/numbers.h"
#include "gallery/page.h"
#include "gallery/pages/list_ids.h"
#include "gallery/resource_ids.h"
#include "gallery/texts.h"
#include "lists/extended_list.h"
#include "lists/list_navigation.h"

namespace gallery {

namespace {

constexpr UINT kShowCost = WM_APP + 10;

constexpr UINT kCounts[] = {10, 1000, 100000, 10000000};
constexpr int kFirstCount = 3, kFirstHeight = 1;

constexpr int kPointNumbers = 8;  // x and y of four points
constexpr int kRecordMs = 11;     // from one record to the next at full line rate

// Lengths of the design, in pixels. The columns are together wider than most windows, so that there is something to
// scroll sideways.
constexpr int kHeights[] = {17, 24, 36};
constexpr int kCellPadding = 8, kTextPx = 13;
constexpr int kColumnWidths[] = {130, 120, 72, 72, 72, 72, 72, 72, 72, 72, 360};
constexpr int kColumns = static_cast<int>(std::size(kColumnWidths));

constexpr int kShadedRowPercent = 6, kColumnLinePercent = 18;  // of the text colour
constexpr COLORREF kHeaderTop = RGB(0x5C, 0x6E, 0xA8), kHeaderBottom = RGB(0x36, 0x44, 0x7A);

// The page exists once.
struct {
  int designHeight, pageHeight;  // of the page, in pixels
  UINT rowCount;
  int rowHeight;
  UINT rowsAsked;  // since the last header
  kv::OwnedFont rowFont, headerFont, sentFont;
  std::array<std::wstring, kColumns> titles;
} state;

int Scaled(int length) {
  return MulDiv(length, state.pageHeight, std::max(state.designHeight, 1));
}

// ---- Rows, made from their number ----------------------------------------------------------------------------------

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
                    DecimalSign().c_str(), static_cast<unsigned>(ms % 1000));
  return text;
}

std::wstring SentText(const std::array<int, kPointNumbers>& numbers) {
  wchar_t text[64];
  kv::FormatBounded(text, sizeof(text), L"%04d,%04d,%04d,%04d,%04d,%04d,%04d,%04d", numbers[0], numbers[1], numbers[2],
                    numbers[3], numbers[4], numbers[5], numbers[6], numbers[7]);
  return text;
}

std::array<std::wstring, kColumns> CellsOfRow(UINT row) {
  const auto numbers = PointsOfRow(row);
  std::array<std::wstring, kColumns> cells;
  cells[0] = NumberText(row + 1.0);
  cells[1] = RecordTime(row);
  for (int i = 0; i < kPointNumbers; ++i) cells[2 + i] = std::to_wstring(numbers[i]);
  cells[kColumns - 1] = SentText(numbers);
  return cells;
}

// ---- Drawing -------------------------------------------------------------------------------------------------------

int SurfaceWidth() {
  int width = 0;
  for (int column : kColumnWidths) width += Scaled(column);
  return width;
}

// Numbers stand at the right of their columns, the record's text at the left of its own.
UINT Alignment(int column) {
  return column == kColumns - 1 ? DT_LEFT : DT_RIGHT;
}

void DrawCells(HDC dc, const RECT& row, const std::array<std::wstring, kColumns>& cells, HFONT lastFont) {
  SetBkMode(dc, TRANSPARENT);
  const COLORREF line = ListShade(kColumnLinePercent);
  RECT cell = row;
  for (int i = 0; i < kColumns; ++i) {
    cell.right = cell.left + Scaled(kColumnWidths[i]);
    const kv::SelectedObject font(dc, i == kColumns - 1 ? lastFont : GetCurrentObject(dc, OBJ_FONT));
    RECT inner = cell;
    InflateRect(&inner, -Scaled(kCellPadding), 0);
    DrawFitted(dc, cells[i], inner, Alignment(i) | DT_VCENTER | DT_SINGLELINE);
    kv::FillSolid(dc, {cell.right - 1, cell.top, cell.right, cell.bottom}, line);
    cell.left = cell.right;
  }
}

void DrawHeader(const DRAWITEMSTRUCT& item) {
  const bool plain = IsHighContrast();
  if (plain) {
    kv::FillSolid(item.hDC, item.rcItem, GetSysColor(COLOR_BTNFACE));
  } else {
    kv::FillVerticalGradient(item.hDC, item.rcItem, kHeaderTop, kHeaderBottom);
  }
  const kv::SelectedObject font(item.hDC, state.headerFont);
  SetTextColor(item.hDC, plain ? GetSysColor(COLOR_BTNTEXT) : RGB(255, 255, 255));
  DrawCells(item.hDC, item.rcItem, state.titles, state.headerFont);
}

void DrawDataRow(const DRAWITEMSTRUCT& item) {
  const COLORREF color = DrawRowBackground(item);
  if (!(item.itemState & ODS_SELECTED) && item.itemID % 2) {
    kv::FillSolid(item.hDC, item.rcItem, ListShade(kShadedRowPercent));
  }
  const kv::SelectedObject font(item.hDC, state.rowFont);
  SetTextColor(item.hDC, color);
  DrawCells(item.hDC, item.rcItem, CellsOfRow(item.itemID), state.sentFont);
}

void OnDrawItem(HWND page, const DRAWITEMSTRUCT& item) {
  if (item.itemID != kv::kHeaderRow) {
    ++state.rowsAsked;
    return DrawDataRow(item);
  }
  state.rowsAsked = 0;
  PostMessageA(page, kShowCost, 0, 0);
  DrawHeader(item);
}

void ShowCost(HWND page) {
  const std::wstring text = TextWith(IDS_LIST_COST, state.rowsAsked, NumberText(state.rowCount).c_str());
  SetDlgItemTextW(page, IDC_LIST_COST, text.c_str());
}

// ---- Driving the list ----------------------------------------------------------------------------------------------

HWND ListOf(HWND page) {
  return GetDlgItem(page, IDC_LIST_LIST);
}

// Shows the counts and heights that are chosen. The row that was the first stays so, and one that was selected in view
// stays in view.
void Apply(HWND page) {
  const LRESULT count = SendDlgItemMessageA(page, IDC_LIST_COUNT, CB_GETCURSEL, 0, 0);
  const LRESULT height = SendDlgItemMessageA(page, IDC_LIST_HEIGHT, CB_GETCURSEL, 0, 0);
  const HWND list = ListOf(page);
  const UINT firstRow = kv::ListRowAt(list, {0, state.rowHeight}), selected = kv::SelectedListRow(list);
  const UINT lastRow = kv::ListRowAt(list, {0, kv::ClientSize(list).cy - 1});
  state.rowCount = kCounts[std::clamp<LRESULT>(count, 0, std::size(kCounts) - 1)];
  state.rowHeight = Scaled(kHeights[std::clamp<LRESULT>(height, 0, std::size(kHeights) - 1)]);
  SendMessageA(list, LB_SETHORIZONTALEXTENT, SurfaceWidth(), 0);
  SendMessageA(list, LB_SETCOUNT, state.rowCount, 0);
  kv::RedrawList(list);
  if (firstRow < state.rowCount) kv::ScrollListTo(list, firstRow);
  if (selected >= firstRow && selected <= lastRow) kv::SelectListRow(list, selected);
}

// What the list is called, and what its selected row says: that only this page knows.
void NameList(HWND page) {
  std::wstring name = Text(IDS_TITLE_FIRST + PAGE_INDEX_LIST);
  const UINT row = kv::SelectedListRow(ListOf(page));
  if (row < state.rowCount) {
    const auto cells = CellsOfRow(row);
    for (int i = 0; i < kColumns; ++i) {
      name = TextWith(IDS_LIST_CELL, name.c_str(), state.titles[i].c_str(), cells[i].c_str());
    }
  }
  NameControl(page, IDC_LIST_LIST, name);
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

// ---- Life ----------------------------------------------------------------------------------------------------------

// Records as they are on the wire, with all characters of one width.
kv::OwnedFont MakeFixedFont(int height) {
  return kv::OwnedFont(CreateFontW(height, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, PROOF_QUALITY, FIXED_PITCH | FF_MODERN, L"Courier New"));
}

// Fills a combo box anew, with what was chosen in it.
template <class Numbers, class Value>
void FillChoice(HWND page, int controlId, const Numbers& numbers, int firstChoice, Value value) {
  const HWND combo = GetDlgItem(page, controlId);
  const LRESULT chosen = SendMessageW(combo, CB_GETCURSEL, 0, 0);
  SendMessageW(combo, CB_RESETCONTENT, 0, 0);
  for (const auto number : numbers) {
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(NumberText(value(number)).c_str()));
  }
  SendMessageW(combo, CB_SETCURSEL, chosen < 0 ? firstChoice : chosen, 0);
}

void FillChoices(HWND page) {
  FillChoice(page, IDC_LIST_COUNT, kCounts, kFirstCount, [](UINT count) { return count; });
  FillChoice(page, IDC_LIST_HEIGHT, kHeights, kFirstHeight, Scaled);
}

void Resize(HWND page) {
  state.pageHeight = kv::ClientSize(page).cy;
  const int textPx = std::max(Scaled(kTextPx), 1);
  state.rowFont = MakeFont(-textPx, FW_NORMAL);
  state.headerFont = MakeFont(-textPx, FW_SEMIBOLD);
  state.sentFont = MakeFixedFont(-textPx);
  FillChoices(page);
  Apply(page);
}

void OnInit(HWND page) {
  state.designHeight = kv::ClientSize(page).cy;
  kv::AddListNavigation(ListOf(page));
  Resize(page);
}

void OnTextsChanged(HWND page) {
  HandlePageMessage(page, kTextsChanged, 0, 0);
  for (int i = 0; i < kColumns; ++i) state.titles[i] = Text(IDS_LIST_COLUMN + i);
  NameList(page);
  FillChoices(page);
  Apply(page);
  ShowCost(page);
}

INT_PTR OnSize(HWND page) {
  const INT_PTR result = HandlePageMessage(page, WM_SIZE, 0, 0);
  Resize(page);
  return result;
}

void OnDestroy() {
  for (kv::OwnedFont* font : {&state.rowFont, &state.headerFont, &state.sentFont}) font->Reset();
}

}  // namespace

INT_PTR CALLBACK ListPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_MEASUREITEM: reinterpret_cast<MEASUREITEMSTRUCT*>(lParam)->itemHeight = state.rowHeight; return TRUE;
    case WM_DRAWITEM: OnDrawItem(page, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    case WM_COMMAND: OnCommand(page, LOWORD(wParam), HIWORD(wParam)); return TRUE;
    case WM_SIZE: return OnSize(page);
    case kShowCost: ShowCost(page); return TRUE;
    case kTextsChanged: OnTextsChanged(page); return TRUE;
    case WM_DESTROY: OnDestroy(); break;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
