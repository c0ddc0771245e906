// Simulates faults of a serial line: returns the bytes to send in place of the records. The same plan with the same
// seed gives the same bytes. Pure, any thread.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace camtool {

// The frequency of a fault.
struct Trigger {
  enum Kind { kNever, kChance, kEveryNth, kPeriod } kind = kNever;
  double amount = 0;  // probability 0 to 1 for each record; number of records; seconds
};

enum Fault {
  kDropFault,        // the record is not sent
  kDuplicateFault,   // it is sent twice, without a pause between
  kCorruptFault,     // one to three of its bytes are replaced
  kTruncateFault,    // it is truncated
  kMergeFault,       // it loses its closing bytes and runs into the next one
  kGarbageFault,     // up to 64 random bytes come before it
  kPauseFault,       // nothing is sent for a while after it
  kDisconnectFault,  // the port is closed after it for a while, then opened again
  kSlowFault,        // the following records are sent slowly for a while
  kFastFault,        // the following records are sent too fast for a while
  kFaultCount
};

inline constexpr std::array<const char*, kFaultCount> kFaultNames = {
    "dropped", "duplicated", "corrupted", "cut", "merged", "garbage bursts", "pauses", "hang-ups", "slow", "fast"};

// Parses the frequency of a fault: "5%" or "0.05" is a probability for each record, "50" means every 50th record, "10s"
// and "500ms" are periods.
bool ParseTrigger(std::string_view text, Trigger* trigger);

struct FaultPlan {
  std::array<Trigger, kFaultCount> triggers{};
  double pauseSeconds = 0.5;
  double disconnectSeconds = 2;
  double rateChangeSeconds = 2;  // duration of slow and fast
  std::uint32_t seed = 1;
};

// Factors of the pace.
inline constexpr double kSlowPace = 0.25;
inline constexpr double kFastPace = 3;

// What to send in place of a record.
struct FaultStep {
  std::string bytes;
  double pauseSeconds = 0;       // afterward, nothing is sent
  double disconnectSeconds = 0;  // afterward, the port is closed
  double pace = 1;               // for the next record: 2 = in half the time
};

struct FaultInjector {
  FaultPlan plan;
  std::mt19937 random;
  std::array<long, kFaultCount> happened{};
  long records = 0;
  double lastSeconds = 0;
  double slowUntil = 0, fastUntil = 0;
  std::string held;  // a merged record, to be sent with the next one
};

FaultInjector MakeFaultInjector(const FaultPlan& plan);

// Applies faults to the next record, which is due at `seconds` of the camera's clock (from 0, never decreasing).
FaultStep InjectFaults(FaultInjector* injector, double seconds, std::string_view record);

}  // namespace camtool
