// What is on COM1 to COM98: all ports are opened at once, as Tarnwick opens them, and read for about a second, each on
// a thread of its own. One thread for each scan.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "camera/line_analysis.h"
#include "camera/ports.h"
#include "camera/record_stream.h"

namespace camera {

struct PortReport {
  int number = 0;
  bool isComplete = false;  // false: not yet; when the scan is over, opening it takes longer than that
  PortStatus port;
  RecordStream stream;
  std::vector<Arrival> arrivals;
  std::string sample;  // the first bytes that came
  double listenedSeconds = 0;
  bool wasDisconnected = false;     // failed while it was read
  double detectionProbability = 0;  // of one press of Tarnwick's button
  std::vector<int> recordRates;     // baud rates at which records were received
  std::vector<int> textRates;       // at which other text was received
  std::vector<int> guessedRates;    // at which its bytes could be records, if none were received
};

inline bool IsCamera(const PortReport& report) {
  return report.stream.records > 0;
}

class PortScan {
 public:
  PortScan();
  // Lets go of the ports within a twentieth of a second, without waiting for that.
  ~PortScan();
  PortScan(const PortScan&) = delete;
  PortScan& operator=(const PortScan&) = delete;

  // Starts a scan; what still hangs from the one before is not asked again.
  void Start();
  // All ports have answered, or the time for that is over.
  bool IsOver() const;
  // Of all ports, in their order; complete for those that have answered.
  std::vector<PortReport> Reports() const;

 private:
  struct Probe;
  static std::shared_ptr<Probe> StartProbe(int number, double start, const std::shared_ptr<const PortHolders>& holders);
  static DWORD WINAPI RunProbe(void* parameter);

  double start_ = 0;
  std::vector<std::shared_ptr<Probe>> probes_;
};

}  // namespace camera
