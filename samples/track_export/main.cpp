// Exports a flight as a KML document, as waypoints text, and over DDE to a running spreadsheet program.
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "ids.h"
#include "kv/kv.h"

namespace {

// A climbing circle of 400 meters; a real program records its positions.
std::vector<kv::FlightTrackPoint> MakeFlight() {
  std::vector<kv::FlightTrackPoint> points;
  for (int i = 0; i < 180; ++i) {
    const double x = 400 * std::sin(i / 28.6), y = -400 * std::cos(i / 28.6);
    points.push_back({.dX = x, .dY = y, .dAltitude = 20 + std::floor(i / 10.0), .bKind = kv::kPointLocal});
  }
  return points;
}

std::vector<kv::FlightTrackPoint> flight = MakeFlight();
const kv::FlightTrack track = kv::MakeFlightTrack(46.4102, 8.4306, flight);

void Say(HWND dialog, const std::wstring& text) {
  SetDlgItemTextW(dialog, IDC_STATUS, text.c_str());
}

void SaveAs(HWND dialog, const wchar_t* name, bool write(const wchar_t*)) {
  std::wstring path = name;
  if (!kv::AskSavePath(dialog, L"Save the flight", &path)) return;
  Say(dialog, write(path.c_str()) ? L"Written: " + path : path + L" could not be written. " + kv::ErrorText());
}

// Creates a sheet with one row per point. The selection then contains the name of the sheet: "[Book1]Sheet1!R1C1".
void SendToSpreadsheet(HWND dialog) {
  std::string selection;
  if (!kv::DdeConversation("Excel", "System").Execute("[NEW(1)]")) return Say(dialog, L"No spreadsheet is open.");
  if (!kv::DdeConversation("Excel", "System").Request("Selection", &selection)) return Say(dialog, L"No answer.");
  kv::DdeConversation sheet("Excel", selection.substr(0, selection.find('!')).c_str());
  size_t sent = 0;
  for (const kv::FlightTrackPoint& point : flight) {
    char cells[32], values[96];
    kv::FormatBoundedA(cells, sizeof(cells), "R%uC1:R%uC3", sent + 1, sent + 1);
    kv::FormatBoundedA(values, sizeof(values), "%.1f\t%.1f\t%.1f", point.dX, -point.dY, point.dAltitude);
    if (!sheet.Poke(cells, values)) break;
    ++sent;
  }
  Say(dialog, std::to_wstring(sent) + L" of " + std::to_wstring(flight.size()) + L" points sent.");
}

INT_PTR CALLBACK TrackExport(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message != WM_COMMAND) return message == WM_INITDIALOG;
  switch (LOWORD(wParam)) {
    case IDC_KML: SaveAs(dialog, L"flight.kml", [](const wchar_t* path) { return kv::WriteKml(path, track); }); break;
    case IDC_WAYPOINTS:
      SaveAs(dialog, L"flight.txt", [](const wchar_t* path) { return kv::WriteWaypoints(path, track); });
      break;
    case IDC_SPREADSHEET: SendToSpreadsheet(dialog); break;
    default: return FALSE;
  }
  return TRUE;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  return kv::RunDialog(
      instance,
      {.templateName = L"TRACK", .procedure = TrackExport, .positionName = "Samples.Track", .version = L"1.0"});
}
