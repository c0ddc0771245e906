#include "benchmarks/soak/hostile_camera.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "app/camera_record.h"
#include "camera/ports.h"
#include "camtool/faults.h"

namespace soak {

namespace {

// Leaves a gap of more than 5 ms behind each record that comes in one go, so that the reader can get into step.
constexpr double kRecordSeconds = 0.011;
constexpr DWORD kPatienceMs = 20;
constexpr long kBase = 1000;  // both halves of a number stay below it, and below 1023

camtool::FaultPlan AllFaults(std::uint32_t seed) {
  using camtool::Trigger;
  camtool::FaultPlan plan;
  plan.seed = seed;
  for (const auto fault : {camtool::kDropFault, camtool::kDuplicateFault, camtool::kCorruptFault, camtool::kCutFault,
                           camtool::kMergeFault, camtool::kGarbageFault}) {
    plan.triggers[fault] = {Trigger::kChance, 0.01};
  }
  plan.triggers[camtool::kPauseFault] = {Trigger::kPeriod, 7};
  plan.triggers[camtool::kHangUpFault] = {Trigger::kPeriod, 23};
  plan.triggers[camtool::kSlowFault] = {Trigger::kPeriod, 31};
  plan.triggers[camtool::kFastFault] = {Trigger::kPeriod, 37};
  plan.hangUpSeconds = 1;
  return plan;
}

}  // namespace

long NumberIn(const kv::CameraPoint (&points)[kv::kPointCount]) {
  const auto isFirst = [&](const kv::CameraPoint& p) { return p.x == points[0].x && p.y == points[0].y; };
  if (!std::ranges::all_of(points, isFirst)) return -1;
  if (points[0].x < 0 || points[0].x >= kBase || points[0].y < 0 || points[0].y >= kBase) return -1;
  return points[0].y * kBase + points[0].x;
}

HostileCamera::HostileCamera(int portNumber, std::uint32_t seed)
    : portNumber_(portNumber), faults_(camtool::MakeFaultInjector(AllFaults(seed))), thread_([this] { Stream(); }) {}

HostileCamera::~HostileCamera() {
  Stop();
}

void HostileCamera::Stop() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
  HangUp();
}

std::vector<SentRecord> HostileCamera::Sent() const {
  const std::scoped_lock lock(mutex_);
  return sent_;
}

// Opens the port when it is not: after a hang-up, or when the line was unplugged.
bool HostileCamera::Send(const std::string& bytes) {
  if (bytes.empty()) return true;
  if (!port_.isOpen()) camera::OpenPort(portNumber_, {}, &port_);
  if (!port_.isOpen()) return false;
  const camera::Written written = camera::WritePort(port_.handle(), bytes.data(), bytes.size(), kPatienceMs);
  if (written == camera::Written::kGone) HangUp();
  return written == camera::Written::kAll;
}

void HostileCamera::HangUp() {
  port_.Close();
}

std::unique_lock<std::mutex> HostileCamera::Unplugged() {
  std::unique_lock<std::mutex> held(line_);
  HangUp();
  return held;
}

void HostileCamera::Stream() {
  const double start = camera::Now();
  double due = 0;
  for (long n = 0; !stop_ && n < kBase * kBase; ++n) {
    while (!stop_ && camera::Now() < start + due) camera::SleepUntil(std::min(start + due, camera::Now() + 0.1));
    kv::CameraPoint points[kv::kPointCount];
    std::ranges::fill(points, kv::CameraPoint{n % kBase, n / kBase});
    char record[kv::kRecordLength];
    kv::WriteRecord(points, record);
    const std::string_view whole(record, sizeof(record));
    const bool wasHeld = !faults_.held.empty();
    const camtool::FaultStep step = camtool::InjectFaults(&faults_, due, whole);
    {
      const std::scoped_lock held(line_);
      const bool isTaken = Send(step.bytes);
      if (step.hangUpSeconds > 0) HangUp();
      const std::scoped_lock lock(mutex_);
      sent_.push_back({camera::Now(), wasHeld || step.bytes != whole, isTaken});
    }
    due += kRecordSeconds / step.pace + step.pauseSeconds + step.hangUpSeconds;
  }
}

}  // namespace soak
