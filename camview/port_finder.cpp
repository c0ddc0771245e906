#include "camview/port_finder.h"

#include <memory>
#include <vector>

#include "camera/port_scan.h"
#include "camera/ports.h"
#include "camera/record_stream.h"

namespace camview {

namespace {

FoundState StateOf(const camera::PortReport& report) {
  if (!report.isComplete) return FoundState::kHangs;
  switch (report.port.state) {
    case camera::PortState::kBusy: return FoundState::kBusy;
    case camera::PortState::kAccessDenied: return FoundState::kAccessDenied;
    case camera::PortState::kUnusable: return FoundState::kUnusable;
    default: break;
  }
  if (camera::IsCamera(report)) return FoundState::kCamera;
  return report.stream.bytes > 0 ? FoundState::kSending : FoundState::kSilent;
}

}  // namespace

void PortFinder::Start() {
  scan_ = std::make_unique<camera::PortScan>();
  taken_.clear();
  isDone_ = false;
  scan_->Start();
}

std::vector<FoundPort> PortFinder::Take() {
  std::vector<FoundPort> ports;
  if (!scan_) return ports;
  // Before Reports(), whose results are complete if this is true.
  isDone_ = scan_->IsOver();
  for (const camera::PortReport& report : scan_->Reports()) {
    if (!report.isComplete && !isDone_) continue;
    const bool isAbsent = report.isComplete && report.port.state == camera::PortState::kAbsent;
    if (isAbsent || !taken_.insert(report.number).second) continue;
    ports.push_back({report.number, StateOf(report), report.port.holder, camera::RecordRate(report.stream)});
  }
  return ports;
}

}  // namespace camview
