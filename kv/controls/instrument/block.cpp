#include "kv/controls/instrument_block.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument/text.h"

namespace kv {

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kPaletteRelative = 0x02000000;

template <size_t Size>
void CopyText(char (&target)[Size], const char* text, const char* otherwise) {
  lstrcpynA(target, IsBadStringPtrA(text, Size) ? otherwise : text, Size);
}

}  // namespace

InstrumentBlock BuildDefaultBlock(const BlockDefaults& defaults) {
  InstrumentBlock block{};
  block.version = kInstrumentVersion;
  block.color = ((defaults.color & kRgbBits) ? defaults.color & kRgbBits : kRed) | kPaletteRelative;
  block.format = defaults.format;
  CopyText(block.szName, defaults.name, "Relative");
  CopyText(block.szUnit, defaults.unit, "%");
  const bool empty = defaults.minimum == defaults.maximum;
  block.minimum = empty ? 0.0f : defaults.minimum;
  block.maximum = empty ? 100.0f : defaults.maximum;
  block.step = defaults.step == 0 ? (block.maximum - block.minimum) / 100 : defaults.step;
  block.current = block.minimum < 0 && block.maximum > 0 ? 0.0f : block.minimum;
  for (int i = 0; i < kInstrumentZones; ++i)
    block.zones[i].lower = block.zones[i].upper = 25.0f * static_cast<float>(i + 1);
  return block;
}

float ClampToRange(const InstrumentBlock& block, float value) {
  const float low = std::min(block.minimum, block.maximum), high = std::max(block.minimum, block.maximum);
  if (std::isnan(value)) return low;
  if (value < low) return low;
  if (value > high) return high;
  return value;
}

AnimationStep NextAnimationStep(const InstrumentBlock& block, float target) {
  if (std::isnan(block.current)) return {target, !std::isnan(target)};
  const double step = std::isfinite(block.step) ? std::fabs(static_cast<double>(block.step)) : 0.0;
  const double distance = std::fabs(static_cast<double>(target) - block.current);
  if (distance == 0 || !(step <= distance)) return {block.current, false};
  const double range = std::fabs(static_cast<double>(block.maximum) - block.minimum);
  if (!(distance <= 0.2 * range)) return {target, true};
  const auto next = static_cast<float>((9 * static_cast<double>(block.current) + target) / 10);
  // When a tenth is rounded to nothing, the animation ends; otherwise the timer would run for ever.
  return {next == block.current ? target : next, true};
}

InstrumentReading ReadingOf(const InstrumentBlock& block) {
  InstrumentReading reading{block.minimum, block.maximum, block.current, (block.state & kInstrumentNoValue) == 0};
  if (!std::isfinite(reading.minimum) || !std::isfinite(reading.maximum) || reading.minimum == reading.maximum) {
    reading.minimum = 0;
    reading.maximum = 100;
  }
  if (std::isnan(reading.value)) {
    reading.valid = false;
    reading.value = reading.minimum;
  }
  const auto [low, high] = std::minmax({reading.minimum, reading.maximum});
  reading.value = std::clamp(reading.value, low, high);
  return reading;
}

double FractionOf(const InstrumentReading& reading, double value) {
  const double fraction = (value - reading.minimum) / (reading.maximum - reading.minimum);
  return std::isnan(fraction) ? 0.0 : std::clamp(fraction, 0.0, 1.0);
}

std::wstring InstrumentName(const InstrumentBlock& block) {
  return std::wstring(DecodedName(block).view());
}

std::wstring InstrumentUnit(const InstrumentBlock& block) {
  return std::wstring(DecodedUnit(block).view());
}

}  // namespace kv
