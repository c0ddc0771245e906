// Sensor recorder: a chart of the last hour of values from a serial port, one number per line. The chart can be frozen,
// zoomed, read with the pointer and copied to a spreadsheet. recorder.rc has the layout.
#include <cmath>
#include <cstdlib>
#include <string>

#include "ids.h"
#include "kv/kv.h"

namespace {

constexpr UINT_PTR kReadTimer = 1;
constexpr UINT kReadMs = 100;
constexpr double kHour = 3600;
constexpr DWORD kCapacity = 360000;  // one hour at 100 values a second

HANDLE port = INVALID_HANDLE_VALUE;
std::string line;

bool OpenPort(const std::wstring& name) {
  port = CreateFileW((L"\\\\.\\" + name).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  DCB settings{.DCBlength = sizeof(settings)};
  if (port == INVALID_HANDLE_VALUE || !GetCommState(port, &settings)) return false;
  settings.BaudRate = CBR_9600;
  settings.ByteSize = 8;
  COMMTIMEOUTS atOnce{.ReadIntervalTimeout = MAXDWORD};
  return SetCommState(port, &settings) && SetCommTimeouts(port, &atOnce);
}

void Connect(HWND dialog) {
  wchar_t name[16] = L"";
  GetDlgItemTextW(dialog, IDC_PORT, name, ARRAYSIZE(name));
  if (port != INVALID_HANDLE_VALUE) CloseHandle(port);
  const bool opened = OpenPort(name);
  kv::AppendStripChartValue(dialog, IDC_CHART, 0, kv::StripChartNow(), NAN);  // a gap, because there is no value
  SetDlgItemTextW(dialog, IDC_STATUS, opened ? L"Waiting for a value." : L"This port cannot be opened.");
}

void TakeLine(HWND dialog) {
  char* end = nullptr;
  const double value = std::strtod(line.c_str(), &end);
  if (end != line.c_str()) {
    kv::AppendStripChartValue(dialog, IDC_CHART, 0, kv::StripChartNow(), value);
    SetDlgItemTextA(dialog, IDC_STATUS, line.c_str());
  }
  line.clear();
}

void ReadPort(HWND dialog) {
  char bytes[256];
  DWORD count = 0;
  while (ReadFile(port, bytes, sizeof(bytes), &count, nullptr) && count > 0) {
    for (DWORD i = 0; i < count; ++i) {
      if (bytes[i] == '\n' || line.size() > 60) {
        TakeLine(dialog);
      } else if (bytes[i] != '\r') {
        line += bytes[i];
      }
    }
  }
}

INT_PTR CALLBACK Recorder(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      kv::SetStripChartCapacity(dialog, IDC_CHART, kCapacity);
      kv::SetStripChartChannel(dialog, IDC_CHART, 0, {.name = L"Temperature", .unit = L"°C"});
      kv::SetStripChartView(dialog, IDC_CHART, kHour, 0, 0);
      SetDlgItemTextW(dialog, IDC_PORT, L"COM3");
      SetTimer(dialog, kReadTimer, kReadMs, nullptr);
      return TRUE;
    case WM_TIMER: ReadPort(dialog); return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDC_CONNECT) Connect(dialog);
      if (LOWORD(wParam) == IDC_FREEZE) kv::FreezeStripChart(dialog, IDC_CHART, IsDlgButtonChecked(dialog, IDC_FREEZE));
      return FALSE;
    default: return FALSE;
  }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  return kv::RunDialog(instance, {.templateName = L"RECORDER",
                                  .procedure = Recorder,
                                  .positionName = "Samples.SensorRecorder",
                                  .version = L"1.0",
                                  .minimumSize = {420, 260}});
}
