#include "lists/extended_list.h"

#include <oleacc.h>

#include <string>
#include <utility>

#include "framework/accessible.h"
#include "framework/bitmaps.h"
#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/window_state.h"
#include "lists/extended_list_layout.h"
#include "lists/extended_list_state.h"

namespace kv {

namespace {

constexpr LRESULT kNoRecord = 1;

void TouchSettings() {
  RegistryKey::Create(kExtendedListSettingsPath);
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

UINT StateOf(const ListRecord& record, HWND window, UINT row) {
  if (!record.bSelected || row == kHeaderRow || row != record.dwSelectedRow) return 0;
  return GetFocus() == window ? ODS_SELECTED | ODS_FOCUS : ODS_SELECTED;
}

void DrawRow(const ListRecord& record, HWND window, HDC dc, UINT row, const RECT& place) {
  // Made anew for each row: a parent may use the request as its scratch pad.
  DRAWITEMSTRUCT request{.CtlID = record.nControlId,
                         .itemID = row,
                         .itemState = StateOf(record, window, row),
                         .hwndItem = window,
                         .hDC = dc,
                         .rcItem = place};
  SendMessageA(record.hParent, WM_DRAWITEM, record.nControlId, reinterpret_cast<LPARAM>(&request));
}

void DrawRows(HWND window, HDC dc, SIZE surface) {
  const ListRecord* record = ListRecordOf(window);
  if (!record || record->dwRowCount == 0) return;
  const LONG rowHeight = record->nRowHeight;
  const RowRun rows = VisibleRows(record->dwRowCount, rowHeight, record->nVerticalOffset, surface.cy);
  DrawRow(*record, window, dc, kHeaderRow, RowRect(surface.cx, 0, rowHeight));
  for (DWORD i = 0; i < rows.count; ++i) {
    record = ListRecordOf(window);
    // The parent may have shortened the list; it must not be asked for rows that it no longer has.
    if (!record || rows.first + i >= record->dwRowCount) return;
    const LONG top = rows.top + static_cast<LONG>(i) * rowHeight;
    DrawRow(*record, window, dc, rows.first + i, RowRect(surface.cx, top, rowHeight));
  }
}

// Draws the surface anew. The bitmap leaves the record meanwhile: the parent may resize or destroy the list, and nobody
// must delete a bitmap that is selected here. The dirty flag is cleared first, so that a change made in between stays.
void RedrawSurface(HWND window, ListRecord* record, HDC compatibleWith) {
  const SIZE size = record->surfaceSize;
  OwnedBitmap surface(record->hSurface ? std::exchange(record->hSurface, nullptr) : CreateWindowBitmap(window, size));
  if (!surface) return;
  record->bDirty = FALSE;
  record->bRedrawing = TRUE;
  {
    const MemoryDc dc(compatibleWith);
    const SelectedObject selected(dc, surface);
    const RECT whole{0, 0, size.cx, size.cy};
    FillRect(dc, &whole, GetSysColorBrush(COLOR_WINDOW));
    MeasureListRows(window);
    DrawRows(window, dc, size);
  }
  record = ListRecordOf(window);
  if (!record) return;
  record->bRedrawing = FALSE;
  const bool stillFits = size.cx == record->surfaceSize.cx && size.cy == record->surfaceSize.cy;
  if (stillFits && !record->hSurface) record->hSurface = surface.Release();
  if (record->bDirty) InvalidateRect(window, nullptr, TRUE);
}

// Shows the surface, and the window colour where it does not reach: nothing else would paint there.
void ShowSurface(HDC dc, SIZE client, HBITMAP surface, SIZE size, LONG horizontalOffset) {
  if (surface) {
    const LONG left = SurfaceLeft(horizontalOffset, size.cx, client.cx);
    const MemoryDc source(dc);
    const SelectedObject selected(source, surface);
    BitBlt(dc, left, 0, size.cx, size.cy, source, 0, 0, SRCCOPY);
    ExcludeClipRect(dc, left, 0, left + size.cx, size.cy);
  }
  const RECT rest{0, 0, client.cx, client.cy};
  FillRect(dc, &rest, GetSysColorBrush(COLOR_WINDOW));
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnCreate(HWND window) {
  if (ListRecordOf(window)) return 0;
  ListRecord* record = CreateWindowRecord<ListRecord>(window);
  if (!record) return 0;
  record->hParent = GetParent(window);
  record->nControlId = static_cast<UINT>(GetWindowLongA(window, GWL_ID));
  record->nRowHeight = kDefaultRowHeight;
  record->surfaceSize = ClientSize(window);
  record->bDirty = TRUE;
  return 0;
}

LRESULT OnDestroy(HWND window, ListRecord& record) {
  const OwnedBitmap surface(record.hSurface);
  DestroyWindowRecord(window, &record);
  TouchSettings();
  return 0;
}

LRESULT Redraw(HWND window, ListRecord& record) {
  record.bDirty = TRUE;
  RepaintNow(window);
  return 0;
}

LRESULT RedrawIfDirty(HWND window, ListRecord& record) {
  return record.bDirty ? Redraw(window, record) : 0;
}

void ResizeSurface(ListRecord& record, SIZE size) {
  const OwnedBitmap former(std::exchange(record.hSurface, nullptr));
  record.surfaceSize = size;
}

LRESULT OnSize(HWND window, ListRecord& record) {
  ResizeSurface(record, {record.surfaceSize.cx, ClientSize(window).cy});
  Redraw(window, record);
  UpdateListBars(window);
  return 0;
}

LRESULT OnPaint(HWND window, ListRecord&) {
  const PaintScope paint(window);
  ListRecord* record = ListRecordOf(window);
  if (!record) return 0;
  if (record->bRedrawing) {
    // The parent paints the list while it draws a row. Asking it again from here could go on without end.
    record->bDirty = TRUE;
    return 0;
  }
  if (record->bDirty) RedrawSurface(window, record, paint.dc());
  if (const ListRecord* drawn = ListRecordOf(window)) {
    ShowSurface(paint.dc(), ClientSize(window), drawn->hSurface, drawn->surfaceSize, drawn->nHorizontalOffset);
  }
  return 0;
}

// Nothing to draw; but an update region that stays would keep the message loop busy for ever.
LRESULT RefusePaint(HWND window) {
  ValidateRect(window, nullptr);
  return kNoRecord;
}

// Moves the offset of one bar; true when it changed.
bool Scroll(HWND window, int barKind, int request, LONG line, LONG* offset) {
  SCROLLINFO bar{.cbSize = sizeof(bar), .fMask = SIF_ALL};
  GetScrollInfo(window, barKind, &bar);
  const LONG former = *offset;
  *offset = ScrolledOffset(request, former, line, bar);
  return *offset != former;
}

LRESULT OnHorizontalScroll(HWND window, ListRecord& record, WPARAM wParam) {
  if (Scroll(window, SB_HORZ, LOWORD(wParam), kHorizontalLine, &record.nHorizontalOffset)) UpdateListBars(window);
  RepaintNow(window);
  return 0;
}

LRESULT OnVerticalScroll(HWND window, ListRecord& record, WPARAM wParam) {
  const bool moved = Scroll(window, SB_VERT, LOWORD(wParam), record.nRowHeight, &record.nVerticalOffset);
  record.bDirty = TRUE;
  if (moved) UpdateListBars(window);
  RepaintNow(window);
  return 0;
}

LRESULT OnLeftButtonDown(HWND window, ListRecord&) {
  SetFocus(window);
  SetCapture(window);
  if (ListRecord* record = ListRecordOf(window)) RedrawIfDirty(window, *record);
  return 0;
}

LRESULT OnLeftButtonUp(HWND window, ListRecord&) {
  ReleaseCapture();
  if (ListRecord* record = ListRecordOf(window)) Redraw(window, *record);
  TouchSettings();
  UpdateListBars(window);
  return 0;
}

LRESULT OnRightButtonDown(HWND window, ListRecord&) {
  SetFocus(window);
  ReleaseCapture();
  SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)));
  if (ListRecord* record = ListRecordOf(window)) Redraw(window, *record);
  return 0;
}

LRESULT OnSetExtent(HWND window, ListRecord& record, WPARAM wParam) {
  SetListSurfaceWidth(record, UsableSurfaceWidth(wParam));
  return Redraw(window, record);
}

LRESULT OnSetCount(HWND window, ListRecord& record, WPARAM wParam) {
  record.dwRowCount = static_cast<DWORD>(wParam);
  return Redraw(window, record);
}

// Rows as people count them; what they say, only the parent knows.
AccessibleText Describe(HWND window) {
  const ListRecord* record = ListRecordOf(window);
  if (!record || record->dwRowCount == 0) return {WindowText(window), {}};
  const RowRun rows =
      VisibleRows(record->dwRowCount, record->nRowHeight, record->nVerticalOffset, record->surfaceSize.cy);
  const std::wstring first = std::to_wstring((record->bSelected ? record->dwSelectedRow : rows.first) + 1ull);
  const std::wstring last = record->bSelected ? L"" : L" - " + std::to_wstring(1ull * rows.first + rows.count);
  return {WindowText(window), first + last + L" / " + std::to_wstring(record->dwRowCount)};
}

// Without a record (memory was short, or the list is destroyed) the list's own messages are refused. All others still
// go to the system, which needs them to make and to end the window.
LRESULT CALLBACK ExtendedListProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  ListRecord* record = ListRecordOf(window);
  const auto handle = [&](auto handler, auto... arguments) -> LRESULT {
    return record ? handler(window, *record, arguments...) : kNoRecord;
  };
  switch (message) {
    case WM_CREATE: return OnCreate(window);
    case WM_DESTROY: return handle(OnDestroy);
    case WM_SIZE: return handle(OnSize);
    case WM_PAINT: return record ? OnPaint(window, *record) : RefusePaint(window);
    case WM_COMMAND: return record ? 0 : kNoRecord;
    case WM_HSCROLL: return handle(OnHorizontalScroll, wParam);
    case WM_VSCROLL: return handle(OnVerticalScroll, wParam);
    case WM_MOUSEMOVE: return handle(RedrawIfDirty);
    case WM_LBUTTONDOWN: return handle(OnLeftButtonDown);
    case WM_LBUTTONUP: return handle(OnLeftButtonUp);
    case WM_RBUTTONDOWN: return handle(OnRightButtonDown);
    case LB_SETHORIZONTALEXTENT: return handle(OnSetExtent, wParam);
    case LB_SETCOUNT: return handle(OnSetCount, wParam);
    case LB_RESETCONTENT: return handle(OnSetCount, WPARAM{0});
    case WM_GETOBJECT: return AnswerGetObject(window, wParam, lParam, ROLE_SYSTEM_LIST, Describe);
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

ListRecord* ListRecordOf(HWND window) {
  return WindowRecord<ListRecord>(window);
}

void MeasureListRows(HWND list) {
  const ListRecord* record = ListRecordOf(list);
  if (!record) return;
  MEASUREITEMSTRUCT request{.CtlID = record->nControlId, .itemHeight = kDefaultRowHeight};
  SendMessageA(record->hParent, WM_MEASUREITEM, record->nControlId, reinterpret_cast<LPARAM>(&request));
  if (ListRecord* measured = ListRecordOf(list)) measured->nRowHeight = UsableRowHeight(request.itemHeight);
}

void SetListSurfaceWidth(ListRecord& record, LONG width) {
  ResizeSurface(record, {width, record.surfaceSize.cy});
}

void UpdateListBars(HWND list) {
  if (const ListRecord* record = ListRecordOf(list)) {
    const SCROLLINFO bar = HorizontalBar(record->surfaceSize.cx, ClientSize(list).cx, record->nHorizontalOffset);
    SetScrollInfo(list, SB_HORZ, &bar, TRUE);
  }
  // A bar that appears resizes the window, and so reaches the parent.
  if (const ListRecord* record = ListRecordOf(list)) {
    const auto barOf = record->bNavigated ? NavigatedBar : VerticalBar;
    const SCROLLINFO bar = barOf(record->dwRowCount, record->nRowHeight, ClientSize(list).cy, record->nVerticalOffset);
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
