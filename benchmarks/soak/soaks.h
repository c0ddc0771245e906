// The two soaks. Each prints its table and returns 0 when nothing crashed, hung or failed to close.
#pragma once

#include <cstdint>

namespace soak {

int SoakTool(double seconds, std::uint32_t seed);
int SoakGallery(double seconds, std::uint32_t seed);

}  // namespace soak
