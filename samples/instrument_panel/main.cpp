// Instrument panel: gauge, compass, bars and readouts, updated by a timer, in English, German and Arabic. panel.rc
// contains the controls; the other languages are libraries built from german.rc and arabic.rc.
#include <cmath>

#include "ids.h"
#include "kv/kv.h"

namespace {

constexpr UINT_PTR kFeedTimer = 1;
constexpr UINT kFeedMs = 100;
constexpr COLORREF kGreen = RGB(0, 150, 60), kAmber = RGB(240, 160, 0), kRed = RGB(210, 30, 30);

void DescribeInstruments(HWND panel) {
  kv::SetInstrumentRange(panel, IDC_SPEED, {.maximum = 250, .unit = L"km/h"});
  const kv::InstrumentZone speeds[] = {{0, 130, kGreen}, {130, 200, kAmber}, {200, 250, kRed}};
  kv::SetInstrumentZones(panel, IDC_SPEED, speeds);
  kv::SetInstrumentRange(panel, IDC_ALTITUDE, {.maximum = 3000, .unit = L"m"});
  kv::SetInstrumentRange(panel, IDC_CLIMB, {.minimum = -10, .maximum = 10, .unit = L"m/s"});
  kv::SetInstrumentColor(panel, IDC_FUEL, kGreen);
}

void NameInstruments(HWND panel) {
  for (int id = IDC_SPEED; id <= IDC_CLOCK; ++id) kv::SetInstrumentName(panel, id, kv::ResourceText(id).c_str());
}

// Simulated values; a real panel reads them from a device.
void Feed(HWND panel) {
  const double seconds = GetTickCount() / 1000.0;
  kv::SetInstrumentValue(panel, IDC_SPEED, 140 + 80 * std::sin(seconds / 5), TRUE);
  kv::SetInstrumentValue(panel, IDC_HEADING, std::fmod(seconds * 6, 360), TRUE);
  kv::SetInstrumentValue(panel, IDC_ALTITUDE, 1500 + 900 * std::sin(seconds / 9), FALSE);
  kv::SetInstrumentValue(panel, IDC_FUEL, 95 - std::fmod(seconds, 80), FALSE);
  kv::SetInstrumentValue(panel, IDC_CLIMB, 8 * std::cos(seconds / 9), TRUE);
  SYSTEMTIME now;
  GetLocalTime(&now);
  kv::SetInstrumentTime(panel, IDC_CLOCK, now);
}

INT_PTR CALLBACK Panel(HWND panel, UINT message, WPARAM, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      DescribeInstruments(panel);
      SetTimer(panel, kFeedTimer, kFeedMs, nullptr);
      return TRUE;
    case kv::kLanguageChanged: NameInstruments(panel); return TRUE;
    case WM_TIMER: Feed(panel); return TRUE;
    default: return FALSE;
  }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  return kv::RunDialog(instance, {.templateName = L"PANEL",
                                  .procedure = Panel,
                                  .positionName = "Samples.InstrumentPanel",
                                  .version = L"1.0",
                                  .minimumSize = {460, 380},
                                  .menu = L"PANEL",
                                  .languageMenu = {IDM_LANGUAGE, IDM_FIRST_LANGUAGE},
                                  .languages = L"instrument_panel"});
}
