// Describes the results of a scan as text. Pure, any thread.
#pragma once

#include <span>
#include <string>

#include "camera/port_scan.h"

namespace camtool {

// Returns the lines for all ports; absent ones are summarized unless `all`.
std::string DescribePorts(std::span<const camera::PortReport> reports, bool all);

// Returns which port Tarnwick would select, and the probability that one press of its button finds the camera.
std::string DescribeVerdict(std::span<const camera::PortReport> reports);

}  // namespace camtool
