#include "kv/framework/numbers.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "kv/framework/bounded_format.h"

namespace kv {

double WithoutMinusZero(double value, int decimals) {
  return std::round(value * std::pow(10.0, decimals)) == 0 ? 0 : value;
}

double NormalHeading(double degrees) {
  const double turned = std::fmod(degrees, 360.0);
  if (std::isnan(turned)) return 0;
  const double heading = turned < 0 ? turned + 360 : turned;
  return heading >= 360 ? 0 : heading + 0.0;  // a tiny negative number is rounded up to 360; avoids -0, too
}

double RoundedHeading(double degrees, int decimals) {
  const double unit = std::pow(10.0, decimals);
  return NormalHeading(std::round(NormalHeading(degrees) * unit) / unit);
}

namespace {

// The limit of the 32-bit arithmetic below for the integer part.
constexpr double kWholeLimit = 1e9;

// Runtimes differ in how they print a number half-way between two texts: some round to even, some away from zero, and
// some first round to 17 significant digits, so that a number just beside the middle counts as the middle. Within this
// distance of the middle (in units of 2^-64 of the last decimal; here 1/4096 of that decimal) the runtime itself prints
// the number. The distance also covers the error of the arithmetic below, which is less than 2^34.
constexpr std::uint64_t kUndecided = std::uint64_t{1} << 52;
constexpr std::uint64_t kMiddle = std::uint64_t{1} << 63;

// The distance above is sufficient for 17-digit rounding as long as value and decimals together stay below 10^13 units.
constexpr double kLimits[kMaxFixedDecimals + 1] = {
    kWholeLimit, kWholeLimit, kWholeLimit, kWholeLimit, kWholeLimit, 1e8, 1e7, 1e6, 1e5, 1e4, 1e3,
};
constexpr std::uint32_t kPowersOfTen[6] = {1, 10, 100, 1000, 10000, 100000};
constexpr int kDigitsPerStep = 5;

char* FormatFixedByRuntime(char* to, double value, int decimals) {
  char text[kFixedNumberCapacity + 1];
  FormatBoundedA(text, sizeof(text), "%.*f", decimals, value);
  const size_t length = std::strlen(text);
  std::memcpy(to, text, length);
  return to + length;
}

// Multiplies a fraction in units of 2^-64 by `factor`; returns the integer part and stores the rest in `fraction`.
std::uint32_t ExtractDigits(std::uint64_t& fraction, std::uint32_t factor) {
  const std::uint64_t low = (fraction & 0xFFFFFFFF) * factor;
  const std::uint64_t high = (fraction >> 32) * factor + (low >> 32);
  fraction = (high << 32) | (low & 0xFFFFFFFF);
  return static_cast<std::uint32_t>(high >> 32);
}

char* FormatDigits(char* to, std::uint32_t number, int count) {
  for (int i = count - 1; i >= 0; --i) {
    to[i] = static_cast<char>('0' + number % 10);
    number /= 10;
  }
  return to + count;
}

char* FormatInteger(char* to, std::uint32_t number) {
  int count = 1;
  for (std::uint32_t rest = number / 10; rest; rest /= 10) ++count;
  return FormatDigits(to, number, count);
}

}  // namespace

char* FormatFixed(char* to, double value, int decimals) {
  const double magnitude = std::fabs(value);
  if (!(magnitude < kLimits[decimals])) return FormatFixedByRuntime(to, value, decimals);

  // Both subtractions and both multiplications are exact; only what is below 2^-64 is lost.
  auto whole = static_cast<std::uint32_t>(magnitude);
  const double scaled = (magnitude - whole) * 4294967296.0;
  const auto upper = static_cast<std::uint32_t>(scaled);
  const auto lower = static_cast<std::uint32_t>((scaled - upper) * 4294967296.0);
  std::uint64_t fraction = std::uint64_t{upper} << 32 | lower;

  const int firstCount = decimals > kDigitsPerStep ? decimals - kDigitsPerStep : 0;
  const int lastCount = decimals - firstCount;
  std::uint32_t first = ExtractDigits(fraction, kPowersOfTen[firstCount]);
  std::uint32_t last = ExtractDigits(fraction, kPowersOfTen[lastCount]);

  const std::uint64_t toMiddle = fraction > kMiddle ? fraction - kMiddle : kMiddle - fraction;
  if (toMiddle < kUndecided) return FormatFixedByRuntime(to, value, decimals);
  if (fraction > kMiddle && ++last == kPowersOfTen[lastCount]) {
    last = 0;
    if (++first == kPowersOfTen[firstCount]) {
      first = 0;
      ++whole;
    }
  }

  if (std::signbit(value)) *to++ = '-';
  to = FormatInteger(to, whole);
  *to++ = '.';
  to = FormatDigits(to, first, firstCount);
  return FormatDigits(to, last, lastCount);
}

}  // namespace kv
