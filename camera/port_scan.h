// Scans COM1 to COM98: opens all ports at once, as Tarnwick does, and reads each for about a second on its own thread.
// A scan belongs to one thread.
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
  bool isComplete = false;  // false: still being opened or read, or opening takes longer than the scan
  PortStatus port;
  RecordStream stream;
  std::vector<Arrival> arrivals;
  std::string sample;  // the first bytes received
  double listenedSeconds = 0;
  bool wasDisconnected = false;     // the port failed while it was read
  double detectionProbability = 0;  // of one press of Tarnwick's button
  std::vector<int> recordRates;     // baud rates at which records were received
  std::vector<int> textRates;       // baud rates at which other text was received
  std::vector<int> guessedRates;    // baud rates that may give records, if none were received
};

inline bool IsCamera(const PortReport& report) {
  return report.stream.records > 0;
}

class PortScan {
 public:
  PortScan();
  // Closes the ports within 50 ms, without waiting for that.
  ~PortScan();
  PortScan(const PortScan&) = delete;
  PortScan& operator=(const PortScan&) = delete;

  // Starts a scan; ports still blocked from the previous scan are not opened again.
  void Start();
  // Returns whether all ports are complete or the time is over.
  bool IsOver() const;
  // Returns the reports of all ports in order; those of complete ports are final.
  std::vector<PortReport> Reports() const;

 private:
  struct Probe;
  static std::shared_ptr<Probe> StartProbe(int number, double start, const std::shared_ptr<const PortHolders>& holders);

  double start_ = 0;
  std::vector<std::shared_ptr<Probe>> probes_;
};

}  // namespace camera
