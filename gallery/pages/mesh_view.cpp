#include "gallery/pages/mesh_view.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/numbers.h"
#include "framework/painting.h"
#include "framework/picture.h"
#include "framework/records.h"
#include "gallery/pages/multirotor.h"
#include "gallery/pages/triangle_raster.h"
#include "views3d/mesh_model.h"

namespace gallery {

namespace {

constexpr UINT_PTR kMotionTimer = 1;
constexpr UINT kMotionMs = 33;
constexpr int kOversampling = 2;
constexpr double kTurnPerPicture = 0.5, kDegreesPerPixel = 0.5, kDegreesPerKey = 5, kBankDegrees = 5;
constexpr double kZoomPerStep = 1.1, kSmallestZoom = 0.4, kLargestZoom = 4;
constexpr double kFirstTurn = 200, kFirstTilt = 28;
// Model units that fill the window; its height takes in more when the craft is seen from above or below.
constexpr double kFittingWidth = 530, kFittingHeight = 260, kFittingHeightFromAbove = 500;
constexpr std::uint32_t kSkyTop = 0x0C1018, kSkyBottom = 0x26344A, kGlassTint = 0xB8D4FF;

struct MeshView {
  HGLOBAL hMemory;
  Multirotor craft;
  HGLOBAL ground;
  double turn, tilt;  // degrees
  double zoom;        // 1 fills the window
  BOOL dragging;
  POINT dragPoint;
  HBITMAP picture;
  SIZE size;
  Raster shown;    // the picture's pixels
  Raster samples;  // twice as wide and high; owned
  MeshViewFigures figures;
};

// ---- Shading -------------------------------------------------------------------------------------------------------

struct Vector {
  double x, y, z;
};

// Where the vertex stands after turning, before perspective.
Vector TurnedPlace(const kv::MeshVertex& vertex, double scale) {
  const double perspective = vertex.depthY / (scale * kv::kMeshEyeDistance) + 1;
  return {vertex.projectedX / perspective, vertex.depthY, vertex.projectedZ / perspective};
}

// The direction that a facet faces, of length 1; y points at the eye. All 0 for a facet without area.
Vector FacetNormal(const Vector& a, const Vector& b, const Vector& c) {
  const Vector u{b.x - a.x, b.y - a.y, b.z - a.z}, v{c.x - a.x, c.y - a.y, c.z - a.z};
  const Vector n{u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  return length > 0 ? Vector{n.x / length, n.y / length, n.z / length} : Vector{};
}

std::uint32_t Channel(std::uint32_t color, int shift, double light, double gleam) {
  return static_cast<std::uint32_t>(std::clamp((color >> shift & 0xFF) * light + 255 * gleam, 0.0, 255.0)) << shift;
}

// Light from the upper left, behind the eye; a weak one from below keeps the shadows alive.
std::uint32_t ShadedColor(std::uint32_t attributes, const Vector& normal) {
  constexpr Vector kLight{-0.42, 0.60, 0.68}, kHalfWay{-0.235, 0.894, 0.380};
  const double lit = std::max(0.0, normal.x * kLight.x + normal.y * kLight.y + normal.z * kLight.z);
  const double facing = std::max(0.0, normal.x * kHalfWay.x + normal.y * kHalfWay.y + normal.z * kHalfWay.z);
  const double light = 0.30 + 0.85 * lit + 0.12 * std::max(0.0, -normal.z);
  const double gleam = attributes & kPartShiny ? 0.45 * std::pow(facing, 28) : 0.0;
  return Channel(attributes, 16, light, gleam) | Channel(attributes, 8, light, gleam) |
         Channel(attributes, 0, light, gleam);
}

// ---- Drawing -------------------------------------------------------------------------------------------------------

RasterPoint OnRaster(const kv::MeshVertex& vertex, const Raster& raster) {
  return {raster.width / 2.0 + vertex.projectedX, raster.height * 0.46 - vertex.projectedZ};
}

void DrawFacet(const kv::MeshModel& model, const kv::MeshVertex* vertices, const kv::MeshTriangle& triangle,
               const Raster& raster) {
  const kv::MeshVertex& a = vertices[triangle.vertices[0]];
  const kv::MeshVertex& b = vertices[triangle.vertices[1]];
  const kv::MeshVertex& c = vertices[triangle.vertices[2]];
  const RasterPoint corners[3] = {OnRaster(a, raster), OnRaster(b, raster), OnRaster(c, raster)};
  if (triangle.attributes & kPartGlass) {
    const std::uint32_t level = model.shadeTable[b.shade] & 0xFF;
    FillTriangle(raster, corners, kGlassTint, static_cast<int>(level * 200 / 255));
    return;
  }
  const Vector normal =
      FacetNormal(TurnedPlace(a, model.scale), TurnedPlace(b, model.scale), TurnedPlace(c, model.scale));
  if (normal.y <= 0) return;  // faces away, or has no area
  FillTriangle(raster, corners, ShadedColor(triangle.attributes, normal), kOpaque);
}

int DrawMesh(HGLOBAL mesh, const Raster& raster) {
  kv::MeshModel* model = nullptr;
  kv::MeshVertex* vertices = nullptr;
  kv::MeshTriangle* triangles = nullptr;
  if (!kv::meshProject(mesh) || !kv::meshLock(mesh, &model, &vertices, &triangles)) return 0;
  const int count = model->triangleCount;
  for (int i = 0; i < count; ++i) DrawFacet(*model, vertices, triangles[i], raster);
  kv::meshUnlock(model);
  return count;
}

double FittingScale(const MeshView& view) {
  const double fromAbove = std::fabs(std::sin(kv::Radians(view.tilt)));
  const double height = kFittingHeight + (kFittingHeightFromAbove - kFittingHeight) * fromAbove;
  return view.zoom * std::min(view.size.cx / kFittingWidth, view.size.cy / height);
}

void Render(MeshView* view) {
  if (!view->picture) return;
  LARGE_INTEGER start{}, end{}, frequency{};
  QueryPerformanceCounter(&start);
  const double fit = FittingScale(*view);
  const double bank = kBankDegrees * std::sin(view->figures.pictures * 0.03);
  for (HGLOBAL mesh : {view->craft.mesh, view->ground}) {
    const double ownBank = mesh == view->ground ? 0 : bank;
    kv::meshSetView(mesh, fit, kOversampling, view->turn, view->tilt, ownBank,
                    kv::kMeshSetAngleA | kv::kMeshSetAngleB | kv::kMeshSetAngleC);
  }
  GdiFlush();
  FillVertically(view->samples, kSkyTop, kSkyBottom);
  if (view->tilt > 0) DrawMesh(view->ground, view->samples);
  view->figures.triangles = DrawMesh(view->craft.mesh, view->samples);
  if (view->tilt <= 0) DrawMesh(view->ground, view->samples);
  ShrinkByTwo(view->samples, view->shown);
  ++view->figures.pictures;
  QueryPerformanceCounter(&end);
  QueryPerformanceFrequency(&frequency);
  view->figures.pictureMs =
      static_cast<double>(end.QuadPart - start.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

// ---- Messages ------------------------------------------------------------------------------------------------------

void DropPicture(MeshView* view) {
  if (view->picture) DeleteObject(view->picture);
  delete[] view->samples.pixels;
  view->picture = nullptr;
  view->samples.pixels = nullptr;
}

void Reset(MeshView* view) {
  view->turn = kFirstTurn;
  view->tilt = kFirstTilt;
  view->zoom = 1;
}

LRESULT OnCreate(HWND window) {
  auto* view = kv::CreateWindowRecord<MeshView>(window);
  if (!view) return -1;
  view->craft = CreateMultirotor();
  view->ground = CreateGround();
  Reset(view);
  return 0;
}

LRESULT OnDestroy(HWND window, MeshView* view) {
  DropPicture(view);
  kv::meshDestroy(view->craft.mesh);
  kv::meshDestroy(view->ground);
  kv::DestroyWindowRecord(window, view);
  return 0;
}

LRESULT OnSize(HWND window, MeshView* view) {
  DropPicture(view);
  view->size = kv::ClientSize(window);
  const int width = view->size.cx, height = view->size.cy;
  if (width <= 0 || height <= 0) return 0;
  const BITMAPINFO info = kv::TopDownBitmapInfo(width, height);
  const kv::WindowDc dc(window);
  void* pixels = nullptr;
  view->picture = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  if (!view->picture) return 0;
  view->shown = {static_cast<std::uint32_t*>(pixels), width, height};
  const int sampleWidth = width * kOversampling, sampleHeight = height * kOversampling;
  view->samples = {new std::uint32_t[static_cast<size_t>(sampleWidth) * sampleHeight], sampleWidth, sampleHeight};
  Render(view);
  return 0;
}

LRESULT OnPaint(HWND window, const MeshView* view) {
  const kv::PaintScope paint(window);
  if (!view->picture) return 0;
  const RECT whole{0, 0, view->size.cx, view->size.cy};
  kv::ShowBitmap(paint.dc(), whole, view->picture, view->size);
  if (GetFocus() == window) kv::DrawRoundedFrame(paint.dc(), whole, 0, 2, GetSysColor(COLOR_HIGHLIGHT));
  return 0;
}

void ShowNext(HWND window, MeshView* view) {
  Render(view);
  InvalidateRect(window, nullptr, FALSE);
  UpdateWindow(window);
}

LRESULT OnTimer(HWND window, MeshView* view) {
  TurnRotors(view->craft);
  if (!view->dragging) view->turn = std::fmod(view->turn + kTurnPerPicture, 360);
  ShowNext(window, view);
  return 0;
}

LRESULT OnButtonDown(HWND window, MeshView* view, POINT point) {
  SetFocus(window);
  SetCapture(window);
  view->dragging = TRUE;
  view->dragPoint = point;
  return 0;
}

void Turn(MeshView* view, double turn, double tilt) {
  view->turn = std::fmod(view->turn + turn, 360);
  view->tilt = std::clamp(view->tilt + tilt, -90.0, 90.0);
}

void Zoom(MeshView* view, double steps) {
  view->zoom = std::clamp(view->zoom * std::pow(kZoomPerStep, steps), kSmallestZoom, kLargestZoom);
}

// The near side follows the arrow. The timer shows it.
LRESULT OnKey(MeshView* view, WPARAM key) {
  switch (key) {
    case VK_LEFT: Turn(view, kDegreesPerKey, 0); break;
    case VK_RIGHT: Turn(view, -kDegreesPerKey, 0); break;
    case VK_UP: Turn(view, 0, -kDegreesPerKey); break;
    case VK_DOWN: Turn(view, 0, kDegreesPerKey); break;
    case VK_ADD:
    case VK_OEM_PLUS: Zoom(view, 1); break;
    case VK_SUBTRACT:
    case VK_OEM_MINUS: Zoom(view, -1); break;
    case VK_HOME: Reset(view); break;
    default: break;
  }
  return 0;
}

LRESULT OnWheel(MeshView* view, int delta) {
  Zoom(view, static_cast<double>(delta) / WHEEL_DELTA);
  return 0;
}

LRESULT OnFocusChanged(HWND window) {
  InvalidateRect(window, nullptr, FALSE);
  return 0;
}

// The near side follows the mouse. The timer shows it.
LRESULT OnMouseMove(MeshView* view, POINT point) {
  if (!view->dragging) return 0;
  Turn(view, -(point.x - view->dragPoint.x) * kDegreesPerPixel, (point.y - view->dragPoint.y) * kDegreesPerPixel);
  view->dragPoint = point;
  return 0;
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CREATE) return OnCreate(window);
  auto* view = kv::WindowRecord<MeshView>(window);
  if (!view) return DefWindowProcA(window, message, wParam, lParam);
  const POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  switch (message) {
    case WM_DESTROY: return OnDestroy(window, view);
    case WM_SIZE: return OnSize(window, view);
    case WM_PAINT: return OnPaint(window, view);
    case WM_ERASEBKGND: return TRUE;
    case WM_TIMER: return OnTimer(window, view);
    case WM_GETDLGCODE: return DLGC_WANTARROWS;
    case WM_KEYDOWN: return OnKey(view, wParam);
    case WM_MOUSEWHEEL: return OnWheel(view, GET_WHEEL_DELTA_WPARAM(wParam));
    case WM_SETFOCUS:
    case WM_KILLFOCUS: return OnFocusChanged(window);
    case WM_LBUTTONDOWN: return OnButtonDown(window, view, point);
    case WM_MOUSEMOVE: return OnMouseMove(view, point);
    case WM_LBUTTONUP: return ReleaseCapture();
    case WM_CAPTURECHANGED: view->dragging = FALSE; return 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
  }
}

}  // namespace

BOOL RegisterMeshViewClass(HINSTANCE instance, BOOL registerIt) {
  return kv::RegisterControlClass(instance, kMeshViewClass, Procedure, registerIt);
}

void RunMeshView(HWND view, BOOL run) {
  if (run) {
    SetTimer(view, kMotionTimer, kMotionMs, nullptr);
  } else {
    KillTimer(view, kMotionTimer);
  }
}

BOOL GetMeshViewFigures(HWND view, MeshViewFigures* figures) {
  const auto* record = kv::WindowRecord<MeshView>(view);
  if (!record || IsBadWritePtr(figures, sizeof(*figures))) return FALSE;
  *figures = record->figures;
  figures->turn = record->turn;
  figures->tilt = record->tilt;
  figures->zoom = record->zoom;
  return TRUE;
}

}  // namespace gallery
