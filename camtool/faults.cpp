#include "camtool/faults.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

#include "kv/toolkit/arguments.h"

namespace camtool {

namespace {

constexpr size_t kClosingBytes = 2;
constexpr std::uint32_t kMaxGarbageBytes = 64;

// The standard library's distributions differ between compilers; these do not.
double Chance(std::mt19937* random) {
  return (*random)() / 4294967296.0;
}

size_t Below(std::mt19937* random, size_t end) {
  return (*random)() % end;
}

char RandomByte(std::mt19937* random) {
  return static_cast<char>((*random)() >> 24);
}

bool Fires(const Trigger& trigger, double drawn, long record, double before, double now) {
  switch (trigger.kind) {
    case Trigger::kChance: return drawn < trigger.amount;
    case Trigger::kEveryNth: return std::fmod(static_cast<double>(record), trigger.amount) == 0;
    case Trigger::kPeriod: return std::floor(now / trigger.amount) > std::floor(before / trigger.amount);
    default: return false;
  }
}

std::string Garbage(std::mt19937* random) {
  std::string bytes(1 + Below(random, kMaxGarbageBytes), '\0');
  for (char& byte : bytes) byte = RandomByte(random);
  return bytes;
}

void Corrupt(std::mt19937* random, std::string* bytes) {
  const size_t count = 1 + Below(random, 3);
  for (size_t i = 0; i < count && !bytes->empty(); ++i) (*bytes)[Below(random, bytes->size())] = RandomByte(random);
}

}  // namespace

bool ParseTrigger(std::string_view text, Trigger* trigger) {
  const auto read = [&](std::string_view unit, double factor, double* number) {
    if (!text.ends_with(unit)) return false;
    if (!kv::ParseNumber(text.substr(0, text.size() - unit.size()), number)) return false;
    *number *= factor;
    return true;
  };
  double number = 0;
  if (read("%", 0.01, &number)) {
    *trigger = {Trigger::kChance, number};
    return number >= 0 && number <= 1;
  }
  if (read("ms", 0.001, &number) || read("s", 1, &number)) {
    *trigger = {Trigger::kPeriod, number};
    return number >= 0.001;
  }
  if (!kv::ParseNumber(text, &number) || number < 0) return false;
  *trigger = number < 1 ? Trigger{Trigger::kChance, number} : Trigger{Trigger::kEveryNth, number};
  return number < 1 || (number == std::floor(number) && number <= 1e9);
}

FaultInjector MakeFaultInjector(const FaultPlan& plan) {
  return {.plan = plan, .random = std::mt19937(plan.seed)};
}

FaultStep InjectFaults(FaultInjector* injector, double seconds, std::string_view record) {
  ++injector->records;
  std::array<bool, kFaultCount> fires;
  for (int fault = 0; fault < kFaultCount; ++fault) {
    // Drawn for every fault, so that adding a fault to the plan does not change the others.
    const double drawn = Chance(&injector->random);
    fires[fault] = Fires(injector->plan.triggers[fault], drawn, injector->records, injector->lastSeconds, seconds);
    injector->happened[fault] += fires[fault];
  }
  injector->lastSeconds = seconds;
  // The details of faults use a separate generator, for the same reason.
  std::mt19937 details(injector->random());

  FaultStep step;
  std::string bytes(record);
  if (fires[kCorruptFault]) Corrupt(&details, &bytes);
  if (fires[kTruncateFault] && bytes.size() > 1) bytes.resize(1 + Below(&details, bytes.size() - 1));
  if (fires[kDuplicateFault]) bytes += bytes;
  if (fires[kGarbageFault]) bytes = Garbage(&details) + bytes;
  if (fires[kDropFault]) bytes.clear();
  bytes = injector->held + bytes;
  injector->held.clear();
  if (fires[kMergeFault] && bytes.size() > kClosingBytes) {
    injector->held = bytes.substr(0, bytes.size() - kClosingBytes);
    bytes.clear();
  }
  step.bytes = bytes;
  if (fires[kPauseFault]) step.pauseSeconds = injector->plan.pauseSeconds;
  if (fires[kDisconnectFault]) step.disconnectSeconds = injector->plan.disconnectSeconds;
  if (fires[kSlowFault]) injector->slowUntil = seconds + injector->plan.rateChangeSeconds;
  if (fires[kFastFault]) injector->fastUntil = seconds + injector->plan.rateChangeSeconds;
  if (seconds < injector->slowUntil) step.pace *= kSlowPace;
  if (seconds < injector->fastUntil) step.pace *= kFastPace;
  return step;
}

}  // namespace camtool
