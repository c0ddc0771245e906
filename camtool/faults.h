// What can go wrong on the way from the camera, made on purpose: which bytes a line with faults carries in place of the
// records that were sent. The same plan with the same seed gives the same bytes. Pure, any thread.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace camtool {

// How often something happens.
struct Trigger {
  enum Kind { kNever, kChance, kEveryNth, kPeriod } kind = kNever;
  double amount = 0;  // chance 0 to 1 for each record; a count of records; seconds
};

enum Fault {
  kDropFault,       // the record is not sent
  kDuplicateFault,  // it is sent twice, without a pause between
  kCorruptFault,    // one to three of its bytes are replaced
  kCutFault,        // it ends early
  kMergeFault,      // it loses its closing bytes and runs into the next one
  kGarbageFault,    // up to 64 random bytes come before it
  kPauseFault,      // nothing is sent for a while after it
  kHangUpFault,     // the port is closed after it for a while, then opened again
  kSlowFault,       // from it on, records come slowly for a while
  kFastFault,       // from it on, records come too fast for a while
  kFaultCount
};

inline constexpr std::array<const char*, kFaultCount> kFaultNames = {
    "dropped", "duplicated", "corrupted", "cut", "merged", "garbage bursts", "pauses", "hang-ups", "slow", "fast"};

struct FaultPlan {
  std::array<Trigger, kFaultCount> triggers{};
  double pauseSeconds = 0.5;
  double hangUpSeconds = 2;
  double stretchSeconds = 2;  // how long slow and fast last
  std::uint32_t seed = 1;
};

// How much the pace changes.
inline constexpr double kSlowPace = 0.25;
inline constexpr double kFastPace = 3;

// What is to be sent in place of one record.
struct FaultStep {
  std::string bytes;
  double pauseSeconds = 0;   // afterwards, nothing is sent
  double hangUpSeconds = 0;  // afterwards, the port is closed
  double pace = 1;           // of the next record: 2 = in half the time
};

struct FaultInjector {
  FaultPlan plan;
  std::mt19937 random;
  std::array<long, kFaultCount> happened{};
  long records = 0;
  double lastSeconds = 0;
  double slowUntil = 0, fastUntil = 0;
  std::string held;  // a merged record that waits for the next one
};

FaultInjector MakeFaultInjector(const FaultPlan& plan);

// The next record, which is due at that time of the camera's own clock (from 0, never backwards).
FaultStep InjectFaults(FaultInjector* injector, double seconds, std::string_view record);

}  // namespace camtool
