// Analysis of the bytes received by a scan: the baud rate of a camera, and the probability that Tarnwick's button finds
// it. Pure, any thread.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camera {

// ---- Baud rate of a camera ------------------------------------------------------------------------------------------
//
// A receiver set to another rate samples the sender's bits at wrong times. Records, which consist of digits and commas,
// are then received as a few different byte values, which depend on the rate.

// The rates of interface boards and adapters, the most usual first.
inline constexpr std::array<int, 12> kUsualRates = {9600, 115200, 19200, 57600,  4800,   2400,
                                                    1200, 230400, 28800, 460800, 128000, 76800};

// Returns what a receiver at `receiverRate` receives when bytes are sent at `sentRate` without pauses, after an idle
// line: 8 data bits, no parity, one stop bit, each bit sampled in its middle, missing stop bits ignored.
std::string ReceiveAtRate(std::string_view sent, int sentRate, int receiverRate);

// Returns the rates of kUsualRates at which records may have been sent, judged by the bytes received at `receiverRate`,
// most likely first; none when there are too few bytes or no rate explains them.
std::vector<int> GuessRates(std::string_view received, int receiverRate);

// Returns whether bytes look like parts of records: digits, commas and closing bytes with the commas five bytes apart.
// For sections that are too short to contain a record.
bool LooksLikeRecords(std::string_view bytes);

// Returns whether nearly all bytes are printable.
bool LooksLikeText(std::string_view bytes);

// ---- Probability that the button finds the camera -------------------------------------------------------------------
//
// Tarnwick reads a port once. The read starts at any time and ends at the first pause of 5 ms, after 64 bytes, or after
// 250 ms without bytes; more than 15 bytes make the port the camera's.

struct Arrival {
  double seconds;
  int bytes;
};

// Returns the fraction, 0 to 1, of start times at which such a read would have found the sender, given the arrivals
// while the port was read from `from` to `to`. Arrivals are in order and within that time; without any the result is 0.
double DetectionProbability(std::span<const Arrival> arrivals, double from, double to);

}  // namespace camera
