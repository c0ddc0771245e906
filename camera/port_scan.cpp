#include "camera/port_scan.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "camera/camera_port.h"
#include "camera/line_analysis.h"
#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camera/shared_thread.h"

namespace camera {

namespace {

// A scan takes less than two seconds, including start-up on a busy machine.
constexpr double kListenSeconds = 0.9;
constexpr double kTryRatesUntil = 1.4;
constexpr double kGiveUpSeconds = 1.6;
constexpr DWORD kTurnMs = 50;
// The time to try a rate: at least this, or the time of this number of bytes if that is longer.
constexpr double kMinTrySeconds = 0.045;
constexpr double kBytesOfTry = 20;
constexpr size_t kSampleBytes = 512;
constexpr size_t kProbeStack = 256 * 1024;

// Reads a port until that time or until `isStopped`.
void Listen(HANDLE port, double until, const std::atomic<bool>& isStopped, PortReport* listened) {
  PortReport& report = *listened;
  PortReader reader(port);
  const double from = Now();
  std::string bytes;
  double seconds = from;
  while (Now() < until && !isStopped && !report.wasDisconnected) {
    const PortReader::Outcome outcome = reader.Read(kTurnMs, nullptr, &bytes, &seconds);
    report.wasDisconnected = outcome == PortReader::Outcome::kGone;
    if (outcome != PortReader::Outcome::kBytes) continue;
    FeedStream(&report.stream, seconds, bytes, nullptr);
    report.arrivals.push_back({seconds, static_cast<int>(bytes.size())});
    if (report.sample.size() < kSampleBytes) report.sample += bytes;
  }
  EndStream(&report.stream);
  report.listenedSeconds = Now() - from;
  report.detectionProbability = DetectionProbability(report.arrivals, from, Now());
}

// Returns the bytes received at another baud rate.
std::string ListenAt(HANDLE port, int rate, double seconds) {
  kv::SetPortBaudRate(port, static_cast<DWORD>(rate));
  PurgeComm(port, PURGE_RXCLEAR);
  PortReader reader(port);
  std::string received, bytes;
  double arrival = 0;
  for (const double until = Now() + seconds; Now() < until;) {
    const auto leftMs = static_cast<DWORD>((until - Now()) * 1000 + 1);
    if (reader.Read(leftMs, nullptr, &bytes, &arrival) == PortReader::Outcome::kBytes) received += bytes;
  }
  // The first byte may have begun at the previous rate.
  return received.substr(std::min<size_t>(received.size(), 1));
}

// For a port that sends neither records nor text: tries the rates that its bytes suggest, then the usual ones.
void TryRates(HANDLE port, double until, const std::atomic<bool>& isStopped, PortReport* listened) {
  PortReport& report = *listened;
  report.guessedRates = GuessRates(report.sample, static_cast<int>(kv::kCameraBaudRate));
  std::vector<int> rates = report.guessedRates;
  for (const int rate : kUsualRates) {
    if (std::ranges::find(rates, rate) == rates.end()) rates.push_back(rate);
  }
  for (const int rate : rates) {
    const double seconds = std::max(kMinTrySeconds, kBytesOfTry * 10 / rate);
    if (isStopped || Now() + seconds > until || !report.recordRates.empty()) break;
    const std::string received = ListenAt(port, rate, seconds);
    if (LooksLikeRecords(received)) {
      report.recordRates.push_back(rate);
    } else if (received.size() >= kBytesOfTry / 2 && LooksLikeText(received)) {
      report.textRates.push_back(rate);
    }
  }
}

}  // namespace

// The scan of one port. Its thread writes `report` and then sets `isDone`; nothing else accesses the report before.
// Scan and thread share ownership, so a blocked thread keeps its probe alive.
struct PortScan::Probe {
  PortReport report;
  std::shared_ptr<const PortHolders> holders;
  double start = 0;
  std::atomic<bool> isStopped{false}, isDone{false};

  void Run();
};

void PortScan::Probe::Run() {
  Port port;
  report.port = OpenPort(report.number, holders.get(), &port);
  if (port.isOpen()) {
    Listen(port.handle(), start + kListenSeconds, isStopped, &report);
    const bool isGarbage = !IsCamera(report) && report.stream.bytes > 0 && !LooksLikeText(report.sample);
    if (isGarbage && !report.wasDisconnected) TryRates(port.handle(), start + kTryRatesUntil, isStopped, &report);
    port.Close();
  }
  report.isComplete = true;
  isDone = true;
}

std::shared_ptr<PortScan::Probe> PortScan::StartProbe(int number, double start,
                                                      const std::shared_ptr<const PortHolders>& holders) {
  auto probe = std::make_shared<Probe>();
  probe->report.number = number;
  probe->holders = holders;
  probe->start = start;
  if (HANDLE thread = StartShared<&Probe::Run>(probe, kProbeStack)) CloseHandle(thread);
  return probe;
}

PortScan::PortScan() : probes_(kv::kLastScannedPort - kv::kFirstScannedPort + 1) {}

PortScan::~PortScan() {
  for (const auto& probe : probes_) {
    if (probe) probe->isStopped = true;
  }
}

void PortScan::Start() {
  start_ = Now();
  const auto holders = std::make_shared<const PortHolders>(FindPortHolders());
  for (int port = kv::kFirstScannedPort; port <= kv::kLastScannedPort; ++port) {
    std::shared_ptr<Probe>& probe = probes_[static_cast<size_t>(port - kv::kFirstScannedPort)];
    if (!probe || probe->isDone) probe = StartProbe(port, start_, holders);
  }
}

bool PortScan::IsOver() const {
  return Now() >= start_ + kGiveUpSeconds ||
         std::ranges::all_of(probes_, [](const auto& probe) { return probe && probe->isDone; });
}

std::vector<PortReport> PortScan::Reports() const {
  std::vector<PortReport> reports;
  for (const auto& probe : probes_) {
    if (probe && probe->isDone) {
      reports.push_back(probe->report);
    } else {
      reports.emplace_back();
      reports.back().number = kv::kFirstScannedPort + static_cast<int>(reports.size()) - 1;
    }
  }
  return reports;
}

}  // namespace camera
