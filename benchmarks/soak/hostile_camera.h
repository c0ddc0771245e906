// A camera with all faults whose records carry their numbers, so that what the tool saw can be held against what was
// sent.
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "app/camera_record.h"
#include "camera/ports.h"
#include "camtool/faults.h"

namespace soak {

// The number that points carry, or -1 when they carry none.
long NumberIn(const kv::CameraPoint (&points)[kv::kPointCount]);

struct SentRecord {
  double seconds;    // on camtool's clock
  bool isFaulty;     // dropped, cut, corrupted, merged, with garbage, twice, or next to such
  bool isDelivered;  // the line took it
};

class HostileCamera {
 public:
  HostileCamera(int portNumber, std::uint32_t seed);
  ~HostileCamera();
  HostileCamera(const HostileCamera&) = delete;
  HostileCamera& operator=(const HostileCamera&) = delete;

  // Closes the port and lets go of the line until the object that it gives is gone.
  std::unique_lock<std::mutex> Unplugged();
  std::vector<SentRecord> Sent() const;
  const camtool::FaultInjector& Faults() const { return faults_; }  // after Stop
  void Stop();

 private:
  void Stream();

  bool Send(const std::string& bytes);
  void HangUp();

  int portNumber_;
  camera::Port port_;
  camtool::FaultInjector faults_;
  std::atomic<bool> stop_{false};
  std::mutex line_;  // guards the port
  mutable std::mutex mutex_;
  std::vector<SentRecord> sent_;
  std::thread thread_;
};

}  // namespace soak
