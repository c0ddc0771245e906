// How likely one press of Tarnwick's button finds a sender. Tarnwick listens to a port with a single read, which begins
// at any moment and ends at the first pause of 5 ms, with 64 bytes, or unheard after 250 ms; more than 15 bytes make
// the port the camera's. Pure, any thread.
#pragma once

#include <span>

namespace camtool {

struct Arrival {
  double seconds;
  int bytes;
};

// The share, 0 to 1, of the moments at which such a read would have found the sender, judged by what arrived while the
// port was watched `from` .. `to`. Arrivals are in order and within; none at all gives 0.
double PressChance(std::span<const Arrival> arrivals, double from, double to);

}  // namespace camtool
