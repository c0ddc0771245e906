#include "gallery/pages/list_page.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>

#include "framework/bounded_format.h"
#include "framework/guards.h"
#include "framework/painting.h"
#include "gallery/drawing.h"
#include "gallery/page.h"
#include "gallery/pages/list_ids.h"
#include "gallery/texts.h"
#include "lists/extended_list.h"

namespace gallery {

namespace {

constexpr UINT kShowCost = WM_APP + 10;

constexpr UINT kCounts[] = {10, 1000, 100000, 10000000};
constexpr int kHeights[] = {17, 24, 36};
constexpr int kFirstCount = 3, kFirstHeight = 1;
constexpr int kWheelRows = 3;

constexpr int kPointNumbers = 8;  // x and y of four points
constexpr int kRecordMs = 11;     // from one record to the next at full line rate
constexpr int kCellPadding = 8;

// Pixels. Together wider than most windows, so that there is something to scroll sideways.
constexpr int kColumnWidths[] = {110, 120, 72, 72, 72, 72, 72, 72, 72, 72, 360};
constexpr int kColumns = static_cast<int>(std::size(kColumnWidths));

constexpr COLORREF kShadedRow = RGB(0xEE, 0xF2, 0xFB), kColumnLine = RGB(0xD4, 0xDA, 0xE6);
constexpr COLORREF kHeaderTop = RGB(0x5C, 0x6E, 0xA8), kHeaderBottom = RGB(0x36, 0x44, 0x7A);

// The page exists once.
struct {
  UINT rowCount;
  int rowHeight;
  UINT rowsAsked;  // since the last header
  kv::OwnedFont rowFont, headerFont, sentFont;
  std::array<std::wstring, kColumns> titles;
} state;

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

std::wstring Grouped(UINT number) {
  std::wstring text = std::to_wstring(number);
  for (int place = static_cast<int>(text.size()) - 3; place > 0; place -= 3) text.insert(place, 1, L',');
  return text;
}

std::wstring TimeText(UINT row) {
  const unsigned long long ms = static_cast<unsigned long long>(row) * kRecordMs;
  const unsigned seconds = static_cast<unsigned>(ms / 1000);
  wchar_t text[32];
  kv::FormatBounded(text, sizeof(text), L"%u:%02u:%02u.%03u", seconds / 3600, seconds / 60 % 60, seconds % 60,
                    static_cast<unsigned>(ms % 1000));
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
  cells[0] = Grouped(row + 1);
  cells[1] = TimeText(row);
  for (int i = 0; i < kPointNumbers; ++i) cells[2 + i] = std::to_wstring(numbers[i]);
  cells[kColumns - 1] = SentText(numbers);
  return cells;
}

// ---- Drawing -------------------------------------------------------------------------------------------------------

int SurfaceWidth() {
  int width = 0;
  for (int column : kColumnWidths) width += column;
  return width;
}

// Numbers stand at the right of their columns, the record's text at the left of its own.
UINT Alignment(int column) {
  return column == kColumns - 1 ? DT_LEFT : DT_RIGHT;
}

void DrawCells(HDC dc, const RECT& row, const std::array<std::wstring, kColumns>& cells, HFONT lastFont) {
  SetBkMode(dc, TRANSPARENT);
  RECT cell = row;
  for (int i = 0; i < kColumns; ++i) {
    cell.right = cell.left + kColumnWidths[i];
    const kv::SelectedObject font(dc, i == kColumns - 1 ? lastFont : GetCurrentObject(dc, OBJ_FONT));
    RECT inner = cell;
    InflateRect(&inner, -kCellPadding, 0);
    DrawTextW(dc, cells[i].c_str(), -1, &inner, Alignment(i) | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    kv::FillSolid(dc, {cell.right - 1, cell.top, cell.right, cell.bottom}, kColumnLine);
    cell.left = cell.right;
  }
}

void DrawHeader(const DRAWITEMSTRUCT& item) {
  kv::FillVerticalGradient(item.hDC, item.rcItem, kHeaderTop, kHeaderBottom);
  const kv::SelectedObject font(item.hDC, state.headerFont);
  SetTextColor(item.hDC, RGB(255, 255, 255));
  DrawCells(item.hDC, item.rcItem, state.titles, state.headerFont);
}

void DrawDataRow(const DRAWITEMSTRUCT& item) {
  kv::FillSolid(item.hDC, item.rcItem, item.itemID % 2 ? kShadedRow : RGB(255, 255, 255));
  const kv::SelectedObject font(item.hDC, state.rowFont);
  SetTextColor(item.hDC, RGB(0x20, 0x24, 0x30));
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
  wchar_t text[128];
  kv::FormatBounded(text, sizeof(text), Text(IDS_LIST_COST).c_str(), state.rowsAsked, Grouped(state.rowCount).c_str());
  SetDlgItemTextW(page, IDC_LIST_COST, text);
}

// ---- Driving the list ----------------------------------------------------------------------------------------------

HWND ListOf(HWND page) {
  return GetDlgItem(page, IDC_LIST_LIST);
}

// Moves to a vertical position, as far as the bar goes: the bar limits it, and the list takes what the bar says.
void GoTo(HWND page, long long position) {
  SCROLLINFO bar{};
  bar.cbSize = sizeof(bar);
  bar.fMask = SIF_POS;
  bar.nPos = static_cast<int>(std::clamp<long long>(position, 0, MAXLONG));
  SetScrollInfo(ListOf(page), SB_VERT, &bar, TRUE);
  SendMessageA(ListOf(page), WM_VSCROLL, SB_ENDSCROLL, 0);
}

long long ListHeight() {
  return static_cast<long long>(state.rowCount) * state.rowHeight;
}

// The bar does not count the header, so the last row hides below the bar's end; the list itself goes on.
void ShowLastRow(HWND page) {
  GoTo(page, ListHeight());
  for (int i = 0; i < 2; ++i) SendMessageA(ListOf(page), WM_VSCROLL, SB_LINEDOWN, 0);
}

int Position(HWND page) {
  return GetScrollPos(ListOf(page), SB_VERT);
}

// Row count and row height do not move the bars by themselves; a WM_SIZE does, once the list has measured its rows, and
// that it does only while it can be seen.
void Apply(HWND page) {
  const LRESULT count = SendDlgItemMessageA(page, IDC_LIST_COUNT, CB_GETCURSEL, 0, 0);
  const LRESULT height = SendDlgItemMessageA(page, IDC_LIST_HEIGHT, CB_GETCURSEL, 0, 0);
  const long long firstRow = state.rowHeight ? Position(page) / state.rowHeight : 0;
  state.rowCount = kCounts[std::clamp<LRESULT>(count, 0, std::size(kCounts) - 1)];
  state.rowHeight = kHeights[std::clamp<LRESULT>(height, 0, std::size(kHeights) - 1)];
  SendMessageA(ListOf(page), LB_SETCOUNT, state.rowCount, 0);
  SendMessageA(ListOf(page), WM_SIZE, SIZE_RESTORED, 0);
  GoTo(page, firstRow * state.rowHeight);
}

void OnWheel(HWND page, int delta) {
  GoTo(page, Position(page) - static_cast<long long>(delta) * kWheelRows * state.rowHeight / WHEEL_DELTA);
}

void OnCommand(HWND page, int controlId, UINT code) {
  switch (controlId) {
    case IDC_LIST_COUNT:
    case IDC_LIST_HEIGHT:
      if (code == CBN_SELCHANGE) Apply(page);
      break;
    case IDC_LIST_FIRST: GoTo(page, 0); break;
    case IDC_LIST_MIDDLE: GoTo(page, ListHeight() / 2); break;
    case IDC_LIST_LAST: ShowLastRow(page); break;
    default: break;
  }
}

// ---- Life ----------------------------------------------------------------------------------------------------------

// Records as they are on the wire, with all characters of one width.
kv::OwnedFont MakeFixedFont() {
  return kv::OwnedFont(CreateFontW(-13, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, PROOF_QUALITY, FIXED_PITCH | FF_MODERN, L"Courier New"));
}

void AddNumber(HWND page, int controlId, UINT number) {
  SendDlgItemMessageW(page, controlId, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Grouped(number).c_str()));
}

void OnInit(HWND page) {
  state.rowFont = MakeFont(-13, FW_NORMAL);
  state.headerFont = MakeFont(-13, FW_SEMIBOLD);
  state.sentFont = MakeFixedFont();
  for (UINT count : kCounts) AddNumber(page, IDC_LIST_COUNT, count);
  for (int height : kHeights) AddNumber(page, IDC_LIST_HEIGHT, height);
  SendDlgItemMessageA(page, IDC_LIST_COUNT, CB_SETCURSEL, kFirstCount, 0);
  SendDlgItemMessageA(page, IDC_LIST_HEIGHT, CB_SETCURSEL, kFirstHeight, 0);
  SendDlgItemMessageA(page, IDC_LIST_LIST, LB_SETHORIZONTALEXTENT, SurfaceWidth(), 0);
}

void OnTextsChanged(HWND page) {
  HandlePageMessage(page, kTextsChanged, 0, 0);
  for (int i = 0; i < kColumns; ++i) state.titles[i] = Text(IDS_LIST_COLUMN + i);
  Apply(page);
  ShowCost(page);
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
    case WM_MOUSEWHEEL: OnWheel(page, GET_WHEEL_DELTA_WPARAM(wParam)); return TRUE;
    case kPageShown:
      if (wParam) Apply(page);
      return TRUE;
    case kShowCost: ShowCost(page); return TRUE;
    case kTextsChanged: OnTextsChanged(page); return TRUE;
    case WM_DESTROY: OnDestroy(); break;
    default: break;
  }
  return HandlePageMessage(page, message, wParam, lParam);
}

}  // namespace gallery
