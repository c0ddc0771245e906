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

HWND InstrumentOf(HWND dialog, int id) {
  return ControlOfClass(dialog, id, kDisplayInstrumentClass);
}

void Send(HWND instrument, WPARAM command, const void* item) {
  SendMessageA(instrument, kControlCommand, command | kCommandRedraw, reinterpret_cast<LPARAM>(item));
}

bool ReadBlock(HWND instrument, InstrumentBlock* block) {
  Send(instrument, kCommandBlock | kCommandRead, block);
  return block->version == kInstrumentVersion;
}

// Changes the parameter block with `change`. Clamps the value, or the target of a glide, to the new range.
template <class Change>
BOOL ChangeBlock(HWND dialog, int id, Change change) {
  HWND instrument = InstrumentOf(dialog, id);
  InstrumentBlock block{};
  if (!ReadBlock(instrument, &block)) return FALSE;
  DWORD style = 0;
  float target = 0;
  Send(instrument, kCommandStyle | kCommandRead, &style);
  Send(instrument, kCommandValue | kCommandRead | kValueGlide, &target);
  change(block, style);
  block.current = ClampToRange(block, block.current);
  Send(instrument, kCommandBlock, &block);
  if (!(block.state & kInstrumentNoValue)) Send(instrument, kCommandValue | kValueGlide | kValueExact, &target);
  return TRUE;
}

bool IsNumberReadout(DWORD style) {
  return (style & kInstrumentModeBits) == kModeDigital &&
         !(style & (kInstrumentShowTime | kInstrumentShowDate | kInstrumentShowAngle));
}

// The smallest number of decimals with which a step of this size is visible.
int DecimalsFor(double step) {
  const double decimals = std::ceil(-std::log10(std::fabs(step)) - 1e-9);
  return std::isfinite(decimals) ? static_cast<int>(std::clamp<double>(decimals, 0, kFormatDecimals)) : 0;
}

}  // namespace

float ReadableMaximum(double maximum, double largest) {
  // The readout has trunc(log10(maximum) + 0.5) integer digits.
  const double digits = std::max(std::floor(std::log10(std::fmax(std::fabs(largest), 1))) + 1, 1.0);
  const double least = std::ceil(std::pow(10.0, digits - 0.5));
  return static_cast<float>(std::fabs(maximum) >= least ? maximum : least);
}

BOOL SetInstrumentValue(HWND dialog, int id, double value, BOOL glide) {
  HWND instrument = InstrumentOf(dialog, id);
  const float item = static_cast<float>(value);
  if (instrument) Send(instrument, kCommandValue | kValueExact | (glide ? kValueGlide : 0), &item);
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
  bits &= ~kInstrumentModeBits;
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
  return ChangeBlock(dialog, id, [&](InstrumentBlock& block, DWORD style) {
    const double step = range.step != 0 ? range.step : (range.maximum - range.minimum) / 100;
    bool sign = range.alwaysSign;
    block.minimum = static_cast<float>(range.minimum);
    block.maximum = static_cast<float>(range.maximum);
    block.step = static_cast<float>(step);
    const int decimals = range.decimals < 0 ? DecimalsFor(step) : std::min<int>(range.decimals, kFormatDecimals);
    if (IsNumberReadout(style)) {
      sign = sign || range.minimum < 0 || range.maximum < 0;
      // Rounding may give the largest value one digit more.
      const double largest =
          std::fmax(std::fabs(range.minimum), std::fabs(range.maximum)) + 0.5 * std::pow(10, -decimals);
      block.maximum = ReadableMaximum(range.maximum, largest);
    }
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
