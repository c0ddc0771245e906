// camtool scan: reports what each port sends, and which one Tarnwick would select.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "camera/port_scan.h"
#include "camera/ports.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "camtool/port_report.h"
#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

constexpr double kTurnSeconds = 0.01;
constexpr double kWatchPause = 0.4;

struct Settings {
  bool watch = false;
  bool all = false;
} settings;

const kv::Option kOptions[] = {
    {"--watch", nullptr, "scan repeatedly, until Ctrl+C", &settings.watch},
    {"--all", nullptr, "print a line for each absent port, too", &settings.all},
};

constexpr int kExits[] = {kDone, kUsageError, kNoCamera};

int RunScan(const std::vector<std::string>&) {
  camera::PortScan scan;
  StopEvent();
  bool found = false;
  for (;;) {
    scan.Start();
    while (!scan.IsOver() && !IsStopRequested()) camera::WaitUntil(camera::Now() + kTurnSeconds, StopEvent());
    const std::vector<camera::PortReport> reports = scan.Reports();
    // The results of an interrupted scan are incomplete.
    if (IsStopRequested() && settings.watch) break;
    found = std::ranges::any_of(reports, camera::IsCamera);
    std::printf("%s\n%s", DescribePorts(reports, settings.all).c_str(), DescribeVerdict(reports).c_str());
    if (settings.watch) std::puts("----");
    std::fflush(stdout);
    if (!settings.watch || !camera::WaitUntil(camera::Now() + kWatchPause, StopEvent())) break;
  }
  return found ? kDone : kNoCamera;
}

}  // namespace

const Command kScanCommand = {
    "scan",
    "",
    "reports what is on COM1 to COM98 and which port Tarnwick would take",
    "Takes less than two seconds. Each port is one of: absent, busy, access denied, unusable (opens, but is not a\n"
    "serial port), hangs, silent, sending (but no camera), camera.\n",
    kOptions,
    kExits,
    RunScan};

}  // namespace camtool
