#include "camview/camera_field.h"

#include <oleacc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "camera/camera_record.h"
#include "camera/record_stream.h"
#include "camview/record_store.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/object_control.h"
#include "kv/framework/painting.h"
#include "kv/framework/window_state.h"
#include "kv/toolkit/appearance.h"

namespace camview {

namespace {

constexpr int kFadeSteps = 12;
constexpr int kMinCopySize = 64, kMaxCopySize = 5120;
constexpr COLORREF kPointColors[kv::kPointCount] = {RGB(255, 60, 40), RGB(50, 132, 255), RGB(255, 236, 60),
                                                    RGB(116, 255, 198)};

struct Field {
  HWND window;
  std::vector<StoredRecord> records;
  double now = 0, trailSeconds = 0;
  bool isDirty = true, isFocused = false;
  kv::Surface surface;
  kv::CoverageShape shape;
  kv::MemoryDc dc{nullptr};
};

// ---- Layout ---------------------------------------------------------------------------------------------------------

struct FieldLayout {
  RECT frame;  // of one pixel, around the field
  double unitPx, left, top;
  double markerPx;  // from a marker's center to its edge
  int fontPx;
};

FieldLayout LayoutField(SIZE size) {
  constexpr double kWidth = kv::kFieldWidth, kHeight = kv::kFieldHeight;
  FieldLayout layout{};
  layout.unitPx = std::max(0.0, std::min((size.cx - 2) / kWidth, (size.cy - 2) / kHeight));
  const LONG width = static_cast<LONG>(kWidth * layout.unitPx), height = static_cast<LONG>(kHeight * layout.unitPx);
  const LONG left = (size.cx - width) / 2, top = (size.cy - height) / 2;
  layout.frame = {left - 1, top - 1, left + width + 1, top + height + 1};
  layout.left = left;
  layout.top = top;
  layout.markerPx = std::clamp(height / 48.0, 4.0, 24.0);
  layout.fontPx = std::clamp(static_cast<int>(height / 22), 11, 40);
  return layout;
}

// The middle of a camera unit.
kv::PointD PositionOf(const FieldLayout& layout, const kv::CameraPoint& point) {
  return {layout.left + (point.x + 0.5) * layout.unitPx, layout.top + (point.y + 0.5) * layout.unitPx};
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

struct FieldColors {
  COLORREF around, field, frame, grid, center;
  std::array<COLORREF, kv::kPointCount> points;
};

FieldColors ColorsOfField() {
  const bool contrast = kv::IsHighContrast();
  FieldColors colors{};
  colors.field = contrast ? GetSysColor(COLOR_WINDOW) : RGB(0, 0, 0);
  const COLORREF ink = contrast ? GetSysColor(COLOR_WINDOWTEXT) : RGB(255, 255, 255);
  colors.around = contrast ? colors.field : kv::MixColors(colors.field, ink, 20);
  colors.frame = contrast ? ink : GetSysColor(COLOR_BTNSHADOW);
  colors.grid = kv::MixColors(colors.field, ink, contrast ? 30 : 13);
  colors.center = contrast ? colors.field : ink;
  for (int i = 0; i < kv::kPointCount; ++i) colors.points[i] = contrast ? ink : kPointColors[i];
  return colors;
}

void DrawFace(kv::Canvas& canvas, const FieldLayout& layout, const FieldColors& colors) {
  const SIZE size = canvas.surface().size();
  const RECT& frame = layout.frame;
  const RECT inner{frame.left + 1, frame.top + 1, frame.right - 1, frame.bottom - 1};
  // A frame around the whole control, so that it is flush with its neighbors whatever its shape.
  kv::FillArea(canvas, {0, 0, size.cx, size.cy}, colors.frame);
  kv::FillArea(canvas, {1, 1, size.cx - 1, size.cy - 1}, colors.around);
  kv::FillArea(canvas, frame, colors.frame);
  kv::FillArea(canvas, inner, colors.field);
  for (int i = 1; i < 4; ++i) {
    const LONG x = inner.left + (inner.right - inner.left) * i / 4, y = inner.top + (inner.bottom - inner.top) * i / 4;
    kv::FillArea(canvas, {x, inner.top, x + 1, inner.bottom}, colors.grid);
    kv::FillArea(canvas, {inner.left, y, inner.right, y + 1}, colors.grid);
  }
  canvas.ClipTo(inner);
}

// Fades to the color of the field with age: step 0 is the newest.
COLORREF TrailColor(const FieldColors& colors, int point, int step) {
  return kv::MixColors(colors.points[point], colors.field, 78 * step / kFadeSteps);
}

void DrawTrail(kv::Canvas& canvas, const Field& field, const FieldLayout& layout, const FieldColors& colors,
               int point) {
  const double width = std::max(1.6, layout.markerPx / 4);
  constexpr double kMinMove = 0.7;  // pixels
  const StoredRecord* from = nullptr;
  int step = -1;
  kv::BeginShape(canvas);
  for (const StoredRecord& record : field.records) {
    const double age = field.now - record.seconds;
    if (!(age <= field.trailSeconds)) continue;
    if (!camera::IsSeen(record.points[point])) {
      from = nullptr;
      continue;
    }
    const kv::PointD place = PositionOf(layout, record.points[point]);
    if (!from) {
      from = &record;
      continue;
    }
    const kv::PointD before = PositionOf(layout, from->points[point]);
    if (std::hypot(place.x - before.x, place.y - before.y) < kMinMove) continue;
    const int own = std::clamp(kv::ToInt(age / field.trailSeconds * kFadeSteps), 0, kFadeSteps - 1);
    constexpr size_t kCornersOfLine = 4;
    if (own != step || !canvas.shape().HasCapacityFor(kCornersOfLine)) {
      if (step >= 0) kv::FillShape(canvas, TrailColor(colors, point, step));
      kv::BeginShape(canvas);
      step = own;
    }
    kv::AddLine(canvas, before, place, width);
    from = &record;
  }
  if (step >= 0) kv::FillShape(canvas, TrailColor(colors, point, step));
}

// Circle, square, diamond and triangle, like Tarnwick's icons.
void DrawMarker(kv::Canvas& canvas, const FieldColors& colors, int point, kv::PointD at, double radius) {
  const COLORREF color = colors.points[point];
  const double r = radius;
  switch (point) {
    case 0: kv::FillDisc(canvas, at, r, color); break;
    case 1: {
      const double h = r * 0.86;
      kv::FillPolygon(canvas,
                      std::array<kv::PointD, 4>{
                          {{at.x - h, at.y - h}, {at.x + h, at.y - h}, {at.x + h, at.y + h}, {at.x - h, at.y + h}}},
                      color);
      break;
    }
    case 2:
      kv::FillPolygon(
          canvas,
          std::array<kv::PointD, 4>{
              {{at.x, at.y - r * 1.35}, {at.x + r * 1.2, at.y}, {at.x, at.y + r * 1.35}, {at.x - r * 1.2, at.y}}},
          color);
      break;
    default:
      kv::FillPolygon(canvas,
                      std::array<kv::PointD, 3>{
                          {{at.x - r * 1.35, at.y - r}, {at.x + r * 1.35, at.y - r}, {at.x, at.y + r * 1.35}}},
                      color);
  }
  kv::FillDisc(canvas, at, r * 0.34, colors.center);
}

// Below and to the right of the marker; at the edges of the field, above or to the left.
void DrawNumber(kv::Canvas& canvas, const FieldLayout& layout, int point, kv::PointD at, COLORREF color) {
  const std::wstring text(1, static_cast<wchar_t>(L'1' + point));
  SIZE size{};
  GetTextExtentPoint32W(canvas.dc(), text.c_str(), 1, &size);
  const double gap = layout.markerPx * 1.2;
  double x = at.x + gap, y = at.y + gap * 0.4;
  if (x + size.cx > layout.frame.right - 1) x = at.x - gap - size.cx;
  if (y + size.cy > layout.frame.bottom - 1) y = at.y - gap * 0.4 - size.cy;
  SetTextColor(canvas.dc(), color);
  TextOutW(canvas.dc(), static_cast<int>(x), static_cast<int>(y), text.c_str(), 1);
}

void Render(const Field& field, kv::Canvas& canvas) {
  const FieldLayout layout = LayoutField(canvas.surface().size());
  const FieldColors colors = ColorsOfField();
  DrawFace(canvas, layout, colors);
  if (field.records.empty()) return;
  for (int i = 0; field.trailSeconds > 0 && i < kv::kPointCount; ++i) DrawTrail(canvas, field, layout, colors, i);
  const StoredRecord& shown = field.records.back();
  for (int i = 0; i < kv::kPointCount; ++i) {
    if (camera::IsSeen(shown.points[i]))
      DrawMarker(canvas, colors, i, PositionOf(layout, shown.points[i]), layout.markerPx);
  }
  const kv::OwnedFont font = kv::MakeFont(-layout.fontPx, FW_BOLD);
  const kv::SelectedObject selected(canvas.dc(), font);
  SetBkMode(canvas.dc(), TRANSPARENT);
  for (int i = 0; i < kv::kPointCount; ++i) {
    if (camera::IsSeen(shown.points[i]))
      DrawNumber(canvas, layout, i, PositionOf(layout, shown.points[i]), colors.points[i]);
  }
}

// Updates the back buffer. Returns false without one.
bool Update(Field& field) {
  if (field.surface.Resize(kv::ClientSize(field.window))) field.isDirty = true;
  if (!field.surface.bitmap()) return false;
  if (field.isDirty) {
    kv::Canvas canvas(field.dc, field.surface, field.shape);
    Render(field, canvas);
  }
  field.isDirty = false;
  return true;
}

void ShowOn(Field& field, HDC dc, bool isFocused) {
  if (!Update(field)) return;
  field.surface.Show(dc, field.dc);
  const RECT frame = LayoutField(field.surface.size()).frame;
  if (isFocused) kv::DrawFocusFrame(dc, {frame.left + 2, frame.top + 2, frame.right - 2, frame.bottom - 2});
}

// ---- Message handlers -----------------------------------------------------------------------------------------------

LRESULT OnPaint(HWND window) {
  const kv::PaintScope paint(window);
  auto* field = kv::ObjectOf<Field>(window);  // erasing may have destroyed the control
  if (field) ShowOn(*field, paint.dc(), field->isFocused);
  return 0;
}

LRESULT Repaint(Field& field) {
  field.isDirty = true;
  InvalidateRect(field.window, nullptr, FALSE);
  return 0;
}

LRESULT OnCommand(Field& field, WPARAM wParam, LPARAM lParam) {
  if (LOBYTE(wParam) != kFieldShow) return FALSE;
  FieldContent content;
  if (!kv::CopyItemIn(lParam, &content) || content.count > kFieldMaxRecords || !std::isfinite(content.now) ||
      !(content.trailSeconds >= 0) ||
      (content.count && IsBadReadPtr(content.records, content.count * sizeof(StoredRecord)))) {
    return FALSE;
  }
  field.records.assign(content.records, content.records + content.count);
  for (StoredRecord& record : field.records) {
    // Records with invalid numbers may contain any number.
    for (kv::CameraPoint& point : record.points) {
      point = {std::clamp<LONG>(point.x, 0, kv::kNoPoint), std::clamp<LONG>(point.y, 0, kv::kNoPoint)};
    }
  }
  field.now = content.now;
  field.trailSeconds = content.trailSeconds;
  field.isDirty = true;
  if (wParam & kv::kCommandRedraw) {
    // Not by WM_PAINT, which takes several calls into the system.
    ShowOn(field, kv::WindowDc(field.window), field.isFocused);
  } else {
    Repaint(field);
  }
  kv::NotifyValueChanged(field.window);  // last: a hook may destroy the control
  return TRUE;
}

LRESULT OnCopy(const Field& field, LPARAM requested) {
  const SIZE size = kv::RequestedCopySize(requested, kv::ClientSize(field.window), kMinCopySize, kMaxCopySize);
  kv::Surface surface;
  const std::unique_ptr<kv::CoverageShape> shape(new (std::nothrow) kv::CoverageShape);
  if (!shape || !surface.Create(size)) return 0;
  {
    kv::Canvas canvas(field.dc, surface, *shape);
    Render(field, canvas);
  }
  kv::CopyBitmapToClipboard(field.window, surface.bitmap(), size, size);
  return 0;
}

kv::AccessibleText Describe(const Field& field) {
  kv::AccessibleText text{kv::WindowText(field.window), {}};
  if (field.records.empty()) return text;
  for (int i = 0; i < kv::kPointCount; ++i) {
    const kv::CameraPoint& point = field.records.back().points[i];
    if (!camera::IsSeen(point)) continue;
    if (!text.value.empty()) text.value += L"; ";
    text.value += std::to_wstring(i + 1) + L": " + std::to_wstring(point.x) + L", " + std::to_wstring(point.y);
  }
  return text;
}

LRESULT HandleMessage(Field& field, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SETFOCUS:
    case WM_KILLFOCUS: field.isFocused = message == WM_SETFOCUS; return Repaint(field);
    case WM_SIZE:
    case WM_SYSCOLORCHANGE: return Repaint(field);
    case WM_PAINT: return OnPaint(field.window);
    case WM_GETDLGCODE: return DLGC_WANTCHARS;
    case WM_LBUTTONDOWN: SetFocus(field.window); return 0;
    case WM_KEYDOWN: return wParam == 'C' && GetKeyState(VK_CONTROL) < 0 ? OnCopy(field, 0) : 0;
    case WM_COPY: return OnCopy(field, lParam);
    case WM_PRINTCLIENT: ShowOn(field, reinterpret_cast<HDC>(wParam), false); return 0;
    case kv::kControlCommand: return OnCommand(field, wParam, lParam);
    default: return DefWindowProcA(field.window, message, wParam, lParam);
  }
}

}  // namespace

COLORREF PointColor(int point) {
  return kPointColors[point];
}

BOOL RegisterCameraFieldClass(HINSTANCE instance, BOOL registerIt) {
  return kv::RegisterControlClass(instance, kCameraFieldClass,
                                  kv::ObjectProcedure<Field, ROLE_SYSTEM_CHART, Describe, HandleMessage>, registerIt);
}

}  // namespace camview
