#include "kv/toolkit/instruments.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <span>

#include "kv/controls/display_instrument.h"
#include "kv/controls/instrument_block.h"
#include "kv/framework/control_class.h"
#include "kv/framework/file_path.h"
#include "kv/toolkit/control_access.h"

namespace kv {

namespace {

void Send(HWND instrument, WPARAM command, const void* item) {
  SendMessageA(instrument, kControlCommand, command | kCommandRedraw, reinterpret_cast<LPARAM>(item));
}

// Also fits an instrument whose template has a plain style.
HWND InstrumentOf(HWND dialog, int id) {
  HWND instrument = ControlOfClass(dialog, id, kDisplayInstrumentClass);
  if (instrument) Send(instrument, kCommandStyle, &kInstrumentFitted);
  return instrument;
}

bool ReadBlock(HWND instrument, InstrumentBlock* block) {
  Send(instrument, kCommandBlock | kCommandRead, block);
  return block->version == kInstrumentVersion;
}

// Changes the parameter block with `change`. Clamps the value, or the target of an animation, to the new range.
template <class Change>
BOOL ChangeBlock(HWND dialog, int id, Change change) {
  HWND instrument = InstrumentOf(dialog, id);
  InstrumentBlock block{};
  if (!ReadBlock(instrument, &block)) return FALSE;
  DWORD style = 0;
  float target = 0;
  Send(instrument, kCommandStyle | kCommandRead, &style);
  Send(instrument, kCommandValue | kCommandRead | kValueAnimate, &target);
  change(block, style);
  block.current = ClampToRange(block, block.current);
  Send(instrument, kCommandBlock, &block);
  if (!(block.state & kInstrumentNoValue)) Send(instrument, kCommandValue | kValueAnimate | kValueExact, &target);
  return TRUE;
}

bool IsReadout(DWORD style) {
  return (style & kInstrumentModeBits) == kModeDigital;
}

// The smallest number of decimals with which a step of this size is visible.
int DecimalsFor(double step) {
  const double decimals = std::ceil(-std::log10(std::fabs(step)) - 1e-9);
  return std::isfinite(decimals) ? static_cast<int>(std::clamp<double>(decimals, 0, kFormatDecimals)) : 0;
}

}  // namespace

void FitInstrument(HWND control) {
  if (IsOfClass(control, kDisplayInstrumentClass)) Send(control, kCommandStyle, &kInstrumentFitted);
}

BOOL SetInstrumentValue(HWND dialog, int id, double value, BOOL animate) {
  HWND instrument = InstrumentOf(dialog, id);
  const float item = static_cast<float>(value);
  if (instrument) Send(instrument, kCommandValue | kValueExact | (animate ? kValueAnimate : 0), &item);
  return instrument != nullptr;
}

BOOL ClearInstrumentValue(HWND dialog, int id) {
  return SetInstrumentValue(dialog, id, NAN, FALSE);
}

BOOL GetInstrumentValue(HWND dialog, int id, double* value) {
  InstrumentBlock block{};
  if (!ReadBlock(InstrumentOf(dialog, id), &block) || !ReadingOf(block).valid) return FALSE;
  if (IsBadWritePtr(value, sizeof(*value))) return FALSE;
  *value = block.current;
  return TRUE;
}

BOOL SetInstrumentStyle(HWND dialog, int id, DWORD bits, BOOL set) {
  HWND instrument = InstrumentOf(dialog, id);
  bits &= ~(kInstrumentModeBits | kInstrumentFitted);
  if (instrument && bits) Send(instrument, kCommandStyle | (set ? 0 : kCommandRemove), &bits);
  return instrument != nullptr;
}

BOOL SetInstrumentTime(HWND dialog, int id, const SYSTEMTIME& time) {
  HWND instrument = InstrumentOf(dialog, id);
  if (instrument) Send(instrument, kCommandTime, &time);
  return instrument != nullptr;
}

BOOL SetInstrumentName(HWND dialog, int id, const wchar_t* name) {
  if (!IsReadableText(name)) return FALSE;
  return ChangeBlock(dialog, id, [&](InstrumentBlock& block, DWORD) { StoreText(block.szName, name); });
}

BOOL SetInstrumentRange(HWND dialog, int id, const InstrumentRange& range) {
  const auto minimum = static_cast<float>(range.minimum), maximum = static_cast<float>(range.maximum);
  const double step = range.step != 0 ? range.step : (range.maximum - range.minimum) / 100;
  if (!std::isfinite(minimum) || !std::isfinite(maximum) || minimum == maximum ||
      !std::isfinite(static_cast<float>(step)))
    return FALSE;
  return ChangeBlock(dialog, id, [&](InstrumentBlock& block, DWORD style) {
    const bool readout = IsReadout(style);
    block.minimum = minimum;
    block.maximum = maximum;
    block.step = static_cast<float>(step);
    // The decimals of a clock select what it shows, and have nothing to do with a step.
    const int derived = readout && (style & kInstrumentShowTime) ? 0 : DecimalsFor(step);
    const int decimals = range.decimals < 0 ? derived : std::min<int>(range.decimals, kFormatDecimals);
    const bool sign = range.alwaysSign || (readout && std::min(minimum, maximum) < 0);
    block.format = static_cast<BYTE>(decimals | (sign ? kFormatSign : 0));
    if (IsReadableText(range.unit)) StoreText(block.szUnit, range.unit);
  });
}

BOOL SetInstrumentColor(HWND dialog, int id, COLORREF color) {
  constexpr COLORREF kPaletteRelative = 0x02000000;
  return ChangeBlock(dialog, id,
                     [&](InstrumentBlock& block, DWORD) { block.color = kPaletteRelative | (color & kRgbBits); });
}

BOOL SetInstrumentZones(HWND dialog, int id, std::span<const InstrumentZone> zones) {
  for (const InstrumentZone& zone : zones) {
    if (std::isnan(zone.lower) || std::isnan(zone.upper)) return FALSE;
  }
  return ChangeBlock(dialog, id, [&](InstrumentBlock& block, DWORD) {
    for (int i = 0; i < kInstrumentZones; ++i) {
      block.state &= ~ZoneEnabledBit(i);
      if (static_cast<size_t>(i) >= zones.size()) continue;
      block.zones[i] = zones[i];
      block.zones[i].lower = ClampToRange(block, zones[i].lower);
      block.zones[i].upper = ClampToRange(block, zones[i].upper);
      block.state |= ZoneEnabledBit(i);
    }
  });
}

}  // namespace kv
