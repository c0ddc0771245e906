// Finds ports, and those on which a camera sends. Main thread only; nothing blocks.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "camera/port_scan.h"

namespace camview {

enum class FoundState { kCamera, kSending, kSilent, kBusy, kAccessDenied, kUnusable, kHangs };

struct FoundPort {
  int number;
  FoundState state;
  std::string holder;           // with kBusy, the program that uses it, if known; otherwise ""
  double recordsPerSecond = 0;  // of a camera
};

// Reads all ports at once for about a second. Absent ones are not reported. A port that is open in this program is
// reported as busy and not disturbed.
class PortFinder {
 public:
  // Starts or restarts.
  void Start();
  // Returns whether all ports have been reported.
  bool IsDone() const { return !scan_ || isDone_; }
  // Returns the ports found since the last call, each once: unusable ones at once, others after a second.
  std::vector<FoundPort> Take();

 private:
  std::unique_ptr<camera::PortScan> scan_;
  std::set<int> taken_;
  bool isDone_ = false;
};

}  // namespace camview
