#include "lists/list_navigation.h"

#include <commctrl.h>

#include <algorithm>

#include "framework/accessible.h"
#include "framework/bitmaps.h"
#include "framework/control_class.h"
#include "lists/extended_list.h"
#include "lists/extended_list_layout.h"
#include "lists/extended_list_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kSubclass = 1;

// The record of an extended list and of no other window, whose user data may be anything.
ListRecord* ListOf(HWND window) {
  char name[ARRAYSIZE(kExtendedListClass) + 1] = "";
  GetClassNameA(window, name, ARRAYSIZE(name));
  return lstrcmpiA(name, kExtendedListClass) == 0 ? ListRecordOf(window) : nullptr;
}

ListRecord* NavigatedListOf(HWND window) {
  ListRecord* record = ListOf(window);
  return record && record->bNavigated ? record : nullptr;
}

LONG PageOf(HWND list, const ListRecord& record) {
  return RowsInView(record.nRowHeight, ClientSize(list).cy);
}

DWORD FirstRow(const ListRecord& record) {
  return static_cast<DWORD>(std::max<LONG>(record.nVerticalOffset, 0) / record.nRowHeight);
}

// Pulls offsets and selection into what the list and its window are now.
void Settle(HWND list, ListRecord& record) {
  const SIZE client = ClientSize(list);
  const LONG width = std::max(record.nExtent, UsableSurfaceWidth(client.cx));
  if (width != record.surfaceSize.cx) {
    SetListSurfaceWidth(record, width);
    record.bDirty = TRUE;
  }
  const SCROLLINFO across = HorizontalBar(width, client.cx, 0);
  const SCROLLINFO down = NavigatedBar(record.dwRowCount, record.nRowHeight, client.cy, 0);
  record.nHorizontalOffset = std::clamp<LONG>(record.nHorizontalOffset, 0, LastOffset(across));
  const LONG offset = std::clamp<LONG>(record.nVerticalOffset, 0, LastOffset(down));
  if (offset != record.nVerticalOffset) record.bDirty = TRUE;
  record.nVerticalOffset = offset;
  if (record.dwSelectedRow >= record.dwRowCount) record.bSelected = FALSE;
}

void MeasureAndSettle(HWND list) {
  MeasureListRows(list);
  if (ListRecord* record = NavigatedListOf(list)) Settle(list, *record);
  UpdateListBars(list);
}

void ScrollTo(HWND list, ListRecord& record, long long verticalOffset, long long horizontalOffset) {
  const auto limited = [](long long offset) { return static_cast<LONG>(std::clamp<long long>(offset, 0, MAXLONG)); };
  const LONG formerVertical = record.nVerticalOffset, formerHorizontal = record.nHorizontalOffset;
  record.nVerticalOffset = limited(verticalOffset);
  record.nHorizontalOffset = limited(horizontalOffset);
  Settle(list, record);
  if (record.nVerticalOffset == formerVertical && record.nHorizontalOffset == formerHorizontal) return;
  if (record.nVerticalOffset != formerVertical) record.bDirty = TRUE;
  UpdateListBars(list);
  RepaintNow(list);
}

void ScrollRows(HWND list, ListRecord& record, long long rows) {
  ScrollTo(list, record, record.nVerticalOffset + rows * record.nRowHeight, record.nHorizontalOffset);
}

void ScrollSideways(HWND list, ListRecord& record, long long pixels) {
  ScrollTo(list, record, record.nVerticalOffset, record.nHorizontalOffset + pixels);
}

// The row becomes the selected one and comes into view. `record` may be gone afterwards.
void Select(HWND list, ListRecord& record, DWORD row) {
  record.bSelected = TRUE;
  record.dwSelectedRow = row;
  record.bDirty = TRUE;
  const DWORD first = FirstRow(record), inView = static_cast<DWORD>(PageOf(list, record));
  DWORD wanted = first;
  if (row < first) wanted = row;
  if (row >= first + inView) wanted = row - inView + 1;
  if (wanted != first) {
    record.nVerticalOffset =
        static_cast<LONG>(std::min<long long>(static_cast<long long>(wanted) * record.nRowHeight, MAXLONG));
    Settle(list, record);
    UpdateListBars(list);
  }
  RepaintNow(list);
  if (IsWindow(list)) NotifyValueChanged(list);
}

void SelectByUser(HWND list, ListRecord& record, DWORD row) {
  const bool changed = !record.bSelected || record.dwSelectedRow != row;
  Select(list, record, row);
  if (changed && IsWindow(list)) PostNotification(list, LBN_SELCHANGE);
}

// ---- Input ----------------------------------------------------------------------------------------------------------

// The row that a key leads to from the selected one; without one, a step leads to the first row in view.
long long RowForKey(HWND list, const ListRecord& record, WPARAM key) {
  const long long last = static_cast<long long>(record.dwRowCount) - 1;
  const auto moved = [&](long long rows) -> long long {
    return record.bSelected ? record.dwSelectedRow + rows : FirstRow(record);
  };
  switch (key) {
    case VK_UP: return moved(-1);
    case VK_DOWN: return moved(1);
    case VK_PRIOR: return moved(-PageOf(list, record));
    case VK_NEXT: return moved(PageOf(list, record));
    case VK_HOME: return 0;
    default: return last;
  }
}

LRESULT OnKey(HWND list, ListRecord& record, WPARAM key) {
  if (key == VK_LEFT || key == VK_RIGHT) {
    ScrollSideways(list, record, key == VK_LEFT ? -kHorizontalLine : kHorizontalLine);
  } else if (record.dwRowCount > 0) {
    const long long last = record.dwRowCount - 1LL;
    SelectByUser(list, record, static_cast<DWORD>(std::clamp<long long>(RowForKey(list, record, key), 0, last)));
  }
  return 0;
}

bool IsOurKey(WPARAM key) {
  return key >= VK_PRIOR && key <= VK_DOWN;  // Page Up, Page Down, End, Home and the arrows
}

// Whole steps of a wheel, of which `perNotch` make a notch. What is left waits for the next turn the same way.
long long WheelSteps(int* rest, int delta, UINT perNotch) {
  if ((*rest < 0) != (delta < 0)) *rest = 0;
  const long long turned = *rest + static_cast<long long>(delta) * perNotch;
  *rest = static_cast<int>(turned % WHEEL_DELTA);
  return turned / WHEEL_DELTA;
}

UINT WheelSetting(UINT which) {
  UINT steps = 3;
  SystemParametersInfoA(which, 0, &steps, 0);
  return steps;
}

LRESULT OnWheel(HWND list, ListRecord& record, int delta) {
  UINT rows = WheelSetting(SPI_GETWHEELSCROLLLINES);
  if (rows == WHEEL_PAGESCROLL) rows = static_cast<UINT>(PageOf(list, record));
  ScrollRows(list, record, -WheelSteps(&record.nWheelRest[0], delta, rows));
  return 0;
}

LRESULT OnSidewaysWheel(HWND list, ListRecord& record, int delta) {
  const UINT steps = WheelSetting(SPI_GETWHEELSCROLLCHARS);
  ScrollSideways(list, record, kHorizontalLine * WheelSteps(&record.nWheelRest[1], delta, steps));
  return 0;
}

// Where a bar's request leads.
long long Requested(HWND list, int barKind, int request, long long offset, LONG line, LONG page) {
  SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_TRACKPOS};
  switch (request) {
    case SB_LINEUP: return offset - line;
    case SB_LINEDOWN: return offset + line;
    case SB_PAGEUP: return offset - page;
    case SB_PAGEDOWN: return offset + page;
    case SB_TOP: return 0;
    case SB_BOTTOM: return MAXLONG;
    case SB_THUMBTRACK: GetScrollInfo(list, barKind, &bar); return bar.nTrackPos;
    default: return offset;
  }
}

LRESULT OnVerticalScroll(HWND list, ListRecord& record, int request) {
  const LONG page = static_cast<LONG>(NavigatedBar(0, record.nRowHeight, ClientSize(list).cy, 0).nPage);
  ScrollTo(list, record, Requested(list, SB_VERT, request, record.nVerticalOffset, record.nRowHeight, page),
           record.nHorizontalOffset);
  return 0;
}

LRESULT OnHorizontalScroll(HWND list, ListRecord& record, int request) {
  ScrollTo(list, record, record.nVerticalOffset,
           Requested(list, SB_HORZ, request, record.nHorizontalOffset, kHorizontalLine, ClientSize(list).cx));
  return 0;
}

POINT PointOf(LPARAM lParam) {
  return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

// After the list itself has taken focus and capture.
void OnPress(HWND list, POINT place, bool isDouble) {
  ListRecord* record = NavigatedListOf(list);
  if (!record) return;
  const UINT row = ListRowAt(list, place);
  record->bHeaderPressed = row == kHeaderRow;
  if (row == kHeaderRow) record->nHeaderPressX = place.x + record->nHorizontalOffset;
  if (row == kHeaderRow || row == kNoRow) return;
  SelectByUser(list, *record, row);
  if (isDouble && IsWindow(list)) PostNotification(list, LBN_DBLCLK);
}

void OnRelease(HWND list, POINT place) {
  ListRecord* record = NavigatedListOf(list);
  if (!record || !record->bHeaderPressed) return;
  record->bHeaderPressed = FALSE;
  if (ListRowAt(list, place) == kHeaderRow) PostNotification(list, kListHeader);
}

void RedrawLater(HWND list, ListRecord& record) {
  record.bDirty = TRUE;
  InvalidateRect(list, nullptr, FALSE);
}

// ---- What the list is told ------------------------------------------------------------------------------------------

void OnSetExtent(HWND list, ListRecord& record, WPARAM* extent) {
  const LONG asked = UsableSurfaceWidth(*extent);
  record.nExtent = asked;
  Settle(list, record);
  UpdateListBars(list);  // `record` may be gone afterwards
  *extent = static_cast<WPARAM>(std::max(asked, UsableSurfaceWidth(ClientSize(list).cx)));
}

void OnSetCount(HWND list, ListRecord& record, DWORD count) {
  record.dwRowCount = count;
  MeasureAndSettle(list);
}

LRESULT CALLBACK NavigationProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(list, NavigationProcedure, kSubclass);
  ListRecord* record = ListRecordOf(list);
  if (!record || !record->bNavigated) return DefSubclassProc(list, message, wParam, lParam);
  const bool shift = (LOWORD(wParam) & MK_SHIFT) != 0;
  switch (message) {
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_KEYDOWN:
      if (IsOurKey(wParam)) return OnKey(list, *record, wParam);
      break;
    case WM_MOUSEWHEEL:
      if (shift) return OnSidewaysWheel(list, *record, -GET_WHEEL_DELTA_WPARAM(wParam));
      return OnWheel(list, *record, GET_WHEEL_DELTA_WPARAM(wParam));
    case WM_MOUSEHWHEEL: return OnSidewaysWheel(list, *record, GET_WHEEL_DELTA_WPARAM(wParam));
    case WM_VSCROLL: return OnVerticalScroll(list, *record, LOWORD(wParam));
    case WM_HSCROLL: return OnHorizontalScroll(list, *record, LOWORD(wParam));
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      if (record->bSelected) RedrawLater(list, *record);
      break;
    case WM_SYSCOLORCHANGE: RedrawLater(list, *record); break;
    case WM_SIZE: MeasureAndSettle(list); break;
    case LB_SETCOUNT: OnSetCount(list, *record, static_cast<DWORD>(wParam)); break;
    case LB_RESETCONTENT: OnSetCount(list, *record, 0); break;
    case LB_SETHORIZONTALEXTENT: OnSetExtent(list, *record, &wParam); break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      DefSubclassProc(list, WM_LBUTTONDOWN, wParam, lParam);
      OnPress(list, PointOf(lParam), message == WM_LBUTTONDBLCLK);
      return 0;
    case WM_LBUTTONUP:
      DefSubclassProc(list, message, wParam, lParam);
      OnRelease(list, PointOf(lParam));
      return 0;
    default: break;
  }
  return DefSubclassProc(list, message, wParam, lParam);
}

}  // namespace

BOOL AddListNavigation(HWND list) {
  ListRecord* record = ListOf(list);
  if (!record || !SetWindowSubclass(list, NavigationProcedure, kSubclass, 0)) return FALSE;
  if (record->bNavigated) return TRUE;
  record->bNavigated = TRUE;
  // A width that is not the window's was asked for.
  if (record->surfaceSize.cx != ClientSize(list).cx) record->nExtent = record->surfaceSize.cx;
  MeasureAndSettle(list);
  return TRUE;
}

UINT ListRowAt(HWND list, POINT place) {
  const ListRecord* record = ListOf(list);
  if (!record || record->dwRowCount == 0 || place.y < 0) return kNoRow;
  if (place.y < record->nRowHeight) return kHeaderRow;
  const RowRun rows =
      VisibleRows(record->dwRowCount, record->nRowHeight, record->nVerticalOffset, record->surfaceSize.cy);
  if (place.y < rows.top) return kNoRow;
  const DWORD row = static_cast<DWORD>((place.y - rows.top) / record->nRowHeight);
  return row < rows.count ? rows.first + row : kNoRow;
}

BOOL ScrollListTo(HWND list, UINT row) {
  ListRecord* record = ListOf(list);
  if (!record || row >= record->dwRowCount) return FALSE;
  const long long offset = static_cast<long long>(row) * record->nRowHeight;
  if (record->bNavigated) {
    ScrollTo(list, *record, offset, record->nHorizontalOffset);
    return TRUE;
  }
  record->nVerticalOffset = static_cast<LONG>(std::min<long long>(offset, MAXLONG));
  record->bDirty = TRUE;
  UpdateListBars(list);
  RepaintNow(list);
  return TRUE;
}

BOOL RedrawList(HWND list) {
  if (!ListOf(list)) return FALSE;
  MeasureAndSettle(list);
  if (ListRecord* record = ListOf(list)) {
    record->bDirty = TRUE;
    RepaintNow(list);
  }
  return TRUE;
}

BOOL SelectListRow(HWND list, UINT row) {
  ListRecord* record = NavigatedListOf(list);
  if (!record || (row != kNoRow && row >= record->dwRowCount)) return FALSE;
  if (row != kNoRow) {
    Select(list, *record, row);
    return TRUE;
  }
  record->bSelected = FALSE;
  record->bDirty = TRUE;
  RepaintNow(list);
  return TRUE;
}

UINT SelectedListRow(HWND list) {
  const ListRecord* record = NavigatedListOf(list);
  return record && record->bSelected ? record->dwSelectedRow : kNoRow;
}

LONG ListHeaderX(HWND list) {
  const ListRecord* record = NavigatedListOf(list);
  return record ? record->nHeaderPressX : 0;
}

}  // namespace kv
