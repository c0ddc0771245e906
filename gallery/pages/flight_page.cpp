#include "gallery/pages.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "export/flight_track.h"
#include "export/flight_track_view.h"
#include "export/kml_export.h"
#include "framework/control_class.h"
#include "framework/guards.h"
#include "framework/numbers.h"
#include "framework/painting.h"
#include "framework/shell_launch.h"
#include "framework/window_state.h"
#include "gallery/pages/simulated_flight.h"
#include "gallery/resource_ids.h"
#include "toolkit/appearance.h"
#include "toolkit/locale_text.h"
#include "toolkit/pages.h"
#include "toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr int kGroundPercent = 40;  // of the text colour
constexpr size_t kShownBytes = 8000;

// The flight that the view holds. One page, one flight; it lives as long as the program.
std::vector<kv::FlightTrackPoint> points;
kv::FlightTrack track;
int flightNumber = 0;
std::wstring shownFile;  // that was written last; empty when there is none

// ---- The sample flight ---------------------------------------------------------------------------------------------

// Two minutes of the gallery's flight, each time from a later moment on.
void Fly() {
  constexpr double kSeconds = 122, kStep = 0.5, kMetresPerSecondOfAKnot = 1852.0 / 3600, kMetresPerFoot = 0.3048;
  const double begin = flightNumber * 29.0;
  kv::FlightTrackPoint at{.bKind = kv::kPointLocal};
  points.clear();
  for (double t = begin; t <= begin + kSeconds; t += kStep) {
    at.dAltitude = Altitude(t) * kMetresPerFoot;
    points.push_back(at);
    const double metres = Airspeed(t) * kMetresPerSecondOfAKnot * kStep, course = kv::Radians(Heading(t));
    at.dX += metres * std::sin(course);
    at.dY -= metres * std::cos(course);  // southwards
  }
  track.nPoints = static_cast<LONG>(points.size());
  track.lpPoints = points.data();
  track.dReferenceLatitude = 54.4609;
  track.dReferenceLongitude = -3.0886;
}

// ---- The plan ------------------------------------------------------------------------------------------------------

// A line through `count` places that at(i) gives (x to the right, y upwards, any unit), as large as the area allows and
// in its middle.
template <class At>
void DrawCurve(HDC dc, const RECT& area, int count, bool sameScale, At at) {
  double left = at(0).first, right = left, bottom = at(0).second, top = bottom;
  for (int i = 1; i < count; ++i) {
    const auto [x, y] = at(i);
    left = std::min(left, x), right = std::max(right, x), bottom = std::min(bottom, y), top = std::max(top, y);
  }
  double xScale = (area.right - area.left) / std::max(right - left, 1.0);
  double yScale = (area.bottom - area.top) / std::max(top - bottom, 1.0);
  if (sameScale) xScale = yScale = std::min(xScale, yScale);
  const double margin = (area.right - area.left - (right - left) * xScale) / 2;
  const double above = (area.bottom - area.top - (top - bottom) * yScale) / 2;
  std::vector<POINT> line(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    const auto [x, y] = at(i);
    line[i] = {area.left + kv::ToInt(margin + (x - left) * xScale),
               area.bottom - kv::ToInt(above + (y - bottom) * yScale)};
  }
  Polyline(dc, line.data(), count);
}

void DrawPlan(HDC dc, RECT area) {
  kv::DrawSunkenFrame(dc, &area);
  kv::FillSolid(dc, area, GetSysColor(COLOR_WINDOW));
  InflateRect(&area, -10, -10);
  RECT plan = area, profile = area;
  plan.bottom = area.bottom - (area.bottom - area.top) / 3;
  profile.top = plan.bottom + 16;

  const kv::OwnedPen ground(CreatePen(PS_SOLID, 1, kv::ListShade(kGroundPercent)));
  const kv::OwnedPen ink(
      CreatePen(PS_SOLID, std::max(2L, (area.bottom - area.top) / 130), GetSysColor(COLOR_WINDOWTEXT)));
  {
    const kv::SelectedObject selected(dc, ground);
    for (const LONG y : {plan.bottom + 8, profile.bottom}) {
      MoveToEx(dc, area.left, y, nullptr);
      LineTo(dc, area.right, y);
    }
  }
  const kv::SelectedObject selected(dc, ink);
  DrawCurve(dc, plan, track.nPoints, true, [](int i) { return std::pair(points[i].dX, -points[i].dY); });
  DrawCurve(dc, profile, track.nPoints, false, [](int i) { return std::pair(1.0 * i, points[i].dAltitude); });
}

// ---- What was written ----------------------------------------------------------------------------------------------

HWND ViewOf(HWND page) {
  return GetDlgItem(page, IDC_FLIGHT_VIEW);
}

// Shows the beginning of a file and its name and size, or that there is none.
void ShowFile(HWND page, const wchar_t* path) {
  char bytes[kShownBytes];
  size_t count = 0;
  long size = -1;
  if (FILE* file = _wfopen(path, L"rb")) {
    count = std::fread(bytes, 1, sizeof(bytes), file);
    std::fseek(file, 0, SEEK_END);
    size = std::ftell(file);
    std::fclose(file);
  }
  std::wstring text(bytes, bytes + count);  // it is ASCII
  if (size > static_cast<long>(count)) text += L"...";
  SetDlgItemTextW(page, IDC_FLIGHT_TEXT, text.c_str());
  const std::wstring result =
      TextWith(size < 0 ? IDS_FLIGHT_NO_FILE : IDS_FLIGHT_FILE, path, kv::NumberText(size).c_str());
  shownFile = size < 0 ? L"" : path;
  kv::EnableControl(page, IDC_FLIGHT_FOLDER, size >= 0);
  SetDlgItemTextW(page, IDC_FLIGHT_RESULT, result.c_str());
}

void ShowKmlFile(HWND page) {
  const auto* state = kv::WindowState<kv::FlightTrackViewState>(ViewOf(page));
  if (state) ShowFile(page, state->szKmlPath);
}

// ---- Commands ------------------------------------------------------------------------------------------------------

bool ExportsAlways(HWND page) {
  return IsDlgButtonChecked(page, IDC_FLIGHT_ALWAYS) == BST_CHECKED;
}

INT_PTR OnNewFlight(HWND page) {
  ++flightNumber;
  Fly();
  SendMessageA(ViewOf(page), kv::kControlCommand, kv::kTrackRecord, reinterpret_cast<LPARAM>(&track));
  InvalidateRect(GetDlgItem(page, IDC_FLIGHT_PLAN), nullptr, FALSE);
  if (ExportsAlways(page)) ShowKmlFile(page);
  return TRUE;
}

INT_PTR OnExportKml(HWND page) {
  SendMessageA(ViewOf(page), kv::kControlCommand, kv::kTrackExport | kv::kTrackExportNow, 1);
  ShowKmlFile(page);
  return TRUE;
}

INT_PTR OnExportWaypoints(HWND page) {
  SendMessageA(ViewOf(page), kv::kControlCommand, kv::kTrackExport | kv::kTrackExportNow, 0);
  ShowFile(page, kv::kWaypointsPath);
  return TRUE;
}

INT_PTR OnExportAlways(HWND page) {
  const WPARAM flag = ExportsAlways(page) ? kv::kTrackExportAlways : kv::kTrackExportNotAlways;
  SendMessageA(ViewOf(page), kv::kControlCommand, kv::kTrackExport | flag, 0);
  return TRUE;
}

INT_PTR OnShowInGlobe(HWND page) {
  constexpr double kViewFromMetres = 600;
  kv::showPositionInGlobe(page, track.dReferenceLongitude, track.dReferenceLatitude, kViewFromMetres);
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
    case IDC_FLIGHT_ALWAYS: return OnExportAlways(page);
    case IDC_FLIGHT_FOLDER: return OnOpenFolder();
    case IDC_FLIGHT_GLOBE: return OnShowInGlobe(page);
    default: return FALSE;
  }
}

// ---- Life ----------------------------------------------------------------------------------------------------------

INT_PTR OnDrawItem(const DRAWITEMSTRUCT* item) {
  DrawPlan(item->hDC, item->rcItem);
  return TRUE;
}

void ShowTexts(HWND page) {
  SetPageText(page, IDC_FLIGHT_PLAN, IDS_TITLE_FIRST + PAGE_INDEX_FLIGHT);  // its name, for a screen reader
  SetPageText(page, IDC_FLIGHT_STATION,
              kv::isHelmsdeckRunning() ? IDS_FLIGHT_STATION_RUNS : IDS_FLIGHT_STATION_RUNS_NOT);
  if (GetWindowTextLengthW(GetDlgItem(page, IDC_FLIGHT_TEXT)) == 0) {
    SetPageText(page, IDC_FLIGHT_RESULT, IDS_FLIGHT_HINT);
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
    case WM_DRAWITEM: return OnDrawItem(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case kv::kPageShown:
    case kv::kLanguageChanged: ShowTexts(page); break;
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
