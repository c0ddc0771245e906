// Typed access to the display instruments of a dialog (controls/display_instrument.h), by the id of the control. Each
// paints a change at once, and returns 0, with nothing changed, when the dialog has no instrument of that id. Main
// thread only.
#pragma once

#include <windows.h>

#include <span>

#include "controls/instrument_block.h"

namespace kv {

// Shows a value, clamped to the range: at once, or with `glide` in steps of 20 ms unless it is further than a fifth of
// the range. The last value set is the one shown in the end, whatever glide was under way and whichever of the calls
// below come before it arrives. NaN, and ClearInstrumentValue, show that there is no value.
BOOL SetInstrumentValue(HWND dialog, int id, double value, BOOL glide);
BOOL ClearInstrumentValue(HWND dialog, int id);

// The value shown at this moment, which a glide is changing. Returns 0, with `value` untouched, also while there is
// none.
BOOL GetInstrumentValue(HWND dialog, int id, double* value);

// Sets or clears style bits while the instrument is shown (kInstrumentReversed, kInstrumentNoCaption,
// kInstrumentShowTime ...; EnableWindow draws it disabled). The layout is the template's.
BOOL SetInstrumentStyle(HWND dialog, int id, DWORD bits, BOOL set);

// What a digital readout of time or date shows.
BOOL SetInstrumentTime(HWND dialog, int id, const SYSTEMTIME& time);

// Name and unit are cut to what their fields hold in UTF-8: 31 and 5 bytes.
BOOL SetInstrumentName(HWND dialog, int id, const wchar_t* name);

struct InstrumentRange {
  double minimum = 0, maximum = 100;
  const wchar_t* unit = nullptr;  // null keeps the unit
  double step = 0;                // 0: a hundredth of the range
  int decimals = -1;              // decimal places, 0..7; -1: as the step's size asks for
  bool alwaysSign = false;
};

// Range, step, unit and number format. The present value, and what it glides to, are pulled into the range.
//
// A readout of numbers shows as many integer digits as the logarithm of its maximum, rounded, gives: with a maximum of
// 250 those are two, and 230 reads "30". So its maximum is raised here to the least one that shows every value of the
// range (317 for 250), and a range with negative values always shows the sign. Values up to the raised maximum are
// shown as they are. The number in a segment bar follows the same rule but keeps its range, which its scale follows:
// give it a maximum such as 99 or 400, whose values it shows whole.
BOOL SetInstrumentRange(HWND dialog, int id, const InstrumentRange& range);

BOOL SetInstrumentColor(HWND dialog, int id, COLORREF color);

// Shows these coloured parts of the range, at most three, and no others. Bounds are pulled into the range, so set that
// first.
BOOL SetInstrumentZones(HWND dialog, int id, std::span<const InstrumentZone> zones);

// The least maximum, `maximum` itself or a larger one, with which a readout shows `largest` whole.
float ReadableMaximum(double maximum, double largest);

}  // namespace kv
