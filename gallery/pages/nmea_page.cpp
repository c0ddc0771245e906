#include "gallery/pages.h"

#include <richedit.h>

#include <cmath>
#include <string>

#include "gallery/resource_ids.h"
#include "kv/export/nmea.h"
#include "kv/export/terminal_edit.h"
#include "kv/export/web_links.h"
#include "kv/framework/guards.h"
#include "kv/framework/numbers.h"
#include "kv/toolkit/languages.h"
#include "kv/toolkit/locale_text.h"
#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

namespace {

constexpr int kMaxLines = 200;

// The boat's clock: the number of sentences sent.
int step = 0;

// A boat on a circle of two minutes at the Greenwich meridian, where the longitude changes its hemisphere.
kv::GprmcFix FixAt(int sentence) {
  constexpr double kCenterLatitude = 50.7, kCenterLongitude = 0, kRadius = 0.04, kSentencesPerRound = 240;
  const double angle = 2 * kv::kPi * sentence / kSentencesPerRound;
  return {.latitude = kCenterLatitude + kRadius * std::cos(angle),
          .longitude = kCenterLongitude + kRadius * std::sin(angle),
          .speed = 6.5 + 1.5 * std::sin(3 * angle),
          .course = std::fmod(90 + kv::Degrees(angle), 360.0)};
}

// The terminal's text scales with the page's, in a scalable font.
void ScaleTerminal(HWND page) {
  constexpr int kTwipsPerInch = 1440, kCharacterPercent = 87;  // of a line's height
  CHARFORMATA format{};
  format.cbSize = sizeof(format);
  format.dwMask = CFM_SIZE | CFM_FACE;
  format.bPitchAndFamily = FIXED_PITCH | FF_MODERN;
  lstrcpyA(format.szFaceName, "Courier New");
  format.yHeight = MulDiv(kv::TextHeightOf(page), kTwipsPerInch * kCharacterPercent / 100,
                          GetDeviceCaps(kv::WindowDc(page), LOGPIXELSY));
  for (const WPARAM part : {SCF_ALL, SCF_SELECTION}) {
    SendDlgItemMessageA(page, IDC_NMEA_TERMINAL, EM_SETCHARFORMAT, part, reinterpret_cast<LPARAM>(&format));
  }
}

// Styling clears the control and makes it writable.
INT_PTR ClearTerminal(HWND page) {
  const HWND terminal = GetDlgItem(page, IDC_NMEA_TERMINAL);
  kv::styleTerminalEdit(terminal);
  SendMessageA(terminal, EM_SETREADONLY, TRUE, 0);
  ScaleTerminal(page);
  return TRUE;
}

void ReplaceText(HWND terminal, LONG first, LONG last, const char* text) {
  CHARRANGE range{.cpMin = first, .cpMax = last};
  SendMessageA(terminal, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
  SendMessageA(terminal, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
}

void AppendLine(HWND terminal, const char* text) {
  if (SendMessageA(terminal, EM_GETLINECOUNT, 0, 0) > kMaxLines) {
    ReplaceText(terminal, 0, static_cast<LONG>(SendMessageA(terminal, EM_LINEINDEX, 1, 0)), "");
  }
  const LONG end = GetWindowTextLengthA(terminal);
  ReplaceText(terminal, end, end, ((end ? "\r\n" : "") + std::string(text)).c_str());
  SendMessageA(terminal, EM_SCROLLCARET, 0, 0);
}

void SendSentence(HWND page) {
  const kv::GprmcFix fix = FixAt(step++);
  kv::SetControlText(page, IDC_NMEA_LATITUDE, IDS_NMEA_DEGREES, kv::NumberText(fix.latitude, 5));
  kv::SetControlText(page, IDC_NMEA_LONGITUDE, IDS_NMEA_DEGREES, kv::NumberText(fix.longitude, 5));
  kv::SetControlText(page, IDC_NMEA_SPEED, IDS_NMEA_KNOTS, kv::NumberText(fix.speed, 1));
  kv::SetControlText(page, IDC_NMEA_COURSE, IDS_NMEA_DEGREES, kv::NumberText(fix.course, 1));
  char sentence[kv::kSentenceSize] = "";
  kv::formatGprmc(sentence, fix.latitude, fix.longitude, 0, 0, fix.speed, fix.course, 0, 0, 0);
  AppendLine(GetDlgItem(page, IDC_NMEA_TERMINAL), sentence);
}

INT_PTR OnInit(HWND page) {
  ClearTerminal(page);
  CheckDlgButton(page, IDC_NMEA_MOVING, BST_CHECKED);
  return TRUE;
}

INT_PTR OnTick(HWND page) {
  if (kv::IsChecked(page, IDC_NMEA_MOVING)) SendSentence(page);
  return TRUE;
}

INT_PTR OnCommand(HWND page, UINT command) {
  switch (command) {
    case IDC_NMEA_CLEAR: return ClearTerminal(page);
    case IDC_NMEA_HOME_PAGE: kv::openMakerWebPage(0); return TRUE;
    case IDC_NMEA_WAYPOINT_PAGE: kv::openMakerWebPage(kv::kWaypointPage); return TRUE;
    default: return FALSE;
  }
}

}  // namespace

INT_PTR CALLBACK NmeaPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: return OnInit(page);
    case WM_SIZE: ScaleTerminal(page); return TRUE;
    case WM_TIMER: return OnTick(page);
    case WM_COMMAND: return OnCommand(page, LOWORD(wParam));
    default: return FALSE;
  }
}

}  // namespace gallery
