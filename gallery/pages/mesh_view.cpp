#include "gallery/pages/mesh_view.h"

#include <oleacc.h>
#include <windowsx.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ratio>

#include "gallery/pages/multirotor.h"
#include "gallery/pages/simulated_flight.h"
#include "gallery/pages/triangle_raster.h"
#include "kv/framework/accessible.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/control_class.h"
#include "kv/framework/coverage.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/object_control.h"
#include "kv/framework/painting.h"
#include "kv/views3d/mesh_model.h"

namespace gallery {

namespace {

constexpr UINT_PTR kMotionTimer = 1;
constexpr UINT kMotionMs = 20;
constexpr int kOversampling = 2;
constexpr double kTurnPerFrame = 0.3, kDegreesPerPixel = 0.5, kDegreesPerKey = 5;
constexpr double kZoomPerStep = 1.1, kMinZoom = 0.4, kMaxZoom = 4;
constexpr double kFirstTurn = 200, kFirstTilt = 28;
// Model units that fill the window; the height is larger when the craft is seen from above or below.
constexpr double kFittingWidth = 530, kFittingHeight = 260, kFittingHeightFromAbove = 500;
constexpr DWORD kSkyTop = 0x0C1018, kSkyBottom = 0x26344A, kGlassTint = 0xB8D4FF;

struct MeshView {
  HWND window;
  Multirotor craft = CreateMultirotor();
  HGLOBAL ground = CreateGround();
  bool dragging = false;
  POINT dragPoint{};
  kv::Surface shown, samples;  // `samples` is twice as wide and high
  MeshViewStatistics statistics{0, 0, 0, kFirstTurn, kFirstTilt, 1};

  explicit MeshView(HWND owner) : window(owner) {}
  ~MeshView() {
    kv::meshDestroy(craft.mesh);
    kv::meshDestroy(ground);
  }
  MeshView(const MeshView&) = delete;
  MeshView& operator=(const MeshView&) = delete;
};

// ---- Drawing --------------------------------------------------------------------------------------------------------

// The vertex after rotation, before perspective.
Vector RotatedPosition(const kv::MeshVertex& vertex, double scale) {
  const double perspective = vertex.depthY / (scale * kv::kMeshEyeDistance) + 1;
  return {vertex.projectedX / perspective, vertex.depthY, vertex.projectedZ / perspective};
}

// Light from the upper left, behind the viewer, and a weak one from below for the shadows.
DWORD ShadedColor(DWORD attributes, const Vector& normal) {
  constexpr Vector kLight{-0.42, 0.60, 0.68}, kHalfWay{-0.235, 0.894, 0.380};
  const double light = 0.30 + 0.85 * std::max(0.0, Dot(normal, kLight)) + 0.12 * std::max(0.0, -normal.z);
  const double gleam = attributes & kPartShiny ? 0.45 * std::pow(std::max(0.0, Dot(normal, kHalfWay)), 28) : 0.0;
  DWORD color = 0;
  for (const int shift : {16, 8, 0}) {
    const double level = std::min((attributes >> shift & 0xFF) * light + 255 * gleam, 255.0);
    color |= static_cast<DWORD>(level) << shift;
  }
  return color;
}

void DrawFacet(const kv::MeshModel& model, const kv::MeshVertex* vertices, const kv::MeshTriangle& triangle,
               const kv::Surface& surface) {
  Vector positions[3];
  kv::PointD corners[3];
  for (int i = 0; i < 3; ++i) {
    const kv::MeshVertex& vertex = vertices[triangle.vertices[i]];
    positions[i] = RotatedPosition(vertex, model.scale);
    corners[i] = {surface.size().cx / 2.0 + vertex.projectedX, surface.size().cy * 0.46 - vertex.projectedZ};
  }
  if (triangle.attributes & kPartGlass) {
    const DWORD level = model.shadeTable[vertices[triangle.vertices[1]].shade] & 0xFF;
    FillTriangle(surface, corners, kGlassTint, level * 200 / 255);
    return;
  }
  // The normal; y points at the viewer.
  const Vector normal = Unit(Cross(positions[1] - positions[0], positions[2] - positions[0]));
  // Triangles that face away or have no area are not drawn.
  if (normal.y > 0) FillTriangle(surface, corners, ShadedColor(triangle.attributes, normal), kOpaque);
}

int DrawMesh(HGLOBAL mesh, const kv::Surface& surface) {
  kv::MeshModel* model = nullptr;
  kv::MeshVertex* vertices = nullptr;
  kv::MeshTriangle* triangles = nullptr;
  if (!kv::meshProject(mesh) || !kv::meshLock(mesh, &model, &vertices, &triangles)) return 0;
  const int count = model->triangleCount;
  for (int i = 0; i < count; ++i) DrawFacet(*model, vertices, triangles[i], surface);
  kv::meshUnlock(model);
  return count;
}

double FittingScale(const MeshView& view) {
  const double fromAbove = std::fabs(std::sin(kv::Radians(view.statistics.tilt)));
  const double height = kFittingHeight + (kFittingHeightFromAbove - kFittingHeight) * fromAbove;
  return view.statistics.zoom * std::min(view.shown.size().cx / kFittingWidth, view.shown.size().cy / height);
}

void Render(MeshView& view) {
  if (!view.samples.bitmap()) return;
  const auto start = std::chrono::steady_clock::now();
  MeshViewStatistics& statistics = view.statistics;
  const double bank = Roll(GetTickCount() / 1000.0);
  for (HGLOBAL mesh : {view.craft.mesh, view.ground}) {
    kv::meshSetView(mesh, FittingScale(view), kOversampling, statistics.turn, statistics.tilt,
                    mesh == view.ground ? 0 : bank, kv::kMeshSetAngleA | kv::kMeshSetAngleB | kv::kMeshSetAngleC);
  }
  GdiFlush();
  FillVertically(view.samples, kSkyTop, kSkyBottom);
  if (statistics.tilt > 0) DrawMesh(view.ground, view.samples);
  statistics.triangles = DrawMesh(view.craft.mesh, view.samples);
  if (statistics.tilt <= 0) DrawMesh(view.ground, view.samples);
  ShrinkByTwo(view.samples, view.shown);
  ++statistics.frames;
  statistics.frameMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// ---- Messages -------------------------------------------------------------------------------------------------------

LRESULT OnSize(MeshView& view) {
  const SIZE size = kv::ClientSize(view.window);
  view.samples.Reset();
  if (view.shown.Create(size)) view.samples.Create({size.cx * kOversampling, size.cy * kOversampling});
  Render(view);
  return 0;
}

LRESULT OnPaint(HWND window) {
  const kv::PaintScope paint(window);
  auto* view = kv::ObjectOf<MeshView>(window);  // erasing may have destroyed the view
  if (!view) return 0;
  const SIZE size = view->shown.size();
  const RECT whole{0, 0, size.cx, size.cy};
  kv::ShowBitmap(paint.dc(), whole, view->shown.bitmap(), size);
  if (GetFocus() == window) kv::DrawRoundedFrame(paint.dc(), whole, 0, 2, GetSysColor(COLOR_HIGHLIGHT));
  return 0;
}

void Turn(MeshView& view, double turn, double tilt) {
  view.statistics.turn = std::fmod(view.statistics.turn + turn, 360);
  view.statistics.tilt = std::clamp(view.statistics.tilt + tilt, -90.0, 90.0);
}

LRESULT OnTimer(MeshView& view) {
  TurnRotors(view.craft);
  if (!view.dragging) Turn(view, kTurnPerFrame, 0);
  Render(view);
  InvalidateRect(view.window, nullptr, FALSE);
  UpdateWindow(view.window);
  return 0;
}

LRESULT OnButtonDown(HWND window, POINT point) {
  SetFocus(window);
  SetCapture(window);
  auto* view = kv::ObjectOf<MeshView>(window);  // the window that lost the focus may have destroyed the view
  if (!view) return 0;
  view->dragging = true;
  view->dragPoint = point;
  return 0;
}

LRESULT Zoom(MeshView& view, double steps) {
  view.statistics.zoom = std::clamp(view.statistics.zoom * std::pow(kZoomPerStep, steps), kMinZoom, kMaxZoom);
  return 0;
}

// The near side follows the arrow. The timer repaints.
LRESULT OnKey(MeshView& view, WPARAM key) {
  switch (key) {
    case VK_LEFT: Turn(view, kDegreesPerKey, 0); break;
    case VK_RIGHT: Turn(view, -kDegreesPerKey, 0); break;
    case VK_UP: Turn(view, 0, -kDegreesPerKey); break;
    case VK_DOWN: Turn(view, 0, kDegreesPerKey); break;
    case VK_ADD:
    case VK_OEM_PLUS: Zoom(view, 1); break;
    case VK_SUBTRACT:
    case VK_OEM_MINUS: Zoom(view, -1); break;
    case VK_HOME:
      view.statistics.turn = kFirstTurn;
      view.statistics.tilt = kFirstTilt;
      view.statistics.zoom = 1;
      break;
    default: break;
  }
  return 0;
}

// The near side follows the mouse. The timer repaints.
LRESULT OnMouseMove(MeshView& view, POINT point) {
  if (!view.dragging) return 0;
  Turn(view, -(point.x - view.dragPoint.x) * kDegreesPerPixel, (point.y - view.dragPoint.y) * kDegreesPerPixel);
  view.dragPoint = point;
  return 0;
}

LRESULT HandleMessage(MeshView& view, UINT message, WPARAM wParam, LPARAM lParam) {
  const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  switch (message) {
    case WM_SIZE: return OnSize(view);
    case WM_PAINT: return OnPaint(view.window);
    case WM_ERASEBKGND: return TRUE;
    case WM_TIMER: return OnTimer(view);
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_KEYDOWN: return OnKey(view, wParam);
    case WM_MOUSEWHEEL: return Zoom(view, static_cast<double>(GET_WHEEL_DELTA_WPARAM(wParam)) / WHEEL_DELTA);
    case WM_SETFOCUS:
    case WM_KILLFOCUS: InvalidateRect(view.window, nullptr, FALSE); return 0;
    case WM_LBUTTONDOWN: return OnButtonDown(view.window, point);
    case WM_MOUSEMOVE: return OnMouseMove(view, point);
    case WM_LBUTTONUP: return ReleaseCapture();
    case WM_CAPTURECHANGED: view.dragging = false; return 0;
    default: return DefWindowProcA(view.window, message, wParam, lParam);
  }
}

kv::AccessibleText Describe(const MeshView& view) {
  return {kv::WindowText(view.window), {}};
}

}  // namespace

BOOL RegisterMeshViewClass(HINSTANCE instance, BOOL registerIt) {
  return kv::RegisterControlClass(instance, kMeshViewClass,
                                  kv::ObjectProcedure<MeshView, ROLE_SYSTEM_GRAPHIC, Describe, HandleMessage>,
                                  registerIt);
}

void RunMeshView(HWND view, BOOL run) {
  if (run) {
    SetTimer(view, kMotionTimer, kMotionMs, nullptr);
  } else {
    KillTimer(view, kMotionTimer);
  }
}

BOOL GetMeshViewStatistics(HWND view, MeshViewStatistics* statistics) {
  const auto* record = kv::ObjectOf<MeshView>(view);
  if (!record || IsBadWritePtr(statistics, sizeof(*statistics))) return FALSE;
  *statistics = record->statistics;
  return TRUE;
}

}  // namespace gallery
