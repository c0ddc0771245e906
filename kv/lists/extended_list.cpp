#include "kv/lists/extended_list.h"

#include <oleacc.h>

#include <string>
#include <utility>

#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/window_state.h"
#include "kv/lists/extended_list_layout.h"
#include "kv/lists/extended_list_state.h"

namespace kv {

namespace {

constexpr LRESULT kNoState = 1;

void TouchSettings() {
  RegistryKey::Create(kExtendedListSettingsPath);
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

UINT StateOf(const ListState& state, HWND window, UINT row) {
  if (!state.bSelected || row == kHeaderRow || row != state.dwSelectedRow) return 0;
  return GetFocus() == window ? ODS_SELECTED | ODS_FOCUS : ODS_SELECTED;
}

void DrawRow(const ListState& state, HWND window, HDC dc, UINT row, const RECT& rect) {
  // Created for each row, because a parent may modify the struct.
  DRAWITEMSTRUCT request{.CtlID = state.nControlId,
                         .itemID = row,
                         .itemState = StateOf(state, window, row),
                         .hwndItem = window,
                         .hDC = dc,
                         .rcItem = rect};
  SendMessageA(state.hParent, WM_DRAWITEM, state.nControlId, reinterpret_cast<LPARAM>(&request));
}

void DrawRows(HWND window, HDC dc, SIZE surface) {
  const ListState* state = ListStateOf(window);
  if (!state || state->dwRowCount == 0) return;
  const LONG rowHeight = state->nRowHeight;
  const RowRun rows = VisibleRows(state->dwRowCount, rowHeight, state->nVerticalOffset, surface.cy);
  DrawRow(*state, window, dc, kHeaderRow, RowRect(surface.cx, 0, rowHeight));
  for (DWORD i = 0; i < rows.count; ++i) {
    state = ListStateOf(window);
    // The parent may have shortened the list; do not request rows that no longer exist.
    if (!state || rows.first + i >= state->dwRowCount) return;
    const LONG top = rows.top + static_cast<LONG>(i) * rowHeight;
    DrawRow(*state, window, dc, rows.first + i, RowRect(surface.cx, top, rowHeight));
  }
}

// Redraws the surface. The state does not own the bitmap meanwhile, because the parent may resize or destroy the list,
// and a bitmap that is selected here must not be deleted. The dirty flag is cleared first, so that a change during
// drawing is not lost. The surface has the layout of the list: if only the list were mirrored, copying would mirror the
// text. The layout depends on the width of the bitmap and is therefore set after the bitmap is selected.
void RedrawSurface(HWND window, ListState* state, HDC compatibleWith) {
  const SIZE size = state->surfaceSize;
  OwnedBitmap surface(state->hSurface ? std::exchange(state->hSurface, nullptr) : CreateWindowBitmap(window, size));
  if (!surface) return;
  state->bDirty = FALSE;
  state->dwLayout = GetLayout(compatibleWith);
  state->bRedrawing = TRUE;
  {
    const MemoryDc dc(compatibleWith);
    const SelectedObject selected(dc, surface);
    SetLayout(dc, state->dwLayout);
    const RECT whole{0, 0, size.cx, size.cy};
    FillRect(dc, &whole, GetSysColorBrush(COLOR_WINDOW));
    MeasureListRows(window);
    DrawRows(window, dc, size);
  }
  state = ListStateOf(window);
  if (!state) return;
  state->bRedrawing = FALSE;
  const bool stillFits = size.cx == state->surfaceSize.cx && size.cy == state->surfaceSize.cy;
  if (stillFits && !state->hSurface) state->hSurface = surface.Release();
  if (state->bDirty) InvalidateRect(window, nullptr, TRUE);
}

// Copies the surface, and fills the rest of the client area with the window color.
void ShowSurface(HDC dc, SIZE client, HBITMAP surface, SIZE size, LONG horizontalOffset) {
  if (surface) {
    const LONG left = SurfaceLeft(horizontalOffset, size.cx, client.cx);
    const MemoryDc source(dc);
    const SelectedObject selected(source, surface);
    SetLayout(source, GetLayout(dc));
    BitBlt(dc, left, 0, size.cx, size.cy, source, 0, 0, SRCCOPY);
    ExcludeClipRect(dc, left, 0, left + size.cx, size.cy);
  }
  const RECT rest{0, 0, client.cx, client.cy};
  FillRect(dc, &rest, GetSysColorBrush(COLOR_WINDOW));
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnCreate(HWND window) {
  if (ListStateOf(window)) return 0;
  ListState* state = CreateWindowState<ListState>(window);
  if (!state) return 0;
  state->hParent = GetParent(window);
  state->nControlId = static_cast<UINT>(GetWindowLongA(window, GWL_ID));
  state->nRowHeight = kDefaultRowHeight;
  state->surfaceSize = ClientSize(window);
  state->bDirty = TRUE;
  return 0;
}

LRESULT OnDestroy(HWND window, ListState& state) {
  const OwnedBitmap surface(state.hSurface);
  DestroyWindowState(window, &state);
  TouchSettings();
  return 0;
}

LRESULT Redraw(HWND window, ListState& state) {
  state.bDirty = TRUE;
  RepaintNow(window);
  return 0;
}

LRESULT RedrawIfDirty(HWND window, ListState& state) {
  return state.bDirty ? Redraw(window, state) : 0;
}

void ResizeSurface(ListState& state, SIZE size) {
  const OwnedBitmap former(std::exchange(state.hSurface, nullptr));
  state.surfaceSize = size;
}

LRESULT OnSize(HWND window, ListState& state) {
  ResizeSurface(state, {state.surfaceSize.cx, ClientSize(window).cy});
  Redraw(window, state);
  UpdateListBars(window);
  return 0;
}

LRESULT OnPaint(HWND window, ListState&) {
  const PaintScope paint(window);
  ListState* state = ListStateOf(window);
  if (!state) return 0;
  if (state->bRedrawing) {
    // The parent repaints the list while it draws a row: drawing again from here could recurse without end.
    state->bDirty = TRUE;
    return 0;
  }
  if (state->bDirty || state->dwLayout != GetLayout(paint.dc())) RedrawSurface(window, state, paint.dc());
  if (const ListState* drawn = ListStateOf(window)) {
    ShowSurface(paint.dc(), ClientSize(window), drawn->hSurface, drawn->surfaceSize, drawn->nHorizontalOffset);
  }
  return 0;
}

// An update region that is not validated would generate WM_PAINT forever.
LRESULT ValidateWithoutPainting(HWND window) {
  ValidateRect(window, nullptr);
  return kNoState;
}

// Scrolls one bar. Returns true when the offset changed.
bool Scroll(HWND window, int barKind, int request, LONG line, LONG* offset) {
  SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_ALL};
  GetScrollInfo(window, barKind, &bar);
  const LONG former = *offset;
  *offset = ScrolledOffset(request, former, line, bar);
  return *offset != former;
}

LRESULT OnHorizontalScroll(HWND window, ListState& state, WPARAM wParam) {
  if (Scroll(window, SB_HORZ, LOWORD(wParam), kHorizontalLine, &state.nHorizontalOffset)) UpdateListBars(window);
  RepaintNow(window);
  return 0;
}

LRESULT OnVerticalScroll(HWND window, ListState& state, WPARAM wParam) {
  const bool moved = Scroll(window, SB_VERT, LOWORD(wParam), state.nRowHeight, &state.nVerticalOffset);
  state.bDirty = TRUE;
  if (moved) UpdateListBars(window);
  RepaintNow(window);
  return 0;
}

LRESULT OnLeftButtonDown(HWND window, ListState&) {
  SetFocus(window);
  SetCapture(window);
  if (ListState* state = ListStateOf(window)) RedrawIfDirty(window, *state);
  return 0;
}

LRESULT OnLeftButtonUp(HWND window, ListState&) {
  ReleaseCapture();
  if (ListState* state = ListStateOf(window)) Redraw(window, *state);
  TouchSettings();
  UpdateListBars(window);
  return 0;
}

LRESULT OnRightButtonDown(HWND window, ListState&) {
  SetFocus(window);
  ReleaseCapture();
  SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)));
  if (ListState* state = ListStateOf(window)) Redraw(window, *state);
  return 0;
}

LRESULT OnSetExtent(HWND window, ListState& state, WPARAM wParam) {
  SetListSurfaceWidth(state, UsableSurfaceWidth(wParam));
  return Redraw(window, state);
}

LRESULT OnSetCount(HWND window, ListState& state, WPARAM wParam) {
  state.dwRowCount = static_cast<DWORD>(wParam);
  return Redraw(window, state);
}

// Row numbers from 1. The contents of rows are known to the parent only.
AccessibleText Describe(HWND window) {
  const ListState* state = ListStateOf(window);
  if (!state || state->dwRowCount == 0) return {WindowText(window), {}};
  const RowRun rows = VisibleRows(state->dwRowCount, state->nRowHeight, state->nVerticalOffset, state->surfaceSize.cy);
  const std::wstring first = std::to_wstring((state->bSelected ? state->dwSelectedRow : rows.first) + 1ull);
  const std::wstring last = state->bSelected ? L"" : L" - " + std::to_wstring(1ull * rows.first + rows.count);
  return {WindowText(window), first + last + L" / " + std::to_wstring(state->dwRowCount)};
}

// Without state (allocation failed, or the list is being destroyed) the list's own messages are rejected. All others go
// to the system, which needs them to create and destroy the window.
LRESULT CALLBACK ExtendedListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  ListState* state = ListStateOf(window);
  const auto handle = [&](auto handler, auto... arguments) -> LRESULT {
    return state ? handler(window, *state, arguments...) : kNoState;
  };
  switch (message) {
    case WM_CREATE: return OnCreate(window);
    case WM_DESTROY: return handle(OnDestroy);
    case WM_SIZE: return handle(OnSize);
    case WM_PAINT: return state ? OnPaint(window, *state) : ValidateWithoutPainting(window);
    case WM_COMMAND: return state ? 0 : kNoState;
    case WM_HSCROLL: return handle(OnHorizontalScroll, wParam);
    case WM_VSCROLL: return handle(OnVerticalScroll, wParam);
    case WM_MOUSEMOVE: return handle(RedrawIfDirty);
    case WM_LBUTTONDOWN: return handle(OnLeftButtonDown);
    case WM_LBUTTONUP: return handle(OnLeftButtonUp);
    case WM_RBUTTONDOWN: return handle(OnRightButtonDown);
    case LB_SETHORIZONTALEXTENT: return handle(OnSetExtent, wParam);
    case LB_SETCOUNT: return handle(OnSetCount, wParam);
    case LB_RESETCONTENT: return handle(OnSetCount, WPARAM{0});
    case WM_GETOBJECT: return HandleGetObject(window, wParam, lParam, ROLE_SYSTEM_LIST, Describe);
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

ListState* ListStateOf(HWND window) {
  return WindowState<ListState>(window);
}

void MeasureListRows(HWND list) {
  const ListState* state = ListStateOf(list);
  if (!state) return;
  MEASUREITEMSTRUCT request{.CtlID = state->nControlId, .itemHeight = kDefaultRowHeight};
  SendMessageA(state->hParent, WM_MEASUREITEM, state->nControlId, reinterpret_cast<LPARAM>(&request));
  if (ListState* measured = ListStateOf(list)) measured->nRowHeight = UsableRowHeight(request.itemHeight);
}

void SetListSurfaceWidth(ListState& state, LONG width) {
  ResizeSurface(state, {width, state.surfaceSize.cy});
}

void UpdateListBars(HWND list) {
  if (const ListState* state = ListStateOf(list)) {
    const SCROLLINFO bar = HorizontalBar(state->surfaceSize.cx, ClientSize(list).cx, state->nHorizontalOffset);
    SetScrollInfo(list, SB_HORZ, &bar, TRUE);
  }
  // A bar that appears resizes the window, which notifies the parent.
  if (const ListState* state = ListStateOf(list)) {
    const auto barOf = state->bNavigated ? NavigatedBar : VerticalBar;
    const SCROLLINFO bar = barOf(state->dwRowCount, state->nRowHeight, ClientSize(list).cy, state->nVerticalOffset);
    SetScrollInfo(list, SB_VERT, &bar, TRUE);
  }
}

BOOL RegisterExtendedListClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kExtendedListClass, ExtendedListProcedure, registerIt);
}

BOOL OpenExtendedListSettings() {
  return RegistryKey::Open(kExtendedListSettingsPath) != nullptr;
}

}  // namespace kv
