// Which ports there are, and on which a camera sends; on threads of its own. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "camera/ports.h"

namespace camview {

enum class FoundState { kCamera, kSending, kSilent, kBusy, kAccessDenied, kUnusable, kHangs };

struct FoundPort {
  int number;
  FoundState state;
  std::string holder;           // with kBusy, the program that has it, where the system tells; else ""
  double recordsPerSecond = 0;  // of a camera
  long long bytes = 0;          // received
};

// Reads all ports at once for about a second. Absent ones are not reported. A port that is open in this program is
// reported as busy and not disturbed.
class PortFinder {
 public:
  PortFinder();
  ~PortFinder();  // does not wait
  PortFinder(const PortFinder&) = delete;
  PortFinder& operator=(const PortFinder&) = delete;

  void Start();
  void Cancel();
  bool IsDone();
  // The ports found since the last call, each once: unusable ones at once, others after a second.
  std::vector<FoundPort> Take();

 private:
  struct Search;
  std::unique_ptr<Search> search_;
};

}  // namespace camview
