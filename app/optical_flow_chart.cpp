#include "app/optical_flow_chart.h"

#include <algorithm>
#include <iterator>

#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/picture.h"
#include "framework/window_record.h"

namespace kv {

namespace {

struct ChartState {
  HGLOBAL hMemory;
  HWND hWnd;
  DWORD dwStyle;  // as at creation
  HBITMAP hBackBuffer;
  LONG nWidth, nHeight;  // of the back buffer
  DWORD bDirty;          // the back buffer must be rendered before it is shown
  CameraPoint points[kPointCount];
};

constexpr CameraPoint kNowhere{kNoPoint, kNoPoint};
constexpr int kMarkerCentre = 15;  // the pixel of a marker icon that lies on the point
constexpr int kSmallestCopy = 64, kLargestCopy = 5120;

bool IsShown(const CameraPoint& point) {
  return point.x != kNoPoint && point.y != kNoPoint;
}

// Both coordinates to 1023: a y below the field is kept and lies outside the picture, as the camera meant it.
CameraPoint Clamped(const CameraPoint& point) {
  return {std::clamp<LONG>(point.x, 0, kNoPoint), std::clamp<LONG>(point.y, 0, kNoPoint)};
}

void SetAllNowhere(ChartState* state) {
  std::fill(std::begin(state->points), std::end(state->points), kNowhere);
  state->bDirty = TRUE;
}

// ---- Drawing -------------------------------------------------------------------------------------------------------

void DrawField(HDC dc, const RECT& area) {
  const COLORREF oldBackground = SetBkColor(dc, 0x3F3F3F);
  SetBkMode(dc, OPAQUE);
  {
    const OwnedBrush hatch(CreateHatchBrush(HS_DIAGCROSS, RGB(255, 255, 255)));
    FillRect(dc, &area, hatch);
  }
  SetBkColor(dc, oldBackground);
  // Plain black over the hatch: the hatch is kept for the day the field wants a texture again.
  FillRect(dc, &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

void DrawMarkers(HDC dc, const CameraPoint (&points)[kPointCount], SIZE size) {
  SetMapMode(dc, MM_ANISOTROPIC);
  SetWindowExtEx(dc, kFieldWidth, kFieldHeight, nullptr);
  SetViewportExtEx(dc, size.cx, size.cy, nullptr);
  SetViewportOrgEx(dc, 0, 0, nullptr);
  for (int i = 0; i < kPointCount; ++i) {
    if (!IsShown(points[i])) continue;
    HICON marker = LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kMarkerIconFirst + i));
    DrawIcon(dc, points[i].x - kMarkerCentre, points[i].y - kMarkerCentre, marker);
    // A shared icon needs no release; this call is refused and changes nothing.
    DeleteObject(marker);
  }
  SetMapMode(dc, MM_TEXT);
}

void RenderChart(const ChartState* state, HBITMAP bitmap, SIZE size) {
  const WindowDc window(state->hWnd);
  const MemoryDc memory(window);
  const SelectedObject selected(memory, bitmap);
  DrawField(memory, {0, 0, size.cx, size.cy});
  DrawMarkers(memory, state->points, size);
}

void MakeBackBuffer(ChartState* state) {
  if (state->hBackBuffer) DeleteObject(state->hBackBuffer);
  const SIZE size = ClientSize(state->hWnd);
  state->hBackBuffer = CreateWindowBitmap(state->hWnd, size);
  state->nWidth = size.cx;
  state->nHeight = size.cy;
  state->bDirty = TRUE;
}

// ---- Message handlers ----------------------------------------------------------------------------------------------

LRESULT OnCreate(HWND window) {
  auto* state = CreateWindowRecord<ChartState>(window);
  if (!state) return 1;
  state->hWnd = window;
  state->dwStyle = GetWindowLongA(window, GWL_STYLE);
  MakeBackBuffer(state);
  SetAllNowhere(state);
  RepaintNow(window);
  return 0;
}

LRESULT OnDestroy(ChartState* state) {
  if (state->hBackBuffer) DeleteObject(state->hBackBuffer);
  DestroyWindowRecord(state->hWnd, state);
  return 0;
}

LRESULT OnSize(ChartState* state) {
  MakeBackBuffer(state);
  RepaintNow(state->hWnd);
  return 0;
}

LRESULT OnPaint(ChartState* state) {
  const PaintScope paint(state->hWnd);
  if (!state->hBackBuffer) return 0;
  const SIZE size{state->nWidth, state->nHeight};
  if (state->bDirty) {
    RenderChart(state, state->hBackBuffer, size);
    state->bDirty = FALSE;
  }
  RECT client{};
  GetClientRect(state->hWnd, &client);
  ShowBitmap(paint.dc(), client, state->hBackBuffer, size);
  return 0;
}

// Validates, or Windows would ask for the same paint for ever.
LRESULT OnPaintWithoutState(HWND window) {
  ValidateRect(window, nullptr);
  return 1;
}

LRESULT OnCopy(ChartState* state, LPARAM requestedSize) {
  const SIZE size = RequestedPictureSize(requestedSize, ClientSize(state->hWnd), kSmallestCopy, kLargestCopy);
  OwnedBitmap picture(CreateWindowBitmap(state->hWnd, size));
  if (!picture) return 0;
  RenderChart(state, picture, size);
  GiveBitmapToClipboard(state->hWnd, picture.Release());
  return 0;
}

void ReadPoints(const ChartState* state, FlowPoints* exchange) {
  exchange->mask = 0;
  for (int i = 0; i < kPointCount; ++i) {
    exchange->points[i] = state->points[i];
    if (IsShown(state->points[i])) exchange->mask |= 1u << i;
  }
}

LRESULT ExchangePoints(ChartState* state, WPARAM flags, FlowPoints* exchange) {
  if (IsBadWritePtr(exchange, sizeof(*exchange))) return 1;
  if (flags & kCommandRead) {
    ReadPoints(state, exchange);
    return 0;
  }
  for (int i = 0; i < kPointCount; ++i) {
    if (exchange->mask & (1u << i)) {
      state->points[i] = flags & kCommandRemove ? kNowhere : Clamped(exchange->points[i]);
    }
  }
  state->bDirty = TRUE;
  if (flags & kCommandRedraw) RepaintNow(state->hWnd);
  return 0;
}

LRESULT OnCommand(ChartState* state, WPARAM wParam, LPARAM lParam) {
  switch (LOBYTE(wParam)) {
    case kChartRefresh:
      state->bDirty = TRUE;
      RepaintNow(state->hWnd);
      return 0;
    case kChartClear:
      SetAllNowhere(state);
      RepaintNow(state->hWnd);
      return 0;
    case kChartPoints: return ExchangePoints(state, wParam, reinterpret_cast<FlowPoints*>(lParam));
    default: return 0;
  }
}

LRESULT CALLBACK ChartProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = WindowRecord<ChartState>(window);
  switch (message) {
    case WM_CREATE: return OnCreate(window);
    case WM_DESTROY: return state ? OnDestroy(state) : 0;
    case WM_SIZE: return state ? OnSize(state) : 1;
    case WM_PAINT: return state ? OnPaint(state) : OnPaintWithoutState(window);
    case WM_COPY: return state ? OnCopy(state, lParam) : 1;
    case kControlCommand: return state ? OnCommand(state, wParam, lParam) : 1;
    case WM_GETDLGCODE: return DLGC_STATIC;
    case WM_DROPFILES: return SendMessageA(GetParent(window), message, wParam, lParam);
    case WM_COMMAND:
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP:
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP: return 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterChartClass(HINSTANCE instance, BOOL registerIt) {
  return RegisterControlClass(instance, kChartClass, ChartProcedure, registerIt);
}

}  // namespace kv
