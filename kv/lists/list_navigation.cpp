#include "kv/lists/list_navigation.h"

#include <commctrl.h>

#include <algorithm>

#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/lists/extended_list.h"
#include "kv/lists/extended_list_layout.h"
#include "kv/lists/extended_list_state.h"

namespace kv {

namespace {

constexpr UINT_PTR kSubclass = 1;

// Returns the state of an extended list; null for any other window, whose user data may be anything.
ListState* ListOf(HWND window) {
  return IsOfClass(window, kExtendedListClass) ? ListStateOf(window) : nullptr;
}

ListState* NavigatedListOf(HWND window) {
  ListState* state = ListOf(window);
  return state && state->bNavigated ? state : nullptr;
}

LONG PageOf(HWND list, const ListState& state) {
  return RowsInView(state.nRowHeight, ClientSize(list).cy);
}

DWORD FirstRow(const ListState& state) {
  return static_cast<DWORD>(std::max<LONG>(state.nVerticalOffset, 0) / state.nRowHeight);
}

// Limits offsets and selection to the present list and window.
void ClampState(HWND list, ListState& state) {
  const SIZE client = ClientSize(list);
  const LONG width = std::max(state.nExtent, UsableSurfaceWidth(client.cx));
  if (width != state.surfaceSize.cx) {
    SetListSurfaceWidth(state, width);
    state.bDirty = TRUE;
  }
  const SCROLLINFO across = HorizontalBar(width, client.cx, 0);
  const SCROLLINFO down = NavigatedBar(state.dwRowCount, state.nRowHeight, client.cy, 0);
  state.nHorizontalOffset = std::clamp<LONG>(state.nHorizontalOffset, 0, LastOffset(across));
  const LONG offset = std::clamp<LONG>(state.nVerticalOffset, 0, LastOffset(down));
  if (offset != state.nVerticalOffset) state.bDirty = TRUE;
  state.nVerticalOffset = offset;
  if (state.dwSelectedRow >= state.dwRowCount) state.bSelected = FALSE;
}

void MeasureAndClamp(HWND list) {
  MeasureListRows(list);
  if (ListState* state = NavigatedListOf(list)) ClampState(list, *state);
  UpdateListBars(list);
}

void ScrollTo(HWND list, ListState& state, long long verticalOffset, long long horizontalOffset) {
  const auto limited = [](long long offset) { return static_cast<LONG>(std::clamp<long long>(offset, 0, MAXLONG)); };
  const LONG formerVertical = state.nVerticalOffset, formerHorizontal = state.nHorizontalOffset;
  state.nVerticalOffset = limited(verticalOffset);
  state.nHorizontalOffset = limited(horizontalOffset);
  ClampState(list, state);
  if (state.nVerticalOffset == formerVertical && state.nHorizontalOffset == formerHorizontal) return;
  if (state.nVerticalOffset != formerVertical) state.bDirty = TRUE;
  UpdateListBars(list);
  RepaintNow(list);
}

void ScrollRows(HWND list, ListState& state, long long rows) {
  ScrollTo(list, state, state.nVerticalOffset + rows * state.nRowHeight, state.nHorizontalOffset);
}

void ScrollSideways(HWND list, ListState& state, long long pixels) {
  ScrollTo(list, state, state.nVerticalOffset, state.nHorizontalOffset + pixels);
}

// Selects the row and scrolls it into view. The list may be destroyed meanwhile.
void Select(HWND list, ListState& state, DWORD row) {
  state.bSelected = TRUE;
  state.dwSelectedRow = row;
  state.bDirty = TRUE;
  const DWORD first = FirstRow(state), inView = static_cast<DWORD>(PageOf(list, state));
  DWORD wanted = first;
  if (row < first) wanted = row;
  if (row >= first + inView) wanted = row - inView + 1;
  if (wanted != first) {
    state.nVerticalOffset =
        static_cast<LONG>(std::min<long long>(static_cast<long long>(wanted) * state.nRowHeight, MAXLONG));
    ClampState(list, state);
    UpdateListBars(list);
  }
  RepaintNow(list);
  if (IsWindow(list)) NotifyValueChanged(list);
}

void SelectByUser(HWND list, ListState& state, DWORD row) {
  const bool changed = !state.bSelected || state.dwSelectedRow != row;
  Select(list, state, row);
  if (changed && IsWindow(list)) PostNotification(list, LBN_SELCHANGE);
}

// ---- Input ----------------------------------------------------------------------------------------------------------

// Returns the row that a key selects; without a selected row, a step selects the first visible row.
long long RowForKey(HWND list, const ListState& state, WPARAM key) {
  const long long last = static_cast<long long>(state.dwRowCount) - 1;
  const auto moved = [&](long long rows) -> long long {
    return state.bSelected ? state.dwSelectedRow + rows : FirstRow(state);
  };
  switch (key) {
    case VK_UP: return moved(-1);
    case VK_DOWN: return moved(1);
    case VK_PRIOR: return moved(-PageOf(list, state));
    case VK_NEXT: return moved(PageOf(list, state));
    case VK_HOME: return 0;
    default: return last;
  }
}

LRESULT OnKey(HWND list, ListState& state, WPARAM key) {
  if (key == VK_LEFT || key == VK_RIGHT) {
    ScrollSideways(list, state, key == VK_LEFT ? -kHorizontalLine : kHorizontalLine);
  } else if (state.dwRowCount > 0) {
    const long long last = state.dwRowCount - 1LL;
    SelectByUser(list, state, static_cast<DWORD>(std::clamp<long long>(RowForKey(list, state, key), 0, last)));
  }
  return 0;
}

bool IsNavigationKey(WPARAM key) {
  return key >= VK_PRIOR && key <= VK_DOWN;  // Page Up, Page Down, End, Home and the arrows
}

// Returns complete steps of a wheel with `perNotch` steps in a notch. The rest is stored for the next movement in the
// same direction.
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

LRESULT OnWheel(HWND list, ListState& state, int delta) {
  UINT rows = WheelSetting(SPI_GETWHEELSCROLLLINES);
  if (rows == WHEEL_PAGESCROLL) rows = static_cast<UINT>(PageOf(list, state));
  ScrollRows(list, state, -WheelSteps(&state.nWheelRest[0], delta, rows));
  return 0;
}

LRESULT OnSidewaysWheel(HWND list, ListState& state, int delta) {
  const UINT steps = WheelSetting(SPI_GETWHEELSCROLLCHARS);
  ScrollSideways(list, state, kHorizontalLine * WheelSteps(&state.nWheelRest[1], delta, steps));
  return 0;
}

// Returns the offset after a bar's request.
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

LRESULT OnVerticalScroll(HWND list, ListState& state, int request) {
  const LONG page = static_cast<LONG>(NavigatedBar(0, state.nRowHeight, ClientSize(list).cy, 0).nPage);
  ScrollTo(list, state, Requested(list, SB_VERT, request, state.nVerticalOffset, state.nRowHeight, page),
           state.nHorizontalOffset);
  return 0;
}

LRESULT OnHorizontalScroll(HWND list, ListState& state, int request) {
  ScrollTo(list, state, state.nVerticalOffset,
           Requested(list, SB_HORZ, request, state.nHorizontalOffset, kHorizontalLine, ClientSize(list).cx));
  return 0;
}

POINT PointOf(LPARAM lParam) {
  return {static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
}

// After the list has set focus and capture.
void OnPress(HWND list, POINT point, bool isDouble) {
  ListState* state = NavigatedListOf(list);
  if (!state) return;
  const UINT row = ListRowAt(list, point);
  state->bHeaderPressed = row == kHeaderRow;
  if (row == kHeaderRow) state->nHeaderPressX = point.x + state->nHorizontalOffset;
  if (row == kHeaderRow || row == kNoRow) return;
  SelectByUser(list, *state, row);
  if (isDouble && IsWindow(list)) PostNotification(list, LBN_DBLCLK);
}

void OnRelease(HWND list, POINT point) {
  ListState* state = NavigatedListOf(list);
  if (!state || !state->bHeaderPressed) return;
  state->bHeaderPressed = FALSE;
  if (ListRowAt(list, point) == kHeaderRow) PostNotification(list, kListHeader);
}

void RedrawLater(HWND list, ListState& state) {
  state.bDirty = TRUE;
  InvalidateRect(list, nullptr, FALSE);
}

// ---- Messages of the list -------------------------------------------------------------------------------------------

void OnSetExtent(HWND list, ListState& state, WPARAM* extent) {
  const LONG asked = UsableSurfaceWidth(*extent);
  state.nExtent = asked;
  ClampState(list, state);
  UpdateListBars(list);  // may destroy `state`
  *extent = static_cast<WPARAM>(std::max(asked, UsableSurfaceWidth(ClientSize(list).cx)));
}

void OnSetCount(HWND list, ListState& state, DWORD count) {
  state.dwRowCount = count;
  MeasureAndClamp(list);
}

LRESULT CALLBACK NavigationProcedure(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(list, NavigationProcedure, kSubclass);
  ListState* state = ListStateOf(list);
  if (!state || !state->bNavigated) return DefSubclassProc(list, message, wParam, lParam);
  const bool shift = (LOWORD(wParam) & MK_SHIFT) != 0;
  switch (message) {
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_KEYDOWN:
      if (IsNavigationKey(wParam)) return OnKey(list, *state, wParam);
      break;
    case WM_MOUSEWHEEL:
      if (shift) return OnSidewaysWheel(list, *state, -GET_WHEEL_DELTA_WPARAM(wParam));
      return OnWheel(list, *state, GET_WHEEL_DELTA_WPARAM(wParam));
    case WM_MOUSEHWHEEL: return OnSidewaysWheel(list, *state, GET_WHEEL_DELTA_WPARAM(wParam));
    case WM_VSCROLL: return OnVerticalScroll(list, *state, LOWORD(wParam));
    case WM_HSCROLL: return OnHorizontalScroll(list, *state, LOWORD(wParam));
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      if (state->bSelected) RedrawLater(list, *state);
      break;
    case WM_SYSCOLORCHANGE: RedrawLater(list, *state); break;
    case WM_SIZE: MeasureAndClamp(list); break;
    case LB_SETCOUNT: OnSetCount(list, *state, static_cast<DWORD>(wParam)); break;
    case LB_RESETCONTENT: OnSetCount(list, *state, 0); break;
    case LB_SETHORIZONTALEXTENT: OnSetExtent(list, *state, &wParam); break;
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
  ListState* state = ListOf(list);
  if (!state || !SetWindowSubclass(list, NavigationProcedure, kSubclass, 0)) return FALSE;
  if (state->bNavigated) return TRUE;
  state->bNavigated = TRUE;
  // A width other than the window's was set by LB_SETHORIZONTALEXTENT.
  if (state->surfaceSize.cx != ClientSize(list).cx) state->nExtent = state->surfaceSize.cx;
  MeasureAndClamp(list);
  return TRUE;
}

UINT ListRowAt(HWND list, POINT point) {
  const ListState* state = ListOf(list);
  if (!state || state->dwRowCount == 0 || point.y < 0) return kNoRow;
  if (point.y < state->nRowHeight) return kHeaderRow;
  const RowRun rows = VisibleRows(state->dwRowCount, state->nRowHeight, state->nVerticalOffset, state->surfaceSize.cy);
  if (point.y < rows.top) return kNoRow;
  const DWORD row = static_cast<DWORD>((point.y - rows.top) / state->nRowHeight);
  return row < rows.count ? rows.first + row : kNoRow;
}

BOOL ScrollListTo(HWND list, UINT row) {
  ListState* state = ListOf(list);
  if (!state || row >= state->dwRowCount) return FALSE;
  const long long offset = static_cast<long long>(row) * state->nRowHeight;
  if (state->bNavigated) {
    ScrollTo(list, *state, offset, state->nHorizontalOffset);
    return TRUE;
  }
  state->nVerticalOffset = static_cast<LONG>(std::min<long long>(offset, MAXLONG));
  state->bDirty = TRUE;
  UpdateListBars(list);
  RepaintNow(list);
  return TRUE;
}

BOOL RedrawList(HWND list) {
  if (!ListOf(list)) return FALSE;
  MeasureAndClamp(list);
  if (ListState* state = ListOf(list)) {
    state->bDirty = TRUE;
    RepaintNow(list);
  }
  return TRUE;
}

BOOL SelectListRow(HWND list, UINT row) {
  ListState* state = NavigatedListOf(list);
  if (!state || (row != kNoRow && row >= state->dwRowCount)) return FALSE;
  if (row != kNoRow) {
    Select(list, *state, row);
    return TRUE;
  }
  state->bSelected = FALSE;
  state->bDirty = TRUE;
  RepaintNow(list);
  return TRUE;
}

UINT SelectedListRow(HWND list) {
  const ListState* state = NavigatedListOf(list);
  return state && state->bSelected ? state->dwSelectedRow : kNoRow;
}

LONG ListHeaderX(HWND list) {
  const ListState* state = NavigatedListOf(list);
  return state ? state->nHeaderPressX : 0;
}

}  // namespace kv
