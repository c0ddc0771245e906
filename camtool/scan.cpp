// camtool scan: what is on each port, and which one Tarnwick would take.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "app/camera_link.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camtool/arguments.h"
#include "camtool/commands.h"
#include "camtool/console.h"
#include "camtool/line_analysis.h"
#include "camtool/port_report.h"

namespace camtool {

namespace {

// A whole scan takes less than two seconds, with room for starting and for a busy machine.
constexpr double kListenSeconds = 0.9;
constexpr double kTryRatesUntil = 1.4;
constexpr double kGiveUpSeconds = 1.6;
constexpr DWORD kTurnMs = 50;
// How long to try a rate: this time, or as long as this many bytes take if that is longer.
constexpr double kMinTrySeconds = 0.045;
constexpr double kBytesOfTry = 20;
constexpr size_t kSampleBytes = 512;
constexpr size_t kProbeStack = 256 * 1024;
constexpr double kWatchPause = 0.4;

struct Settings {
  bool watch = false;
  bool all = false;
} settings;

const Option kOptions[] = {
    {"--watch", nullptr, "scan repeatedly, until Ctrl+C", &settings.watch},
    {"--all", nullptr, "print a line for each absent port, too", &settings.all},
};

constexpr int kExits[] = {kDone, kUsageError, kNoCamera};

// One port's part of a scan. Its thread writes `report` and then `isDone`; nobody else touches the report before. The
// scan and the thread each own a share: a thread that hangs keeps its own.
struct Probe {
  PortReport report;
  std::shared_ptr<const camera::PortHolders> holders;
  double start = 0;
  std::atomic<bool> isDone{false};
};

void Listen(Probe* probe, HANDLE port) {
  PortReport& report = probe->report;
  camera::PortReader reader(port);
  const double from = camera::Now();
  const double until = probe->start + kListenSeconds;
  std::string bytes;
  double seconds = from;
  while (camera::Now() < until && !report.wasDisconnected) {
    const camera::PortReader::Outcome outcome = reader.Read(kTurnMs, nullptr, &bytes, &seconds);
    report.wasDisconnected = outcome == camera::PortReader::Outcome::kGone;
    if (outcome != camera::PortReader::Outcome::kBytes) continue;
    camera::FeedStream(&report.stream, seconds, bytes, nullptr);
    report.arrivals.push_back({seconds, static_cast<int>(bytes.size())});
    if (report.sample.size() < kSampleBytes) report.sample += bytes;
  }
  camera::EndStream(&report.stream);
  report.listenedSeconds = camera::Now() - from;
  report.detectionProbability = DetectionProbability(report.arrivals, from, camera::Now());
}

// What is received at another baud rate.
std::string ListenAt(HANDLE port, int rate, double seconds) {
  kv::SetPortBaudRate(port, static_cast<DWORD>(rate));
  PurgeComm(port, PURGE_RXCLEAR);
  camera::PortReader reader(port);
  std::string received, bytes;
  double arrival = 0;
  for (const double until = camera::Now() + seconds; camera::Now() < until;) {
    const auto leftMs = static_cast<DWORD>((until - camera::Now()) * 1000 + 1);
    if (reader.Read(leftMs, nullptr, &bytes, &arrival) == camera::PortReader::Outcome::kBytes) received += bytes;
  }
  // The first byte may have begun at the rate before.
  return received.substr(std::min<size_t>(received.size(), 1));
}

// For a port that sends what makes no sense: first the rates that its bytes suggest, then the usual ones.
void TryRates(Probe* probe, HANDLE port) {
  PortReport& report = probe->report;
  report.guessedRates = GuessRates(report.sample, static_cast<int>(kv::kCameraBaudRate));
  std::vector<int> rates = report.guessedRates;
  for (const int rate : kUsualRates) {
    if (std::ranges::find(rates, rate) == rates.end()) rates.push_back(rate);
  }
  for (const int rate : rates) {
    const double seconds = std::max(kMinTrySeconds, kBytesOfTry * 10 / rate);
    if (camera::Now() + seconds > probe->start + kTryRatesUntil || !report.recordRates.empty()) break;
    const std::string received = ListenAt(port, rate, seconds);
    if (LooksLikeRecords(received)) {
      report.recordRates.push_back(rate);
    } else if (received.size() >= kBytesOfTry / 2 && LooksLikeText(received)) {
      report.textRates.push_back(rate);
    }
  }
}

DWORD WINAPI RunProbe(void* parameter) {
  const std::unique_ptr<std::shared_ptr<Probe>> share(static_cast<std::shared_ptr<Probe>*>(parameter));
  Probe* probe = share->get();
  PortReport& report = probe->report;
  camera::Port port;
  report.port = camera::OpenPort(report.number, *probe->holders, &port);
  if (port.isOpen()) {
    Listen(probe, port.handle());
    const bool isGarbage = !IsCamera(report) && report.stream.bytes > 0 && !LooksLikeText(report.sample);
    if (isGarbage && !report.wasDisconnected) TryRates(probe, port.handle());
    port.Close();
  }
  report.hasAnswered = true;
  probe->isDone = true;
  return 0;
}

std::shared_ptr<Probe> StartProbe(int number, double start, const std::shared_ptr<const camera::PortHolders>& holders) {
  auto probe = std::make_shared<Probe>();
  probe->report.number = number;
  probe->holders = holders;
  probe->start = start;
  auto* share = new std::shared_ptr<Probe>(probe);
  HANDLE thread = CreateThread(nullptr, kProbeStack, RunProbe, share, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (thread) {
    CloseHandle(thread);
  } else {
    delete share;
  }
  return probe;
}

// One probe for each port; those that still hang from the scan before stay.
using Probes = std::vector<std::shared_ptr<Probe>>;

std::vector<PortReport> Scan(Probes* probes) {
  const double start = camera::Now();
  const auto holders = std::make_shared<const camera::PortHolders>(camera::FindPortHolders());
  for (int port = kv::kFirstScannedPort; port <= kv::kLastScannedPort; ++port) {
    std::shared_ptr<Probe>& probe = (*probes)[static_cast<size_t>(port - kv::kFirstScannedPort)];
    if (!probe || probe->isDone) probe = StartProbe(port, start, holders);
  }
  const auto allDone = [&] {
    return std::ranges::all_of(*probes, [](const auto& probe) { return probe->isDone.load(); });
  };
  while (!allDone() && camera::Now() < start + kGiveUpSeconds && !IsStopRequested()) {
    camera::WaitUntil(camera::Now() + 0.01, StopEvent());
  }
  std::vector<PortReport> reports;
  for (const auto& probe : *probes) {
    if (probe->isDone) {
      reports.push_back(probe->report);
    } else {
      reports.emplace_back();
      reports.back().number = probe->report.number;
    }
  }
  return reports;
}

int RunScan(const std::vector<std::string>&) {
  Probes probes(kv::kLastScannedPort - kv::kFirstScannedPort + 1);
  StopEvent();
  bool found = false;
  for (;;) {
    const std::vector<PortReport> reports = Scan(&probes);
    // What a scan that was interrupted has seen says nothing about the ports that it has not.
    if (IsStopRequested() && settings.watch) break;
    found = std::ranges::any_of(reports, IsCamera);
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
    "says what is on COM1 to COM98 and which port Tarnwick would take",
    "Takes less than two seconds. Each port is one of: absent, busy, access denied, unusable (opens, but is no serial\n"
    "port), hangs, silent, sending (but no camera), camera.\n",
    kOptions,
    kExits,
    RunScan};

}  // namespace camtool
