#include "controls/instrument_block.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

namespace kv {

namespace {

constexpr UINT kWestern = 1252;
constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kPaletteRelative = 0x02000000;

template <size_t Size>
void CopyText(char (&target)[Size], const char* text, const char* otherwise) {
  lstrcpynA(target, IsBadStringPtrA(text, Size) ? otherwise : text, Size);
}

// Length without a last UTF-8 sequence that the field's end cut off.
int WholeUtf8Length(const char* text, int length) {
  int lead = length - 1;
  while (lead > 0 && lead > length - 4 && (text[lead] & 0xC0) == 0x80) --lead;
  if (lead < 0) return length;
  const BYTE first = static_cast<BYTE>(text[lead]);
  const int needed = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
  return lead + needed > length ? lead : length;
}

bool Decode(UINT codePage, DWORD flags, const char* text, int length, std::wstring* wide) {
  wchar_t buffer[64];
  const int count = MultiByteToWideChar(codePage, flags, text, length, buffer, ARRAYSIZE(buffer));
  wide->assign(buffer, count);
  return count > 0;
}

template <size_t Size>
std::wstring DecodeField(const char (&field)[Size], UINT otherwise) {
  const int length = static_cast<int>(std::find(field, field + Size, '\0') - field);
  std::wstring wide;
  if (length == 0) return wide;
  // Only a field that is full to the end can have been cut.
  const int whole = length >= static_cast<int>(Size) - 1 ? WholeUtf8Length(field, length) : length;
  if (whole > 0 && Decode(CP_UTF8, MB_ERR_INVALID_CHARS, field, whole, &wide)) return wide;
  Decode(otherwise, 0, field, length, &wide);
  return wide;
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

GlideStep NextGlideStep(const InstrumentBlock& block, float target) {
  if (std::isnan(block.current)) return {target, !std::isnan(target)};
  const double step = std::isfinite(block.step) ? std::fabs(static_cast<double>(block.step)) : 0.0;
  const double distance = std::fabs(static_cast<double>(target) - block.current);
  if (distance == 0 || !(step <= distance)) return {block.current, false};
  const double range = std::fabs(static_cast<double>(block.maximum) - block.minimum);
  if (!(distance <= 0.2 * range)) return {target, true};
  const auto next = static_cast<float>((9 * static_cast<double>(block.current) + target) / 10);
  // The last tenths round to nothing: there it arrives, or the timer would never end.
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
  return DecodeField(block.szName, CP_ACP);
}

std::wstring InstrumentUnit(const InstrumentBlock& block) {
  return DecodeField(block.szUnit, kWestern);
}

}  // namespace kv
