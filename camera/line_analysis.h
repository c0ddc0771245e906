// What a scan concludes from the bytes that it received: at which rate a camera sends, and how likely one press of
// Tarnwick's button finds it. Pure, any thread.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camera {

// ---- At which rate a camera sends -----------------------------------------------------------------------------------
//
// A receiver set to another rate samples the sender's bits at the wrong moments. What it reads then is garbage, but not
// any garbage: records of digits and commas become few different bytes, other ones for each rate.

// The rates that interface boards and adapters have, the usual ones first.
inline constexpr std::array<int, 12> kUsualRates = {9600, 115200, 19200, 57600,  4800,   2400,
                                                    1200, 230400, 28800, 460800, 128000, 76800};

// What a receiver at `receiverRate` makes of bytes sent at `sentRate` without pauses between them, after a quiet line:
// 8 data bits, no parity, one stop bit, each bit sampled in its middle, a missing stop bit ignored.
std::string ReceiveAtRate(std::string_view sent, int sentRate, int receiverRate);

// The rates of kUsualRates at which bytes that a receiver at `receiverRate` got could have been records, likeliest
// first; none when the bytes are too few or look like nothing of the kind.
std::vector<int> GuessRates(std::string_view received, int receiverRate);

// Whether bytes received at the right rate would be of records: a stretch of digits, commas and closing bytes with the
// commas five apart. For stretches that are too short to hold a whole record.
bool LooksLikeRecords(std::string_view bytes);

// Whether nearly all bytes print.
bool LooksLikeText(std::string_view bytes);

// ---- How a press finds the camera -----------------------------------------------------------------------------------
//
// Tarnwick reads a port once, which begins at any moment and ends at the first pause of 5 ms, with
// 64 bytes, or without any after 250 ms; more than 15 bytes make the port the camera's.

struct Arrival {
  double seconds;
  int bytes;
};

// The share, 0 to 1, of the moments at which such a read would have found the sender, judged by what arrived while the
// port was read `from` .. `to`. Arrivals are in order and within; none at all gives 0.
double DetectionProbability(std::span<const Arrival> arrivals, double from, double to);

}  // namespace camera
