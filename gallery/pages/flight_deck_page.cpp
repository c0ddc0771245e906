#include "gallery/pages.h"
#include "kv/controls/instrument_block.h"

#include <cmath>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "gallery/pages/simulated_flight.h"
#include "gallery/resource_ids.h"
#include "kv/controls/strip_chart/strip_chart.h"
#include "kv/toolkit/horizons.h"
#include "kv/toolkit/instruments.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"
#include "kv/toolkit/strip_charts.h"

namespace gallery {

namespace {

constexpr double kShownSeconds = 60, kSampleSeconds = 0.05;
constexpr COLORREF kGreen = RGB(0, 200, 80), kAmber = RGB(255, 190, 0), kRed = RGB(240, 48, 32);

// A value of the flight with its instrument, its channel in the chart, and its name.
struct Value {
  int control, nameText;
  const wchar_t* unit;
  double minimum, maximum;
  double (*at)(double seconds);
};
constexpr Value kValues[] = {{IDC_DECK_AIRSPEED, IDS_INSTRUMENTS_NAME + 0, L"kn", 0, 160, Airspeed},
                             {IDC_DECK_ALTITUDE, IDS_INSTRUMENTS_NAME + 2, L"ft", 0, 10000, Altitude},
                             {IDC_DECK_CLIMB, IDS_INSTRUMENTS_NAME + 3, L"m/s", -20, 20, Climb},
                             {IDC_DECK_POWER, IDS_INSTRUMENTS_NAME + 4, L"%", 0, 100, Power}};

double newest = 0;  // the time of the last samples

// Appends the samples since the last call, with a gap while there is no value.
void Record(HWND page, double until, bool valid) {
  for (int channel = 0; channel < static_cast<int>(std::size(kValues)); ++channel) {
    std::vector<kv::StripSample> samples;
    for (double time = newest + kSampleSeconds; time <= until; time += kSampleSeconds) {
      samples.push_back({time, valid ? kValues[channel].at(time) : NAN});
    }
    kv::AppendStripChartSamples(page, IDC_DECK_CHART, channel, samples);
  }
  newest += std::floor((until - newest) / kSampleSeconds) * kSampleSeconds;
}

INT_PTR Fly(HWND page) {
  const double time = kv::StripChartNow();
  const bool valid = kv::IsChecked(page, IDC_DECK_VALID);
  Record(page, time, valid);
  for (const Value& value : kValues) {
    kv::SetInstrumentValue(page, value.control, valid ? value.at(time) : NAN, TRUE);
  }
  kv::SetInstrumentValue(page, IDC_DECK_HEADING, valid ? std::fmod(Heading(time), 360) : NAN, TRUE);
  if (!valid) return kv::ClearHorizonAttitude(page, IDC_DECK_HORIZON);
  return kv::SetHorizonAttitude(page, IDC_DECK_HORIZON, {Pitch(time), Roll(time), Slip(time), Heading(time)}, FALSE);
}

void ShowZones(HWND page) {
  const kv::StripZone zones[] = {{120, 145, kAmber, 0}, {145, 160, kRed, 0}};
  kv::SetStripChartZones(page, IDC_DECK_CHART, std::span(zones, kv::IsChecked(page, IDC_DECK_ZONES) ? 2 : 0));
}

void OnInit(HWND page) {
  for (const Value& value : kValues) {
    kv::SetInstrumentRange(page, value.control,
                           {.minimum = value.minimum, .maximum = value.maximum, .unit = value.unit});
  }
  const kv::InstrumentZone speeds[] = {{45, 120, kGreen}, {120, 145, kAmber}, {145, 160, kRed}};
  kv::SetInstrumentZones(page, IDC_DECK_AIRSPEED, speeds);
  kv::SetInstrumentColor(page, IDC_DECK_POWER, kGreen);
  kv::SetStripChartView(page, IDC_DECK_CHART, kShownSeconds, 0, 0);
  for (const int id : {IDC_DECK_AXES, IDC_DECK_LEGEND, IDC_DECK_ZONES, IDC_DECK_VALID})
    CheckDlgButton(page, id, BST_CHECKED);
  ShowZones(page);
  newest = kv::StripChartNow() - kShownSeconds;
}

void ShowTexts(HWND page) {
  for (int channel = 0; channel < static_cast<int>(std::size(kValues)); ++channel) {
    const Value& value = kValues[channel];
    const std::wstring name = kv::ResourceText(static_cast<UINT>(value.nameText));
    kv::SetInstrumentName(page, value.control, name.c_str());
    kv::SetStripChartChannel(page, IDC_DECK_CHART, channel, {.name = name.c_str(), .unit = value.unit});
  }
  kv::SetInstrumentName(page, IDC_DECK_HEADING, kv::ResourceText(IDS_INSTRUMENTS_NAME + 1).c_str());
  kv::NameControl(page, IDC_DECK_HORIZON, kv::ResourceText(IDS_TITLE_FIRST + PAGE_INDEX_FLIGHT_DECK).c_str());
}

INT_PTR OnCommand(HWND page, int id, UINT code) {
  const BOOL checked = kv::IsChecked(page, id);
  switch (id) {
    case IDC_DECK_HOLD: kv::FreezeStripChart(page, IDC_DECK_CHART, checked); break;
    case IDC_DECK_SWEEP: kv::SetStripChartStyle(page, IDC_DECK_CHART, kv::kStripSweep, checked); break;
    case IDC_DECK_AXES: kv::SetStripChartStyle(page, IDC_DECK_CHART, kv::kStripSeparateAxes, checked); break;
    case IDC_DECK_LEGEND: kv::SetStripChartStyle(page, IDC_DECK_CHART, kv::kStripNoLegend, !checked); break;
    case IDC_DECK_ZONES: ShowZones(page); break;
    case IDC_DECK_VALID: Fly(page); break;
    case IDC_DECK_CHART:
      // The user can also freeze it by the keyboard.
      if (code == kv::kStripNotifyView)
        CheckDlgButton(page, IDC_DECK_HOLD, kv::IsStripChartFrozen(page, IDC_DECK_CHART));
      break;
    default: break;
  }
  return TRUE;
}

}  // namespace

INT_PTR CALLBACK FlightDeckPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_TIMER: return Fly(page);
    case kv::kLanguageChanged: ShowTexts(page); break;
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam), HIWORD(wParam));
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
