#include "camera/optical_flow_chart.h"

#include <oleacc.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "camera/camera_record.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/control_class.h"
#include "kv/framework/guards.h"
#include "kv/framework/window_state.h"

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
  HDC hBackDc;        // in camera coordinates; the back buffer stays selected
  HGDIOBJ hNoBuffer;  // selected when there is no back buffer
  DWORD bBehind;      // points have changed without a repaint: the screen may be older than the back buffer
  DWORD bRendered;    // the back buffer shows `rendered`
  CameraPoint rendered[kPointCount];  // the points of the last rendering
};

constexpr CameraPoint kHiddenPoint{kNoPoint, kNoPoint};
constexpr int kMarkerCenter = 15;  // the pixel of a marker icon that lies on the point
constexpr int kMinCopySize = 64, kMaxCopySize = 5120;

bool IsShown(const CameraPoint& point) {
  return point.x != kNoPoint && point.y != kNoPoint;
}

// Quirk: y is clamped to 1023 as well, so a y below the field is outside the bitmap and not at its lower edge.
CameraPoint Clamped(const CameraPoint& point) {
  return {std::clamp<LONG>(point.x, 0, kNoPoint), std::clamp<LONG>(point.y, 0, kNoPoint)};
}

void HideAllPoints(ChartState* state) {
  std::ranges::fill(state->points, kHiddenPoint);
  state->bDirty = TRUE;
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

// Maps camera coordinates to a bitmap of this size, x to the right and y downwards, without preserving proportions.
void UseCameraCoordinates(HDC dc, SIZE size) {
  SetMapMode(dc, MM_ANISOTROPIC);
  SetWindowExtEx(dc, kFieldWidth, kFieldHeight, nullptr);
  SetViewportExtEx(dc, size.cx, size.cy, nullptr);
  SetViewportOrgEx(dc, 0, 0, nullptr);
}

void DrawField(HDC dc) {
  constexpr RECT kField{0, 0, kFieldWidth, kFieldHeight};
  const COLORREF oldBackground = SetBkColor(dc, 0x3F3F3F);
  SetBkMode(dc, OPAQUE);
  {
    const OwnedBrush hatch(CreateHatchBrush(HS_DIAGCROSS, RGB(255, 255, 255)));
    FillRect(dc, &kField, hatch);
  }
  SetBkColor(dc, oldBackground);
  // Quirk: overwrites the hatch pattern.
  FillRect(dc, &kField, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

// Shared icons exist as long as the process and are not released. Loading one each time would take longer than drawing
// it.
HICON MarkerIcon(int index) {
  static HICON icons[kPointCount];
  HICON& icon = icons[index];
  if (!icon) icon = LoadIconA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(kMarkerIconFirst + index));
  return icon;
}

void DrawMarkers(HDC dc, const CameraPoint (&points)[kPointCount]) {
  for (int i = 0; i < kPointCount; ++i) {
    if (!IsShown(points[i])) continue;
    DrawIcon(dc, points[i].x - kMarkerCenter, points[i].y - kMarkerCenter, MarkerIcon(i));
  }
}

// `dc` uses camera coordinates.
void RenderChart(HDC dc, const CameraPoint (&points)[kPointCount]) {
  DrawField(dc);
  DrawMarkers(dc, points);
}

// Returns the pixels that a marker can cover in a bitmap of this size; empty for a point that is not shown.
RECT MarkerBounds(const CameraPoint& point, SIZE size) {
  if (!IsShown(point)) return {};
  constexpr int kRounding = 2;
  const LONG left = point.x - kMarkerCenter, top = point.y - kMarkerCenter;
  const LONG right = left + GetSystemMetrics(SM_CXICON), bottom = top + GetSystemMetrics(SM_CYICON);
  return {MulDiv(left, size.cx, kFieldWidth) - kRounding, MulDiv(top, size.cy, kFieldHeight) - kRounding,
          MulDiv(right, size.cx, kFieldWidth) + kRounding, MulDiv(bottom, size.cy, kFieldHeight) + kRounding};
}

// Returns the region in which renderings of these points differ.
OwnedRegion DifferentRegion(const CameraPoint (&before)[kPointCount], const CameraPoint (&after)[kPointCount],
                            SIZE size) {
  OwnedRegion region(CreateRectRgn(0, 0, 0, 0));
  for (int i = 0; i < kPointCount; ++i) {
    if (before[i].x == after[i].x && before[i].y == after[i].y) continue;
    for (const CameraPoint& point : {before[i], after[i]}) {
      const RECT bounds = MarkerBounds(point, size);
      const OwnedRegion marker(CreateRectRgnIndirect(&bounds));
      CombineRgn(region, region, marker, RGN_OR);
    }
  }
  return region;
}

// Renders only the difference from the last rendering.
void RenderBackBuffer(ChartState* state) {
  const SIZE size{state->nWidth, state->nHeight};
  if (state->bRendered) {
    const OwnedRegion different = DifferentRegion(state->rendered, state->points, size);
    SelectClipRgn(state->hBackDc, different);
  }
  RenderChart(state->hBackDc, state->points);
  SelectClipRgn(state->hBackDc, nullptr);
  std::ranges::copy(state->points, state->rendered);
  state->bRendered = TRUE;
  state->bDirty = FALSE;
}

void DropBackBuffer(ChartState* state) {
  if (!state->hBackBuffer) return;
  SelectObject(state->hBackDc, state->hNoBuffer);
  DeleteObject(state->hBackBuffer);
}

void MakeBackBuffer(ChartState* state) {
  DropBackBuffer(state);
  const SIZE size = ClientSize(state->hWnd);
  state->hBackBuffer = CreateWindowBitmap(state->hWnd, size);
  if (state->hBackBuffer) SelectObject(state->hBackDc, state->hBackBuffer);
  state->nWidth = size.cx;
  state->nHeight = size.cy;
  UseCameraCoordinates(state->hBackDc, size);
  state->bRendered = FALSE;
  state->bDirty = TRUE;
}

// Draws the control's edge in the system's highlight color. The field inside shows only the points.
void DrawFocusedEdge(HWND window) {
  RECT rect{}, field{};
  GetWindowRect(window, &rect);
  GetClientRect(window, &field);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&field), 2);
  OffsetRect(&field, -rect.left, -rect.top);
  OffsetRect(&rect, -rect.left, -rect.top);
  HDC dc = GetWindowDC(window);
  ExcludeClipRect(dc, field.left, field.top, field.right, field.bottom);
  FillRect(dc, &rect, GetSysColorBrush(COLOR_HIGHLIGHT));
  ReleaseDC(window, dc);
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnCreate(HWND window) {
  auto* state = CreateWindowState<ChartState>(window);
  if (!state) return 1;
  state->hWnd = window;
  state->dwStyle = GetWindowLongA(window, GWL_STYLE);
  const WindowDc dc(window);
  state->hBackDc = CreateCompatibleDC(dc);
  state->hNoBuffer = GetCurrentObject(state->hBackDc, OBJ_BITMAP);
  MakeBackBuffer(state);
  HideAllPoints(state);
  RepaintNow(window);
  return 0;
}

LRESULT OnDestroy(ChartState* state) {
  DropBackBuffer(state);
  if (state->hBackDc) DeleteDC(state->hBackDc);
  DestroyWindowState(state->hWnd, state);
  return 0;
}

LRESULT OnSize(ChartState* state) {
  MakeBackBuffer(state);
  RepaintNow(state->hWnd);
  return 0;
}

LRESULT OnPaint(HWND window) {
  const PaintScope paint(window);
  auto* state = WindowState<ChartState>(window);  // erasing may have called other code
  if (!state || !state->hBackBuffer) return 0;
  if (state->bDirty) RenderBackBuffer(state);
  RECT client{};
  GetClientRect(window, &client);
  SetStretchBltMode(paint.dc(), COLORONCOLOR);
  StretchBlt(paint.dc(), 0, 0, client.right, client.bottom, state->hBackDc, 0, 0, kFieldWidth, kFieldHeight, SRCCOPY);
  return 0;
}

LRESULT OnPaintEdge(HWND window, WPARAM region) {
  const LRESULT result = DefWindowProcA(window, WM_NCPAINT, region, 0);
  if (GetFocus() == window) DrawFocusedEdge(window);
  return result;
}

LRESULT OnFocus(HWND window, UINT message, WPARAM wParam) {
  constexpr WPARAM kWhole = 1;
  SendMessageA(window, WM_NCPAINT, kWhole, 0);
  return DefWindowProcA(window, message, wParam, 0);
}

// Validates the window, which would otherwise receive WM_PAINT forever.
LRESULT OnPaintWithoutState(HWND window) {
  ValidateRect(window, nullptr);
  return 1;
}

LRESULT OnCopy(ChartState* state, LPARAM requestedSize) {
  const SIZE size = RequestedCopySize(requestedSize, ClientSize(state->hWnd), kMinCopySize, kMaxCopySize);
  OwnedBitmap bitmap(CreateWindowBitmap(state->hWnd, size));
  if (!bitmap) return 0;
  const WindowDc window(state->hWnd);
  const MemoryDc memory(window);
  {
    const SelectedObject selected(memory, bitmap);
    UseCameraCoordinates(memory, size);
    RenderChart(memory, state->points);
  }
  PutBitmapOnClipboard(state->hWnd, bitmap.Release());
  return 0;
}

void ReadPoints(const ChartState* state, FlowPoints* exchange) {
  exchange->mask = 0;
  for (int i = 0; i < kPointCount; ++i) {
    exchange->points[i] = state->points[i];
    if (IsShown(state->points[i])) exchange->mask |= 1u << i;
  }
}

void RepaintAll(ChartState* state) {
  state->bBehind = FALSE;
  RepaintNow(state->hWnd);
}

// Repaints the old and new rectangles of the markers, which is the whole difference unless the screen is behind.
void RepaintDifference(ChartState* state, const CameraPoint (&before)[kPointCount]) {
  const OwnedRegion different = DifferentRegion(before, state->points, {state->nWidth, state->nHeight});
  RECT bounds{};
  if (state->bBehind || GetRgnBox(different, &bounds) <= NULLREGION) return RepaintAll(state);
  RepaintWithoutChildren(state->hWnd, different);
}

LRESULT ExchangePoints(ChartState* state, WPARAM flags, FlowPoints* exchange) {
  if (IsBadWritePtr(exchange, sizeof(*exchange))) return 1;
  if (flags & kCommandRead) {
    ReadPoints(state, exchange);
    return 0;
  }
  CameraPoint before[kPointCount];
  std::ranges::copy(state->points, before);
  for (int i = 0; i < kPointCount; ++i) {
    if (exchange->mask & (1u << i)) {
      state->points[i] = flags & kCommandRemove ? kHiddenPoint : Clamped(exchange->points[i]);
    }
  }
  state->bDirty = TRUE;
  if (flags & kCommandRedraw) {
    RepaintDifference(state, before);
  } else {
    state->bBehind = TRUE;
  }
  return 0;
}

LRESULT OnCommand(ChartState* state, WPARAM wParam, LPARAM lParam) {
  switch (LOBYTE(wParam)) {
    case kChartRefresh:
      state->bRendered = FALSE;  // renders everything
      state->bDirty = TRUE;
      RepaintAll(state);
      return 0;
    case kChartClear:
      HideAllPoints(state);
      RepaintAll(state);
      return 0;
    case kChartPoints: return ExchangePoints(state, wParam, reinterpret_cast<FlowPoints*>(lParam));
    default: return 0;
  }
}

// The visible points with their numbers: "1: 512, 384; 3: 20, 700".
AccessibleText Describe(HWND window) {
  const auto* state = WindowState<ChartState>(window);
  AccessibleText text{WindowText(window), {}};
  for (int i = 0; state && i < kPointCount; ++i) {
    const CameraPoint& point = state->points[i];
    if (!IsShown(point)) continue;
    if (!text.value.empty()) text.value += L"; ";
    text.value += std::to_wstring(i + 1) + L": " + std::to_wstring(point.x) + L", " + std::to_wstring(point.y);
  }
  if (text.name.empty()) text.name = L"Optical flow";
  return text;
}

LRESULT CALLBACK ChartProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* state = WindowState<ChartState>(window);
  switch (message) {
    case WM_CREATE: return state ? 0 : OnCreate(window);
    case WM_DESTROY: return state ? OnDestroy(state) : 0;
    case WM_SIZE: return state ? OnSize(state) : 1;
    case WM_PAINT: return state ? OnPaint(window) : OnPaintWithoutState(window);
    case WM_COPY: return state ? OnCopy(state, lParam) : 1;
    case CHART_CMD: return state ? OnCommand(state, wParam, lParam) : 1;
    case WM_NCPAINT: return OnPaintEdge(window, wParam);
    case WM_SETFOCUS:
    case WM_KILLFOCUS: return OnFocus(window, message, wParam);
    case WM_GETDLGCODE: return DLGC_STATIC;
    case WM_GETOBJECT: return HandleGetObject(window, wParam, lParam, ROLE_SYSTEM_CHART, Describe);
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
