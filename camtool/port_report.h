// What a scan has found out about the ports, as text. Pure, any thread.
#pragma once

#include <span>
#include <string>

#include "camera/port_scan.h"

namespace camtool {

// The lines of all ports; those that are absent are put together unless `all`.
std::string DescribePorts(std::span<const camera::PortReport> reports, bool all);

// Which port Tarnwick would take, and how likely one press finds the camera.
std::string DescribeVerdict(std::span<const camera::PortReport> reports);

}  // namespace camtool
