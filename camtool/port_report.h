// What a scan has found out about the ports, as text. Pure, any thread.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "camera/ports.h"
#include "camera/record_stream.h"
#include "camtool/line_analysis.h"

namespace camtool {

struct PortReport {
  int number = 0;
  bool hasAnswered = false;  // false: opening it takes longer than the scan
  camera::PortStatus port;
  camera::RecordStream stream;
  std::vector<Arrival> arrivals;
  std::string sample;  // the first bytes that came
  double listenedSeconds = 0;
  bool wasDisconnected = false;     // failed while it was read
  double detectionProbability = 0;  // of one press of Tarnwick's button
  std::vector<int> recordRates;     // baud rates at which records were received
  std::vector<int> textRates;       // at which other text was received
  std::vector<int> guessedRates;    // at which its bytes could be records, if none were received
};

bool IsCamera(const PortReport& report);

// The lines of all ports; those that are absent are put together unless `all`.
std::string DescribePorts(std::span<const PortReport> reports, bool all);

// Which port Tarnwick would take, and how likely one press finds the camera.
std::string DescribeVerdict(std::span<const PortReport> reports);

}  // namespace camtool
