#include "gallery/pages.h"

#include <cmath>
#include <iterator>
#include <string>

#include "controls/display_instrument.h"
#include "controls/instrument_block.h"
#include "framework/control_class.h"
#include "framework/numbers.h"
#include "gallery/resource_ids.h"
#include "toolkit/languages.h"
#include "toolkit/pages.h"
#include "toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr UINT_PTR kSampleTimer = 1;
constexpr UINT kSampleMs = 250;

constexpr COLORREF kGreen = RGB(0, 200, 80), kAmber = RGB(255, 190, 0), kRed = RGB(240, 48, 32),
                   kCyan = RGB(64, 200, 255);

// ---- The simulated flight ------------------------------------------------------------------------------------------

double Wave(double seconds, double period, double phase = 0) {
  return std::sin((seconds / period + phase) * 2 * kv::kPi);
}

// All pure: what an instrument shows, so many seconds after the page came up.
double Airspeed(double t) {
  return 112 + 28 * Wave(t, 23) + 6 * Wave(t, 4.1);
}
double Heading(double t) {
  return 275 + 60 * Wave(t, 47) + 4 * Wave(t, 5.3);
}
double Altitude(double t) {
  return 4200 + 1900 * Wave(t, 61);
}
double Climb(double t) {
  return 12 * Wave(t, 61, 0.25) + 1.5 * Wave(t, 3.7);
}
double Power(double t) {
  return 68 + 26 * Wave(t, 61, 0.2);
}
double Fuel(double t) {
  return 96 - std::fmod(t / 2, 90.0);
}
double Latitude(double t) {
  return 52.3961 + t / 7200;
}
double Longitude(double t) {
  return -1.2044 + t / 5400;
}
double Voltage(double t) {
  return 12.6 + 0.35 * Wave(t, 11) + 0.04 * Wave(t, 0.9);
}
double Signal(double t) {
  return 62 + 30 * Wave(t, 13) + 6 * Wave(t, 1.7);
}
double Noise(double t) {
  return 28 + 12 * Wave(t, 7) + 8 * Wave(t, 2.3);
}
double Acceleration(double t) {
  return 1.02 + 0.6 * Wave(t, 9) + 0.1 * Wave(t, 1.1);
}

// ---- The instruments -----------------------------------------------------------------------------------------------

struct Zone {
  float lower, upper;
  COLORREF color;
};

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
  const char* unit;
  float minimum, maximum, step;
  BYTE format;
  COLORREF color;
  double (*value)(double seconds);  // null where the control shows a time of its own or no value
  Zone zones[kv::kInstrumentZones];
};

constexpr Zone kSpeedZones[] = {{45, 120, kGreen}, {120, 145, kAmber}, {145, 160, kRed}};

// In the order of the controls.
constexpr Instrument kInstruments[] = {
    {kAirspeed, "kn", 0, 160, 1, 0, kRed, Airspeed, {kSpeedZones[0], kSpeedZones[1], kSpeedZones[2]}},
    {kHeading, "\xB0", -360, 360, 1, 0, kAmber, Heading, {}},
    {kAltitude, "ft", 0, 10000, 10, 0, kRed, Altitude, {}},
    {kClimb, "m/s", -20, 20, 0.1f, 1, kRed, Climb, {}},
    {kPower, "%", 0, 100, 4, 0, kGreen, Power, {{75, 88, kAmber}, {88, 100, kRed}}},
    {kFuel, "%", 0, 100, 4, 0, kCyan, Fuel, {{20, 20, kRed}}},
    {kLatitude, "NS", -90, 90, 0.0001f, 0, kGreen, Latitude, {}},
    {kLongitude, "EW", -180, 180, 0.0001f, 0, kGreen, Longitude, {}},
    {kTime, "", 0, 1, 1, 0, kRed, nullptr, {}},
    {kVoltage, "V", 0, 99, 0.01f, 2, kCyan, Voltage, {}},
    {kSignal, "%", 0, 100, 4, 0, kGreen, Signal, {{70, 85, kAmber}, {85, 100, kRed}}},
    {kNoise, "%", 0, 100, 4, 0, kAmber, Noise, {}},
    {kAcceleration, "g", -4, 9, 0.01f, 2 | kv::kFormatSign, kAmber, Acceleration, {}},
    {kDate, "", 0, 1, 1, 0, kRed, nullptr, {}},
    {kDisabled, "%", 0, 100, 1, 0, kRed, Power, {{0, 60, kGreen}, {60, 85, kAmber}, {85, 100, kRed}}},
    {kDisabled, "\xB0", -360, 360, 1, 0, kRed, Heading, {}},
    {kDisabled, "%", 0, 999, 1, 0, kRed, Power, {}},
    {kNoValue, "%", 0, 100, 1, 0, kRed, nullptr, {}},
    {kNoValue, "%", 0, 999, 1, 1, kRed, nullptr, {}},
    {kSmall, "%", 0, 100, 1, 0, kRed, Power, {{0, 60, kGreen}, {60, 85, kAmber}, {85, 100, kRed}}},
    {kSmall, "\xB0", -360, 360, 1, 0, kRed, Heading, {}},
    {kSmall, "%", 0, 999, 1, 0, kRed, Power, {}},
    {kSmall, "%", 0, 100, 10, 0, kGreen, Power, {}},
    {kSmall, "%", -20, 20, 0.1f, 1, kRed, Climb, {}},
};
constexpr int kFirstWithoutState = 14;  // from there on the state is the point, and stays

HWND ControlOf(HWND page, int index) {
  return GetDlgItem(page, IDC_INSTRUMENTS + index);
}

void Send(HWND control, WPARAM wParam, const void* item) {
  SendMessageA(control, kv::kControlCommand, wParam, reinterpret_cast<LPARAM>(item));
}

std::string NameOf(const Instrument& instrument) {
  const std::wstring name = kv::ResourceText(IDS_INSTRUMENTS_NAME + instrument.name);
  char bytes[sizeof(kv::InstrumentBlock::szName)] = "";
  WideCharToMultiByte(CP_UTF8, 0, name.c_str(), -1, bytes, sizeof(bytes) - 1, nullptr, nullptr);
  return bytes;
}

void Describe(HWND control, const Instrument& instrument) {
  const std::string name = NameOf(instrument);
  kv::InstrumentBlock block =
      kv::BuildDefaultBlock({instrument.minimum, instrument.maximum, instrument.step, instrument.format,
                             instrument.color, instrument.unit, name.c_str()});
  for (int i = 0; i < kv::kInstrumentZones; ++i) {
    const Zone& zone = instrument.zones[i];
    if (zone.color == 0) continue;
    block.zones[i] = {zone.lower, zone.upper, zone.color, {}, 0};
    block.state |= kv::ZoneEnabledBit(i);
  }
  if (!instrument.value) block.state |= kv::kInstrumentNoValue;
  Send(control, kv::kCommandBlock | kv::kCommandRedraw, &block);
}

bool IsChecked(HWND page, int id) {
  return IsDlgButtonChecked(page, id) == BST_CHECKED;
}

void ShowClock(HWND control, bool valid) {
  SYSTEMTIME now;
  GetLocalTime(&now);
  const float any = 0;
  Send(control, kv::kCommandValue | kv::kCommandRedraw, valid ? &any : nullptr);
  Send(control, kv::kCommandTime | kv::kCommandRedraw, &now);
}

INT_PTR ShowSample(HWND page) {
  const double seconds = GetTickCount() / 1000.0;
  const bool valid = IsChecked(page, IDC_INSTRUMENTS_VALID);
  const WPARAM flags =
      kv::kCommandValue | kv::kCommandRedraw | (IsChecked(page, IDC_INSTRUMENTS_GLIDE) ? kv::kValueGlide : 0);
  for (int i = 0; i < static_cast<int>(std::size(kInstruments)); ++i) {
    if (!kInstruments[i].value) continue;
    const auto value = static_cast<float>(kInstruments[i].value(seconds));
    Send(ControlOf(page, i), flags, valid || i >= kFirstWithoutState ? &value : nullptr);
  }
  ShowClock(ControlOf(page, kTime), valid);
  ShowClock(ControlOf(page, kDate), valid);
  return TRUE;
}

// ---- Messages ------------------------------------------------------------------------------------------------------

void OnTextsChanged(HWND page) {
  for (int i = 0; i < static_cast<int>(std::size(kInstruments)); ++i) Describe(ControlOf(page, i), kInstruments[i]);
  ShowSample(page);
}

void OnInit(HWND page) {
  for (const int id : {IDC_INSTRUMENTS_GLIDE, IDC_INSTRUMENTS_VALID, IDC_INSTRUMENTS_ENABLED}) {
    CheckDlgButton(page, id, BST_CHECKED);
  }
}

INT_PTR OnShown(HWND page, bool shown) {
  if (!shown) return KillTimer(page, kSampleTimer);
  SetTimer(page, kSampleTimer, kSampleMs, nullptr);
  return ShowSample(page);
}

INT_PTR OnCommand(HWND page, int id) {
  if (id == IDC_INSTRUMENTS_ENABLED) {
    const BOOL enabled = IsChecked(page, IDC_INSTRUMENTS_ENABLED);
    for (int i = 0; i < kFirstWithoutState; ++i) EnableWindow(ControlOf(page, i), enabled);
  }
  return id == IDC_INSTRUMENTS_VALID ? ShowSample(page) : TRUE;
}

}  // namespace

INT_PTR CALLBACK InstrumentsPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: OnInit(page); break;
    case WM_TIMER: return ShowSample(page);
    case kv::kLanguageChanged: OnTextsChanged(page); break;
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    case kv::kPageShown: return OnShown(page, wParam != 0);
    default: break;
  }
  return FALSE;
}

}  // namespace gallery
