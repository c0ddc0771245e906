#include "gallery/pages.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "gallery/pages/simulated_flight.h"
#include "gallery/resource_ids.h"
#include "kv/export/flight_track.h"
#include "kv/export/kml_export.h"
#include "kv/framework/bitmaps.h"
#include "kv/framework/canvas.h"
#include "kv/framework/coverage.h"
#include "kv/framework/file_path.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/framework/painting.h"
#include "kv/framework/shell_launch.h"
#include "kv/toolkit/appearance.h"
#include "kv/toolkit/empty_text.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/pages.h"
#include "kv/toolkit/scaled_dialog.h"
#include "kv/toolkit/track_files.h"

namespace gallery {

namespace {

constexpr COLORREF kPathColor = RGB(0x20, 0x68, 0xC8);
constexpr int kTintPercent = 18;  // of the path's color, in the area below the altitude curve
constexpr size_t kShownBytes = 8000;

constexpr double kLatitude = 54.4609, kLongitude = -3.0886;  // the start

// There is one page and one flight.
std::vector<kv::FlightTrackPoint> points;
int flightNumber = 0;
std::wstring shownFile;  // written last; empty if none

// ---- The sample flight ----------------------------------------------------------------------------------------------

// Two minutes of the simulated flight, each time from a later start.
void Fly() {
  constexpr double kSeconds = 122, kStep = 0.5, kMetersPerSecondOfAKnot = 1852.0 / 3600, kMetersPerFoot = 0.3048;
  const double begin = flightNumber * 29.0;
  kv::FlightTrackPoint at{.bKind = kv::kPointLocal};
  points.clear();
  for (double t = begin; t <= begin + kSeconds; t += kStep) {
    at.dAltitude = Altitude(t) * kMetersPerFoot;
    points.push_back(at);
    const double meters = Airspeed(t) * kMetersPerSecondOfAKnot * kStep, course = kv::Radians(Heading(t));
    at.dX += meters * std::sin(course);
    at.dY -= meters * std::cos(course);  // y points south
  }
}

kv::FlightTrack Track() {
  return kv::MakeFlightTrack(kLatitude, kLongitude, points);
}

// ---- The plan -------------------------------------------------------------------------------------------------------

// A line through points that at(i) returns (x to the right, y upwards, in any unit), scaled to the area and centered.
template <class At>
std::vector<kv::PointD> CurveIn(const RECT& area, int count, bool sameScale, At at) {
  double left = at(0).first, right = left, bottom = at(0).second, top = bottom;
  for (int i = 1; i < count; ++i) {
    const auto [x, y] = at(i);
    left = std::min(left, x), right = std::max(right, x), bottom = std::min(bottom, y), top = std::max(top, y);
  }
  double xScale = (area.right - area.left) / std::max(right - left, 1.0);
  double yScale = (area.bottom - area.top) / std::max(top - bottom, 1.0);
  if (sameScale) xScale = yScale = std::min(xScale, yScale);
  const double marginX = (area.right - area.left - (right - left) * xScale) / 2;
  const double marginY = (area.bottom - area.top - (top - bottom) * yScale) / 2;
  std::vector<kv::PointD> curve;
  for (int i = 0; i < count; ++i) {
    const auto [x, y] = at(i);
    curve.push_back({area.left + marginX + (x - left) * xScale, area.bottom - marginY - (y - bottom) * yScale});
  }
  return curve;
}

void DrawCurve(kv::Canvas& canvas, const std::vector<kv::PointD>& curve, double width, COLORREF color) {
  kv::BeginShape(canvas);
  for (size_t i = 1; i < curve.size(); ++i) kv::AddLine(canvas, curve[i - 1], curve[i], width);
  kv::FillShape(canvas, color);
}

void DrawLabel(kv::Canvas& canvas, const std::wstring& text, RECT area) {
  SetTextColor(canvas.dc(), GetSysColor(COLOR_WINDOWTEXT));
  kv::DrawFitted(canvas.dc(), text, area, DT_SINGLELINE | (kv::IsRightToLeft() ? DT_RIGHT : DT_LEFT));
}

std::wstring AltitudeText() {
  const auto [lowest, highest] = std::ranges::minmax(points, {}, &kv::FlightTrackPoint::dAltitude);
  return kv::TextWith(IDS_FLIGHT_ALTITUDE, kv::NumberText(lowest.dAltitude), kv::NumberText(highest.dAltitude));
}

// Draws the flight path with its start, and the altitude below.
void DrawFlight(kv::Canvas& canvas, RECT area, int textPx) {
  const COLORREF ground = GetSysColor(COLOR_WINDOW);
  const COLORREF ink = kv::IsHighContrast() ? GetSysColor(COLOR_WINDOWTEXT) : kPathColor;
  COLORREF tint = ground;
  kv::BlendColor(ground, ink, 100, kTintPercent, &tint);
  kv::FillArea(canvas, area, ground);
  InflateRect(&area, -textPx / 2, -textPx / 2);
  RECT plan = area, profile = area;
  plan.bottom = area.bottom - (area.bottom - area.top) / 3;
  profile.top = plan.bottom + textPx / 2;
  DrawLabel(canvas, kv::ResourceText(IDS_FLIGHT_PATH), plan);
  DrawLabel(canvas, AltitudeText(), profile);
  InflateRect(&plan, -textPx / 2, -2 * textPx);
  profile.top += textPx * 3 / 2;
  const double width = textPx / 8.0;

  std::vector<kv::PointD> altitude = CurveIn(profile, static_cast<int>(points.size()), false,
                                             [](int i) { return std::pair(1.0 * i, points[i].dAltitude); });
  altitude.push_back({1.0 * profile.right, 1.0 * area.bottom});
  altitude.push_back({1.0 * profile.left, 1.0 * area.bottom});
  kv::FillPolygon(canvas, altitude, tint);
  altitude.resize(altitude.size() - 2);
  DrawCurve(canvas, altitude, width, ink);

  const std::vector<kv::PointD> path = CurveIn(plan, static_cast<int>(points.size()), true,
                                               [](int i) { return std::pair(points[i].dX, -points[i].dY); });
  DrawCurve(canvas, path, width, ink);
  kv::FillDisc(canvas, path.front(), textPx / 3.0, ink);
  const std::wstring start = kv::ResourceText(IDS_FLIGHT_START);
  SIZE size{};
  GetTextExtentPoint32W(canvas.dc(), start.c_str(), static_cast<int>(start.size()), &size);
  const LONG x = std::lround(std::min(path.front().x, 1.0 * area.right - size.cx)), y = std::lround(path.front().y);
  const bool goesUp = path[path.size() / 16].y < path.front().y;
  const LONG top = goesUp ? y + textPx / 2 : y - 2 * textPx;
  DrawLabel(canvas, start, {x, top, x + size.cx, top + 3 * textPx / 2});
}

void DrawPlan(HDC dc, RECT area, int textPx) {
  kv::DrawSunkenFrame(dc, &area);
  const SIZE size{area.right - area.left, area.bottom - area.top};
  kv::Surface surface;
  if (!surface.Create(size)) return;
  {
    kv::CoverageShape shape;
    const kv::MemoryDc canvasDc(dc);
    kv::Canvas canvas(canvasDc, surface, shape);
    const kv::OwnedFont font = kv::MakeFont(textPx, FW_NORMAL);
    const kv::SelectedObject selected(canvas.dc(), font);
    SetBkMode(canvas.dc(), TRANSPARENT);
    DrawFlight(canvas, {0, 0, size.cx, size.cy}, textPx);
  }
  kv::ShowBitmap(dc, area, surface.bitmap(), size);
}

// ---- What was written -----------------------------------------------------------------------------------------------

// Shows the beginning of a file with its name and size, or that it could not be written.
void ShowFile(HWND page, const wchar_t* path, BOOL written) {
  char bytes[kShownBytes];
  size_t count = 0;
  long size = -1;
  if (FILE* file = written ? _wfopen(path, L"rb") : nullptr) {
    count = std::fread(bytes, 1, sizeof(bytes), file);
    std::fseek(file, 0, SEEK_END);
    size = std::ftell(file);
    std::fclose(file);
  }
  std::wstring text(bytes, bytes + count);  // ASCII
  if (size > static_cast<long>(count)) text += L"...";
  SetDlgItemTextW(page, IDC_FLIGHT_TEXT, text.c_str());
  shownFile = size < 0 ? L"" : path;
  kv::EnableControl(page, IDC_FLIGHT_FOLDER, size >= 0);
  kv::SetControlText(page, IDC_FLIGHT_RESULT, size < 0 ? IDS_FLIGHT_NO_FILE : IDS_FLIGHT_FILE, path,
                     kv::NumberText(size));
}

// In the user's temporary folder.
std::wstring PathOf(const wchar_t* name) {
  wchar_t folder[kv::kPathCharacters] = L"";
  GetTempPathW(kv::kPathCharacters, folder);
  return std::wstring(folder) + name;
}

// ---- Commands -------------------------------------------------------------------------------------------------------

INT_PTR OnExportWaypoints(HWND page) {
  const std::wstring path = PathOf(L"kvgallery flight.txt");
  ShowFile(page, path.c_str(), kv::WriteWaypoints(path.c_str(), Track()));
  return TRUE;
}

INT_PTR OnExportKml(HWND page) {
  const std::wstring path = PathOf(L"kvgallery flight.kml");
  const BOOL written = kv::WriteKml(path.c_str(), Track());
  ShowFile(page, path.c_str(), written);
  if (written) kv::OpenInGlobe(path.c_str());
  return TRUE;
}

INT_PTR OnNewFlight(HWND page) {
  ++flightNumber;
  Fly();
  InvalidateRect(GetDlgItem(page, IDC_FLIGHT_PLAN), nullptr, FALSE);
  return kv::IsChecked(page, IDC_FLIGHT_ALWAYS) ? OnExportKml(page) : TRUE;
}

INT_PTR OnShowInGlobe(HWND page) {
  constexpr double kViewFromMeters = 600;
  kv::showPositionInGlobe(page, kLongitude, kLatitude, kViewFromMeters);
  return TRUE;
}

INT_PTR OnOpenFolder() {
  const std::wstring arguments = L"/select,\"" + shownFile + L"\"";
  kv::shellCalls.executeW(nullptr, L"open", L"explorer.exe", arguments.c_str(), nullptr, SW_SHOWNORMAL);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT command) {
  switch (command) {
    case IDC_FLIGHT_NEW: return OnNewFlight(page);
    case IDC_FLIGHT_KML: return OnExportKml(page);
    case IDC_FLIGHT_WAYPOINTS: return OnExportWaypoints(page);
    case IDC_FLIGHT_FOLDER: return OnOpenFolder();
    case IDC_FLIGHT_GLOBE: return OnShowInGlobe(page);
    default: return FALSE;
  }
}

// ---- Life -----------------------------------------------------------------------------------------------------------

INT_PTR OnDrawItem(HWND page, const DRAWITEMSTRUCT* item) {
  DrawPlan(item->hDC, item->rcItem, kv::TextHeightOf(page));
  return TRUE;
}

void ShowTexts(HWND page) {
  kv::SetEmptyText(page, IDC_FLIGHT_TEXT, kv::ResourceText(IDS_FLIGHT_EMPTY));
  InvalidateRect(GetDlgItem(page, IDC_FLIGHT_PLAN), nullptr, FALSE);
  kv::SetControlText(page, IDC_FLIGHT_PLAN, IDS_TITLE_FIRST + PAGE_INDEX_FLIGHT);  // its name for screen readers
  kv::SetControlText(page, IDC_FLIGHT_STATION,
                     kv::isHelmsdeckRunning() ? IDS_FLIGHT_STATION_RUNS : IDS_FLIGHT_STATION_RUNS_NOT);
  if (GetWindowTextLengthW(GetDlgItem(page, IDC_FLIGHT_TEXT)) == 0) {
    kv::SetControlText(page, IDC_FLIGHT_RESULT, IDS_FLIGHT_HINT);
  }
}

}  // namespace

INT_PTR CALLBACK FlightPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      OnNewFlight(page);
      kv::EnableControl(page, IDC_FLIGHT_FOLDER, false);
      break;
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case WM_DRAWITEM: return OnDrawItem(page, reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case kv::kPageShown:
    case kv::kLanguageChanged: ShowTexts(page); break;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
