#include "gallery/pages.h"

#include <cmath>
#include <string>
#include <vector>

#include "gallery/pages/simulated_flight.h"
#include "gallery/resource_ids.h"
#include "kv/controls/instrument_block.h"
#include "kv/toolkit/instruments.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr COLORREF kGreen = RGB(0, 200, 80), kAmber = RGB(255, 190, 0), kRed = RGB(240, 48, 32),
                   kCyan = RGB(64, 200, 255);

// ---- The instruments ------------------------------------------------------------------------------------------------

// In the order of their texts.
enum Name {
  kAirspeed,
  kHeading,
  kAltitude,
  kClimb,
  kPower,
  kFuel,
  kLatitude,
  kLongitude,
  kTime,
  kVoltage,
  kSignal,
  kNoise,
  kAcceleration,
  kDate,
  kDisabled,
  kNoValue,
  kSmall,
};

struct Instrument {
  Name name;
  kv::InstrumentRange range;
  COLORREF color;
  double (*value)(double seconds);  // null for time and no value
  std::vector<kv::InstrumentZone> zones = {};
};

// In the order of the controls.
const Instrument kInstruments[] = {
    {kAirspeed,
     {.maximum = 160, .unit = L"kn", .step = 1},
     kRed,
     Airspeed,
     {{45, 120, kGreen}, {120, 145, kAmber}, {145, 160, kRed}}},
    {kHeading, {-360, 360, L"\u00B0", 1}, kAmber, Heading},
    {kAltitude, {0, 10000, L"ft", 10}, kRed, Altitude},
    {kClimb, {-20, 20, L"m/s", 0.1}, kRed, Climb},
    {kPower, {0, 100, L"%", 4}, kGreen, Power, {{75, 88, kAmber}, {88, 100, kRed}}},
    {kFuel, {0, 100, L"%", 4}, kCyan, [](double t) { return 96 - std::fmod(t / 2, 90.0); }, {{20, 20, kRed}}},
    {kLatitude, {-90, 90, L"NS", 0.0001, 0}, kGreen, [](double t) { return 52.3961 + t / 7200; }},
    {kLongitude, {-180, 180, L"EW", 0.0001, 0}, kGreen, [](double t) { return -1.2044 + t / 5400; }},
    {kTime, {0, 1, L""}, kRed, nullptr},
    {kVoltage, {0, 99, L"V", 0.01}, kCyan, [](double t) { return 12.6 + 0.35 * Wave(t, 11) + 0.04 * Wave(t, 0.9); }},
    {kSignal,
     {0, 100, L"%", 4},
     kGreen,
     [](double t) { return 62 + 30 * Wave(t, 13) + 6 * Wave(t, 1.7); },
     {{70, 85, kAmber}, {85, 100, kRed}}},
    {kNoise, {0, 100, L"%", 4}, kAmber, [](double t) { return 28 + 12 * Wave(t, 7) + 8 * Wave(t, 2.3); }},
    {kAcceleration, {-4, 9, L"g", 0.01}, kAmber, [](double t) { return 1.02 + 0.6 * Wave(t, 9) + 0.1 * Wave(t, 1.1); }},
    {kDate, {0, 1, L""}, kRed, nullptr},
    {kDisabled, {0, 100, L"%", 1}, kRed, Power, {{0, 60, kGreen}, {60, 85, kAmber}, {85, 100, kRed}}},
    {kDisabled, {-360, 360, L"\u00B0", 1}, kRed, Heading},
    {kDisabled, {0, 999, L"%", 1}, kRed, Power},
    {kNoValue, {0, 100, L"%", 1}, kRed, nullptr},
    {kNoValue, {0, 999, L"%", 1, 1}, kRed, nullptr},
    {kSmall, {0, 100, L"%", 1}, kRed, Power, {{0, 60, kGreen}, {60, 85, kAmber}, {85, 100, kRed}}},
    {kSmall, {-360, 360, L"\u00B0", 1}, kRed, Heading},
    {kSmall, {0, 999, L"%", 1}, kRed, Power},
    {kSmall, {0, 100, L"%", 10}, kGreen, Power},
    {kSmall, {-20, 20, L"%", 0.1}, kRed, Climb},
};
constexpr int kFirstWithoutState = 14;  // the following show a state, which does not change

void ShowClock(HWND page, int id, bool valid) {
  SYSTEMTIME now;
  GetLocalTime(&now);
  kv::SetInstrumentValue(page, id, valid ? 0 : NAN, FALSE);
  kv::SetInstrumentTime(page, id, now);
}

INT_PTR ShowSample(HWND page) {
  const double seconds = GetTickCount() / 1000.0;
  const bool valid = kv::IsChecked(page, IDC_INSTRUMENTS_VALID);
  const BOOL animate = kv::IsChecked(page, IDC_INSTRUMENTS_ANIMATE);
  int id = IDC_INSTRUMENTS;
  for (const Instrument& instrument : kInstruments) {
    const bool shown = instrument.value && (valid || id - IDC_INSTRUMENTS >= kFirstWithoutState);
    if (instrument.name == kTime || instrument.name == kDate) {
      ShowClock(page, id, valid);
    } else {
      kv::SetInstrumentValue(page, id, shown ? instrument.value(seconds) : NAN, shown && animate);
    }
    ++id;
  }
  return TRUE;
}

// ---- Messages -------------------------------------------------------------------------------------------------------

INT_PTR OnTextsChanged(HWND page) {
  int id = IDC_INSTRUMENTS;
  for (const Instrument& instrument : kInstruments) {
    kv::SetInstrumentName(page, id++, kv::ResourceText(IDS_INSTRUMENTS_NAME + instrument.name).c_str());
  }
  return TRUE;
}

void OnInit(HWND page) {
  for (const int id : {IDC_INSTRUMENTS_ANIMATE, IDC_INSTRUMENTS_VALID, IDC_INSTRUMENTS_ENABLED}) {
    CheckDlgButton(page, id, BST_CHECKED);
  }
  int id = IDC_INSTRUMENTS;
  for (const Instrument& instrument : kInstruments) {
    kv::SetInstrumentRange(page, id, instrument.range);
    kv::SetInstrumentZones(page, id, instrument.zones);
    kv::SetInstrumentColor(page, id++, instrument.color);
  }
}

// Replaces the hint with the result.
INT_PTR OnCopied(HWND page, int id, bool copied) {
  const std::wstring name = kv::ResourceText(IDS_INSTRUMENTS_NAME + kInstruments[id - IDC_INSTRUMENTS].name);
  kv::SetControlText(page, IDC_INSTRUMENTS_HINT, copied ? IDS_INSTRUMENTS_COPIED : IDS_CHART_NOT_COPIED, name);
  return TRUE;
}

INT_PTR OnCommand(HWND page, int id) {
  if (id == IDC_INSTRUMENTS_ENABLED) {
    const BOOL enabled = kv::IsChecked(page, IDC_INSTRUMENTS_ENABLED);
    for (int i = 0; i < kFirstWithoutState; ++i) EnableWindow(GetDlgItem(page, IDC_INSTRUMENTS + i), enabled);
  }
  return id == IDC_INSTRUMENTS_VALID ? ShowSample(page) : TRUE;
}

}  // namespace

INT_PTR CALLBACK InstrumentsPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_TIMER: return ShowSample(page);
    case kv::kLanguageChanged: return OnTextsChanged(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case kv::kControlCopied: return OnCopied(page, static_cast<int>(wParam), lParam != 0);
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
