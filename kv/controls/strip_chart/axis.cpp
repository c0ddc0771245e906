#include "kv/controls/strip_chart/axis.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <string>
#include <vector>

#include "kv/framework/bounded_format.h"

namespace kv {

namespace {

constexpr double kDay = 86400;
constexpr double kClockSteps[] = {1,   2,   5,    10,   15,   30,    60,    120,   300,
                                  600, 900, 1800, 3600, 7200, 10800, 21600, 43200, kDay};

int DecimalsOf(double step) {
  return std::max(0, static_cast<int>(std::ceil(-std::log10(step) - 1e-9)));
}

// With a decimal point, whatever setlocale has set.
std::wstring Format(const wchar_t* format, ...) {
  wchar_t text[64] = L"";
  va_list arguments;
  va_start(arguments, format);
  FormatPlainV(text, std::size(text), format, arguments);
  va_end(arguments);
  return text;
}

// 2.5e+007 as 2.5×10⁷.
std::wstring PowerText(const std::wstring& number) {
  constexpr wchar_t kSuperscripts[] = L"\x2070\x00B9\x00B2\x00B3\x2074\x2075\x2076\x2077\x2078\x2079";
  const size_t power = number.find(L'e');
  if (power == std::wstring::npos) return number;
  const long exponent = std::wcstol(number.c_str() + power + 1, nullptr, 10);
  std::wstring text = number.substr(0, power);
  if (exponent == 0) return text;
  text = (text == L"1" ? L"" : text == L"-1" ? L"-" : text + L"\x00D7") + L"10";
  if (exponent < 0) text += L'\x207B';
  for (const wchar_t digit : std::to_wstring(std::labs(exponent))) text += kSuperscripts[digit - L'0'];
  return text;
}

}  // namespace

double NiceStep(double least) {
  const double exponent = std::floor(std::log10(least));
  for (const double factor : {1.0, 2.0, 5.0}) {
    // Dividing by an integral power gives exactly 0.1; multiplying by 10^-1 does not.
    const double step = exponent < 0 ? factor / std::pow(10, -exponent) : factor * std::pow(10, exponent);
    if (step >= least * (1 - 1e-12)) return step;
  }
  return exponent < -1 ? 1 / std::pow(10, -exponent - 1) : std::pow(10, exponent + 1);
}

double TimeStep(double least, TimeFormat format) {
  if (format == TimeFormat::kSeconds || least <= 0.5) return NiceStep(least);
  const double* step = std::ranges::lower_bound(kClockSteps, least);
  return step != std::end(kClockSteps) ? *step : kDay * NiceStep(least / kDay);
}

AxisRange NiceRange(double low, double high, int ticks) {
  constexpr double kMinMagnitude = 1e-200;
  const double magnitude = std::max(std::fabs(low), std::fabs(high));
  if (!(high - low > std::max(magnitude * 1e-9, kMinMagnitude))) {
    const double room = magnitude > kMinMagnitude ? magnitude * 0.1 : 1;
    low -= room;
    high += room;
  }
  const double step = NiceStep((high - low) / std::max(ticks, 1));
  return {std::floor(low / step) * step, std::ceil(high / step) * step};
}

Ticks TicksBetween(double low, double high, double step) {
  const double first = std::ceil(low / step - 1e-9), last = std::floor(high / step + 1e-9);
  return {first, step, static_cast<int>(std::clamp(last - first + 1, 0.0, static_cast<double>(kMaxTicks)))};
}

std::vector<AxisTick> AxisTicks(const AxisRange& range, double step, bool isLogarithmic) {
  std::vector<AxisTick> found;
  const double length = range.high - range.low;
  constexpr double kFewDecades = 0.7, kTwo = 2, kFour = 4, kMaxPlainDecades = 4.5;
  const bool isLinear = !isLogarithmic || length < kFewDecades;
  if (isLinear) {
    const double low = isLogarithmic ? std::pow(10, range.low) : range.low;
    const double high = isLogarithmic ? std::pow(10, range.high) : range.high;
    if (isLogarithmic) step = NiceStep((high - low) * step / length);
    const Ticks ticks = TicksBetween(low, high, step);
    for (int i = 0; i < ticks.count; ++i) {
      found.push_back({AxisPosition(ticks.At(i), isLogarithmic), TickText(ticks.At(i), step)});
    }
    return found;
  }
  const double decades = std::max(std::round(step), 1.0);
  const bool asPowers = std::max(-range.low, range.high) > kMaxPlainDecades;
  const Ticks ticks = TicksBetween(range.low - decades, range.high, decades);
  for (int i = 0; i < ticks.count; ++i) {
    const double unit = std::pow(10, ticks.At(i));
    for (int factor = 1; factor <= (length <= kFour ? 9 : 1); ++factor) {
      const double position = ticks.At(i) + std::log10(factor);
      const bool hasText = factor == 1 || (length < kTwo && (factor == 2 || factor == 5));
      if (position < range.low - 1e-9 || position > range.high + 1e-9) continue;
      found.push_back({position, !hasText   ? std::wstring()
                                 : asPowers ? PowerText(Format(L"%.0e", unit * factor))
                                            : TickText(unit * factor, unit)});
    }
  }
  return found;
}

std::wstring TickText(double value, double step) {
  const int decimals = DecimalsOf(step);
  if (std::fabs(value) < step / 2) return L"0";
  const bool plain = decimals <= 6 && std::fabs(value) < 1e7;
  const int digits = std::clamp(static_cast<int>(std::ceil(std::log10(std::fabs(value) / step) - 1e-9)) + 1, 1, 15);
  return PowerText(Format(plain ? L"%.*f" : L"%.*g", plain ? decimals : digits, value));
}

std::wstring TimeText(double seconds, double step, TimeFormat format) {
  if (format == TimeFormat::kSeconds) return TickText(seconds, step) + L" s";
  const int decimals = std::min(DecimalsOf(step), 6), secondsWidth = decimals ? decimals + 3 : 2;
  const double unit = std::pow(10, decimals);
  if (format == TimeFormat::kElapsed) {
    const double size = std::round(std::fabs(seconds) * unit) / unit, inMinutes = std::floor(size / 60);
    const double hours = std::floor(inMinutes / 60), rest = size - inMinutes * 60;
    const wchar_t* sign = seconds < 0 && size > 0 ? L"-" : L"";
    if (hours > 0)
      return Format(L"%ls%.0f:%02.0f:%0*.*f", sign, hours, inMinutes - hours * 60, secondsWidth, decimals, rest);
    return Format(L"%ls%.0f:%0*.*f", sign, inMinutes, secondsWidth, decimals, rest);
  }
  double ofDay = std::round((seconds - std::floor(seconds / kDay) * kDay) * unit) / unit;
  if (ofDay >= kDay) ofDay = 0;
  const int whole = static_cast<int>(ofDay), hours = whole / 3600, minutes = whole / 60 % 60;
  if (step >= 60) return Format(L"%02d:%02d", hours, minutes);
  return Format(L"%02d:%02d:%0*.*f", hours, minutes, secondsWidth, decimals, ofDay - whole + whole % 60);
}

}  // namespace kv
