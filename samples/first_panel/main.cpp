// First panel: a gauge and a strip chart of a sensor that a worker thread reads, and a button that saves what the chart
// shows. docs/first-panel.md builds it in ten steps.
#include <atomic>
#include <chrono>
#include <cmath>
#include <stop_token>
#include <string>
#include <thread>

#include "ids.h"
#include "kv/kv.h"

namespace {

constexpr double kShownSeconds = 60;
constexpr UINT kTickMs = 100;

std::atomic<double> newest = NAN;  // written by the worker

// A real program waits for its device here.
double ReadSensor() {
  std::this_thread::sleep_for(std::chrono::milliseconds(10));
  const double seconds = GetTickCount() / 1000.0;
  return 60 + 25 * std::sin(seconds / 4) + 3 * std::sin(seconds * 3);
}

void ReadValues(const std::stop_token& stop, HWND panel) {
  while (!stop.stop_requested()) {
    newest = ReadSensor();
    kv::AppendStripChartValue(panel, IDC_CHART, 0, kv::StripChartNow(), newest);
  }
}

std::jthread worker;

void Start(HWND panel) {
  kv::SetInstrumentName(panel, IDC_GAUGE, L"Temperature");
  kv::SetInstrumentRange(panel, IDC_GAUGE, {.maximum = 100, .unit = L"°C"});
  const kv::InstrumentZone zones[] = {{0, 70, RGB(0, 150, 60)}, {70, 100, RGB(210, 30, 30)}};
  kv::SetInstrumentZones(panel, IDC_GAUGE, zones);
  kv::SetStripChartChannel(panel, IDC_CHART, 0, {.name = L"Temperature", .unit = L"°C"});
  kv::SetStripChartView(panel, IDC_CHART, kShownSeconds, 0, 0);
  worker = std::jthread(ReadValues, panel);
}

void Save(HWND panel) {
  std::wstring path = L"temperature.csv";
  if (!kv::AskSavePath(panel, L"Save the values", &path)) return;
  kv::StripTimeRange shown{};
  kv::GetStripChartTimes(panel, IDC_CHART, &shown);
  const bool saved = kv::SaveStripChartCsv(panel, IDC_CHART, path.c_str(), &shown);
  SetDlgItemTextW(panel, IDC_STATUS, saved ? (L"Saved: " + path).c_str() : kv::ErrorText().c_str());
}

INT_PTR CALLBACK Panel(HWND panel, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG: Start(panel); return TRUE;
    case WM_TIMER: return kv::SetInstrumentValue(panel, IDC_GAUGE, newest, TRUE);
    case WM_COMMAND:
      if (LOWORD(wParam) == IDC_SAVE) Save(panel);
      return FALSE;
    case WM_DESTROY: worker = {}; return FALSE;  // ends the thread and waits for it
    default: return FALSE;
  }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
  return kv::RunDialog(instance, {.templateName = L"PANEL",
                                  .procedure = Panel,
                                  .positionName = "Samples.FirstPanel",
                                  .version = L"1.0",
                                  .minimumSize = {480, 260},
                                  .tickMs = kTickMs});
}
