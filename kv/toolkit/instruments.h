// Typed functions for the display instruments of a dialog (kv/controls/display_instrument.h), selected by control id.
// Changes are painted at once. All functions return 0 and change nothing when the dialog has no instrument with that
// id. They set kInstrumentFitted, as the toolkit's dialogs and the styles of kv/resource.h do: a number is shown with
// all its digits, rounded where there is no space for its decimals, or not at all. Main thread only.
#pragma once

#include <windows.h>

#include <span>

#include "kv/controls/instrument_block.h"

namespace kv {

// Shows a value, clamped to the range: at once, or with `animate` in steps of 20 ms if it is within a fifth of the
// range. The instrument always ends at the value set last, even if functions below are called during an animation. NaN
// and ClearInstrumentValue show that there is no value.
BOOL SetInstrumentValue(HWND dialog, int id, double value, BOOL animate);
BOOL ClearInstrumentValue(HWND dialog, int id);

// Gets the displayed value, which changes during an animation. Returns 0 and leaves `value` unchanged also when there
// is no value.
BOOL GetInstrumentValue(HWND dialog, int id, double* value);

// Sets or clears style bits (kInstrumentReversed, kInstrumentNoCaption, kInstrumentShowTime ...). Mode and
// kInstrumentFitted do not change. To draw the instrument disabled, use EnableWindow.
BOOL SetInstrumentStyle(HWND dialog, int id, DWORD bits, BOOL set);

// Sets the time or date of a digital readout.
BOOL SetInstrumentTime(HWND dialog, int id, const SYSTEMTIME& time);

// The name is truncated to 31 bytes of UTF-8, a unit to 5.
BOOL SetInstrumentName(HWND dialog, int id, const wchar_t* name);

struct InstrumentRange {
  double minimum = 0, maximum = 100;
  const wchar_t* unit = nullptr;  // null keeps the unit
  double step = 0;                // 0: a hundredth of the range
  int decimals = -1;              // decimals, 0..7; -1: derived from the step. A clock: what it shows, -1 is 0
  bool alwaysSign = false;        // a readout whose range has negative values always shows the sign
};

// Sets range, step, unit and number format. The value, and the target of an animation, are clamped to the range. The
// minimum may be larger than the maximum; then the scale is reversed. Bounds, step and values are stored as 32-bit
// floats, which have seven significant digits. Returns 0 if a bound or the step is not finite, or both bounds are
// equal.
BOOL SetInstrumentRange(HWND dialog, int id, const InstrumentRange& range);

BOOL SetInstrumentColor(HWND dialog, int id, COLORREF color);

// Replaces all zones, which are colored parts of the range; at most three. Bounds are clamped to the range, so set the
// range first. Returns 0 if a bound is NaN.
BOOL SetInstrumentZones(HWND dialog, int id, std::span<const InstrumentZone> zones);

}  // namespace kv
