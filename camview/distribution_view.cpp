#include "camview/distribution_view.h"

#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/distribution_panels.h"
#include "camview/distributions.h"
#include "camview/resource_ids.h"
#include "camview/status_line.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/object_control.h"
#include "kv/framework/painting.h"
#include "kv/framework/window_state.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"

namespace camview {

namespace {

constexpr int kAll = -1;
constexpr LONG kFar = kv::kNoPoint;  // beyond all values
constexpr int kMinCopySize = 64, kMaxCopySize = 5120;
constexpr wchar_t kNone[] = L"\x2013";

struct DistributionView {
  HWND window;
  std::array<PointCounts, kv::kPointCount> points;
  std::array<CountGrid, kv::kPointCount> cells;  // as drawn last
  int single = kAll;                             // the point that is shown alone
  std::optional<CellPlace> reading;
  int readPoint = 0;
  bool isByKey = false;     // read by the cursor; otherwise by the pointer
  POINT pointer{};          // on the screen, when the cursor was moved
  bool isTracking = false;  // the pointer is in the window
  bool isDirty = true;
  kv::Surface surface;
  kv::CoverageShape shape;
  kv::MemoryDc dc{nullptr};
};

// 0: x, 1: y; of a scatter plot -1.
int CoordinateOf(const DistributionView& view) {
  const LONG style = GetWindowLongA(view.window, GWL_STYLE);
  return style & kDistributionOfY ? 1 : style & kDistributionOfX ? 0 : -1;
}

bool IsScatter(const DistributionView& view) {
  return CoordinateOf(view) < 0;
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

std::wstring ChannelName(int coordinate, int point) {
  return kv::TextWith(coordinate == 1 ? IDS_CHANNEL_Y : IDS_CHANNEL_X, point + 1);
}

std::wstring NameOf(const DistributionView& view, int point) {
  return IsScatter(view) ? std::to_wstring(point + 1) : ChannelName(CoordinateOf(view), point);
}

std::wstring MeanText(const camera::Spread& spread, long long count) {
  return kv::NumberText(camera::Mean(spread, count), 2);
}

std::wstring SpreadText(const camera::Spread& spread, long long count) {
  const double deviation = camera::Deviation(spread, count);
  return count < 2 ? kNone : kv::NumberText(deviation, deviation < 100 ? 2 : 1);
}

// "x1: 512.31 ± 1.02".
std::wstring HeaderOf(const DistributionView& view, int point) {
  const GridFigures& figures = view.points[point].figures;
  std::wstring text = NameOf(view, point);
  const auto add = [&](const wchar_t* separator, const camera::Spread& spread) {
    text += separator + MeanText(spread, figures.count) + L" \xB1 " + SpreadText(spread, figures.count);
  };
  if (figures.count == 0) return text;
  add(L": ", figures.x);
  if (IsScatter(view)) add(L"; ", figures.y);
  return text;
}

// "x1: mean 512.31, spread 1.02, 511 to 515; x2: –".
std::wstring FiguresText(const DistributionView& view) {
  std::wstring text;
  for (int point = 0; point < kv::kPointCount; ++point) {
    if (view.single != kAll && view.single != point) continue;
    const GridFigures& figures = view.points[point].figures;
    for (int coordinate = 0; coordinate < (IsScatter(view) ? 2 : 1); ++coordinate) {
      const camera::Spread& spread = coordinate == 0 ? figures.x : figures.y;
      const std::wstring name = IsScatter(view) ? ChannelName(coordinate, point) : NameOf(view, point);
      if (!text.empty()) text += L"; ";
      text += figures.count == 0 ? name + L": " + kNone
                                 : kv::TextWith(IDS_DISTRIBUTION_FIGURES, name, MeanText(spread, figures.count),
                                                SpreadText(spread, figures.count), static_cast<int>(spread.lowest),
                                                static_cast<int>(spread.highest));
    }
  }
  return text;
}

// "512–515" of a cell of several values.
std::wstring ValuesText(LONG value, LONG bin) {
  const LONG from = value / bin * bin;
  return std::to_wstring(from) + (bin > 1 ? kNone + std::to_wstring(from + bin - 1) : L"");
}

// "x1 = 512: 1,234 records, 12.3 %".
std::wstring ReadingText(const DistributionView& view, const CellPlace& place, LONG bin) {
  const PointCounts& counts = view.points[view.readPoint];
  const long long count = CountOf(counts.grid, bin, place.x, place.y);
  const double percent = 100 * static_cast<double>(count) / static_cast<double>(std::max(counts.figures.count, 1LL));
  constexpr double kLeast = 0.05;  // otherwise it would be shown as 0
  std::wstring values = ValuesText(place.x, bin);
  if (IsScatter(view)) values += L", " + ValuesText(place.y, bin);
  return kv::TextWith(IDS_DISTRIBUTION_CELL, NameOf(view, view.readPoint), values, RecordsAsText(count),
                      count > 0 && percent < kLeast ? L"< " + kv::NumberText(0.1, 1) : kv::NumberText(percent, 1));
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

int FontPx(SIZE size) {
  return std::clamp(static_cast<int>(std::min(size.cy / 22, size.cx / 32)), 10, 40);
}

RECT PanelArea(const DistributionView& view, SIZE size, int point) {
  if (view.single != kAll) return {0, 0, size.cx, size.cy};
  const LONG gap = FontPx(size) / 2, width = (size.cx - gap) / 2, height = (size.cy - gap) / 2;
  const LONG left = point % 2 * (width + gap), top = point / 2 * (height + gap);
  return {left, top, left + width, top + height};
}

PanelLayout LayoutOf(const DistributionView& view, SIZE size, int point) {
  const RECT area = PanelArea(view, size, point);
  size_t digits = 4;
  for (const PointCounts& each : view.points) {
    // A cell of several values may have a higher count.
    const LONG bin = 1 + 2 * each.grid.width / std::max(area.right - area.left, 1L);
    if (!IsScatter(view)) digits = std::max(digits, kv::NumberText(1.0 * each.figures.highest * bin).size());
  }
  return LayoutPanel(area, FontPx(size), digits, IsScatter(view), view.points[point].grid);
}

// The size of the cells in the window.
LONG BinOf(const DistributionView& view, int point) {
  return LayoutOf(view, kv::ClientSize(view.window), point).bin;
}

bool IsShown(const DistributionView& view, int point) {
  return view.single == kAll || view.single == point;
}

void Render(DistributionView& view, kv::Canvas& canvas) {
  const SIZE size = canvas.surface().size();
  const PanelColors colors = ColorsOfPanels(IsScatter(view));
  kv::FillArea(canvas, {0, 0, size.cx, size.cy}, colors.around);
  const kv::OwnedFont font = kv::MakeFont(-FontPx(size), FW_NORMAL);
  const kv::SelectedObject selected(canvas.dc(), font);
  SetBkMode(canvas.dc(), TRANSPARENT);
  for (int point = 0; point < kv::kPointCount; ++point) {
    if (!IsShown(view, point)) continue;
    const PanelLayout layout = LayoutOf(view, size, point);
    CountGrid& cells = view.cells[point];
    if (cells.counts.empty() || cells.bin != layout.bin) cells = Binned(view.points[point].grid, layout.bin);
    const bool isRead = view.reading && view.readPoint == point && view.points[point].figures.count > 0;
    DrawPanel(canvas, layout, colors,
              {view.points[point], cells, isRead ? ReadingText(view, *view.reading, layout.bin) : HeaderOf(view, point),
               colors.points[point], isRead ? view.reading : std::nullopt});
  }
}

// Updates the back buffer. Returns false without one.
bool Update(DistributionView& view) {
  if (view.surface.Resize(kv::ClientSize(view.window))) view.isDirty = true;
  if (!view.surface.bitmap()) return false;
  if (view.isDirty) {
    kv::Canvas canvas(view.dc, view.surface, view.shape);
    Render(view, canvas);
  }
  view.isDirty = false;
  return true;
}

void ShowOn(DistributionView& view, HDC dc) {
  if (Update(view)) view.surface.Show(dc, view.dc);
}

LRESULT Repaint(DistributionView& view) {
  view.isDirty = true;
  InvalidateRect(view.window, nullptr, FALSE);
  return 0;
}

// A value that has changed, too.
LRESULT Change(DistributionView& view) {
  Repaint(view);
  kv::NotifyValueChanged(view.window);  // a hook may destroy the control
  return 0;
}

// ---- Content --------------------------------------------------------------------------------------------------------

bool IsValid(const DistributionCounts& counts, bool isScatter) {
  if (counts.width == 0 && counts.height == 0) return true;
  const auto isWithin = [](LONG from, DWORD length) {
    return from >= 0 && from <= kv::kNoPoint && length > 0 && length <= static_cast<DWORD>(kv::kNoPoint + 1 - from);
  };
  return isWithin(counts.left, counts.width) && isWithin(counts.top, counts.height) &&
         (isScatter || (counts.top == 0 && counts.height == 1)) &&
         !IsBadReadPtr(counts.counts, counts.width * counts.height * sizeof(DWORD));
}

LRESULT OnCommand(DistributionView& view, WPARAM wParam, LPARAM lParam) {
  DistributionContent content;
  const bool isScatter = IsScatter(view);
  if (LOBYTE(wParam) != kDistributionShow || !kv::CopyItemIn(lParam, &content) ||
      !std::ranges::all_of(content.points, [&](const auto& each) { return IsValid(each, isScatter); })) {
    return FALSE;
  }
  for (int i = 0; i < kv::kPointCount; ++i) {
    const DistributionCounts& given = content.points[i];
    CountGrid& grid = view.points[i].grid;
    grid = {.left = given.width ? given.left : 0,
            .top = given.width ? given.top : 0,
            .width = static_cast<LONG>(given.width),
            .height = static_cast<LONG>(given.height)};
    grid.counts.assign(given.counts, given.counts + given.width * given.height);
    view.points[i].figures = FiguresOf(grid);
    view.cells[i] = {};
  }
  const HWND window = view.window;
  Change(view);
  if (wParam & kv::kCommandRedraw) UpdateWindow(window);
  return TRUE;
}

// ---- Table ----------------------------------------------------------------------------------------------------------

// A row for each cell that any of the points has, of places only where one was; empty if there are too many.
std::wstring RowsOf(const DistributionView& view, LONG bin) {
  std::array<CountGrid, kv::kPointCount> grids;
  LONG left = LONG_MAX, top = LONG_MAX, right = 0, bottom = 0;
  for (int i = 0; i < kv::kPointCount; ++i) {
    if (IsShown(view, i)) grids[i] = Binned(view.points[i].grid, bin);
    if (grids[i].counts.empty()) continue;
    left = std::min(left, grids[i].left);
    top = std::min(top, grids[i].top);
    right = std::max(right, grids[i].left + grids[i].width);
    bottom = std::max(bottom, grids[i].top + grids[i].height);
  }
  std::wstring rows;
  size_t count = 0;
  for (LONG y = top; y < bottom; ++y) {
    for (LONG x = left; x < right; ++x) {
      DWORD all = 0;
      std::wstring row = std::to_wstring(x * bin);
      if (IsScatter(view)) row += L"\t" + std::to_wstring(y * bin);
      for (int i = 0; i < kv::kPointCount; ++i) {
        if (!IsShown(view, i)) continue;
        const DWORD own = grids[i].At(x - grids[i].left, y - grids[i].top);
        row += L"\t" + std::to_wstring(own);
        all += own;
      }
      if (IsScatter(view) && all == 0) continue;
      if (++count > kDistributionMaxRows) return {};
      rows += row + L"\r\n";
    }
  }
  return rows;
}

std::wstring TableOf(const DistributionView& view) {
  std::wstring table = CoordinateOf(view) == 1 ? L"y" : L"x";
  if (IsScatter(view)) table += L"\ty";
  for (int i = 0; i < kv::kPointCount; ++i) {
    if (IsShown(view, i)) table += L"\t" + NameOf(view, i);
  }
  std::wstring rows;
  constexpr LONG kEnough = 4;  // with it, no table is too long
  for (LONG bin = 1; rows.empty() && bin <= kEnough; bin *= 2) rows = RowsOf(view, bin);
  return table + L"\r\n" + rows;
}

LRESULT OnCopy(DistributionView& view, LPARAM requested) {
  const SIZE size = kv::RequestedCopySize(requested, kv::ClientSize(view.window), kMinCopySize, kMaxCopySize);
  kv::Surface surface;
  const std::unique_ptr<kv::CoverageShape> shape(new (std::nothrow) kv::CoverageShape);
  if (!shape || !surface.Create(size)) return 0;
  {
    kv::Canvas canvas(view.dc, surface, *shape);
    Render(view, canvas);
  }
  // Before opening the clipboard, which notifies its previous owner, who may destroy the control.
  const std::wstring table = TableOf(view);
  const HWND window = view.window;
  if (kv::CopyBitmapToClipboard(window, surface.bitmap(), size, size)) kv::CopyTextToClipboard(window, table, TRUE);
  return 0;
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnPaint(HWND window) {
  const kv::PaintScope paint(window);
  auto* view = kv::ObjectOf<DistributionView>(window);  // erasing may have destroyed the control
  if (!view) return 0;
  ShowOn(*view, paint.dc());
  const SIZE size = kv::ClientSize(window);
  if (GetFocus() == window) kv::DrawFocusFrame(paint.dc(), {0, 0, size.cx, size.cy});
  return 0;
}

LRESULT ShowAlone(DistributionView& view, int point) {
  view.single = point;
  view.reading.reset();
  return Change(view);
}

LRESULT Read(DistributionView& view, int point, std::optional<CellPlace> place) {
  if (view.reading == place && view.readPoint == point) return 0;
  view.reading = place;
  view.readPoint = point;
  return Change(view);
}

// The cursor begins at the mean.
LRESULT MoveCursor(DistributionView& view, LONG columns, LONG rows) {
  const int point = view.single;
  if (point == kAll || view.points[point].figures.count == 0) return 0;
  const GridFigures& figures = view.points[point].figures;
  CellPlace place{std::lround(camera::Mean(figures.x, figures.count)),
                  IsScatter(view) ? std::lround(camera::Mean(figures.y, figures.count)) : 0};
  if (view.reading) place = *view.reading;
  if (view.reading || std::abs(columns) == kFar) {
    const LONG bin = BinOf(view, point);
    place.x += columns * bin;
    place.y += rows * bin;
  }
  view.isByKey = true;
  GetCursorPos(&view.pointer);
  place.x = std::clamp(place.x, figures.x.lowest, figures.x.highest);
  place.y = std::clamp(place.y, figures.y.lowest, figures.y.highest);
  return Read(view, point, place);
}

LRESULT OnKey(DistributionView& view, WPARAM key) {
  if (key == 'C' && GetKeyState(VK_CONTROL) < 0) return OnCopy(view, 0);
  const WPARAM digit = key >= VK_NUMPAD0 && key <= VK_NUMPAD9 ? key - VK_NUMPAD0 + '0' : key;
  if (digit >= '0' && digit <= '0' + kv::kPointCount) return ShowAlone(view, static_cast<int>(digit - '1'));
  switch (key) {
    case VK_ESCAPE: return view.reading ? Read(view, view.readPoint, std::nullopt) : ShowAlone(view, kAll);
    case VK_LEFT: return MoveCursor(view, -1, 0);
    case VK_RIGHT: return MoveCursor(view, 1, 0);
    case VK_UP: return MoveCursor(view, 0, -1);
    case VK_DOWN: return MoveCursor(view, 0, 1);
    case VK_HOME: return MoveCursor(view, -kFar, 0);
    case VK_END: return MoveCursor(view, kFar, 0);
    default: return 0;
  }
}

int PointAt(const DistributionView& view, POINT pixel) {
  const SIZE size = kv::ClientSize(view.window);
  for (int point = 0; point < kv::kPointCount; ++point) {
    const RECT area = PanelArea(view, size, point);
    if (IsShown(view, point) && PtInRect(&area, pixel)) return point;
  }
  return kAll;
}

LRESULT OnMouseMove(DistributionView& view, POINT pixel) {
  if (!view.isTracking) {
    TRACKMOUSEEVENT leave{.cbSize = sizeof(leave), .dwFlags = TME_LEAVE, .hwndTrack = view.window};
    view.isTracking = TrackMouseEvent(&leave) != 0;
  }
  // The system also sends this message when a window moves below the pointer.
  POINT place = pixel;
  ClientToScreen(view.window, &place);
  if (view.isByKey && place.x == view.pointer.x && place.y == view.pointer.y) return 0;
  view.isByKey = false;
  const int point = PointAt(view, pixel);
  if (point == kAll) return Read(view, view.readPoint, std::nullopt);
  return Read(view, point, PlaceAt(LayoutOf(view, kv::ClientSize(view.window), point), pixel));
}

LRESULT OnMouseLeave(DistributionView& view) {
  view.isTracking = false;
  return view.isByKey ? 0 : Read(view, view.readPoint, std::nullopt);
}

LRESULT OnDoubleClick(DistributionView& view, POINT pixel) {
  const int point = PointAt(view, pixel);
  return point == kAll ? 0 : ShowAlone(view, view.single == kAll ? point : kAll);
}

// The dialog gets Escape unless there is something to leave.
LRESULT DialogKeys(const DistributionView& view, WPARAM key) {
  const bool isOwn = key == VK_ESCAPE && (view.reading || view.single != kAll);
  return DLGC_WANTARROWS | DLGC_WANTCHARS | (isOwn ? DLGC_WANTMESSAGE : 0);
}

kv::AccessibleText Describe(const DistributionView& view) {
  const bool isRead = view.reading && view.points[view.readPoint].figures.count > 0;
  return {kv::WindowText(view.window),
          isRead ? ReadingText(view, *view.reading, BinOf(view, view.readPoint)) : FiguresText(view)};
}

LRESULT HandleMessage(DistributionView& view, UINT message, WPARAM wParam, LPARAM lParam) {
  const POINT pixel{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};  // of the mouse's messages
  switch (message) {
    case WM_SIZE:
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_SYSCOLORCHANGE: return Repaint(view);
    case WM_PAINT: return OnPaint(view.window);
    case WM_GETDLGCODE: return DialogKeys(view, wParam);
    case WM_LBUTTONDOWN: SetFocus(view.window); return 0;
    case WM_LBUTTONDBLCLK: return OnDoubleClick(view, pixel);
    case WM_MOUSEMOVE: return OnMouseMove(view, pixel);
    case WM_MOUSELEAVE: return OnMouseLeave(view);
    case WM_KEYDOWN: return OnKey(view, wParam);
    case WM_COPY: return OnCopy(view, lParam);
    case WM_PRINTCLIENT: ShowOn(view, reinterpret_cast<HDC>(wParam)); return 0;
    case kv::kControlCommand: return OnCommand(view, wParam, lParam);
    default: return DefWindowProcA(view.window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterDistributionClass(HINSTANCE instance, BOOL registerIt) {
  return kv::RegisterControlClass(instance, kDistributionClass,
                                  kv::ObjectProcedure<DistributionView, ROLE_SYSTEM_CHART, Describe, HandleMessage>,
                                  registerIt);
}

}  // namespace camview
