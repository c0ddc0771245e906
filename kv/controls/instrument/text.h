// The texts of display instruments: numbers of fixed width, and the readout's time, date, angle and dashes. Pure
// functions; any thread.
#pragma once

#include <windows.h>

#include <string_view>

#include "kv/controls/instrument/fixed_text.h"
#include "kv/controls/instrument_block.h"

namespace kv {

// Like InstrumentName and InstrumentUnit, without allocation.
FixedText DecodedName(const InstrumentBlock& block);
FixedText DecodedUnit(const InstrumentBlock& block);

// A number of fixed width. The integer part is padded, or truncated at its high-order end, to the width that remains
// for it: a number that is too large shows its low-order digits, and the point does not move. `format` as in the block.
FixedText FixedWidthNumber(double value, int width, BYTE format);

// The text without leading blanks, for centering.
FixedText WithoutPadding(std::wstring_view text);

// The number with as many digits as it needs; without sign if rounded to zero.
FixedText PlainNumber(double value, int decimals, bool sign);

// The number, then ever shorter forms, so that the caller can select one that fits: with fewer decimals, as long as
// these tell values of the range apart, and finally, if that is shorter, with three digits and a power of ten. A
// block's format has at most seven decimals.
using NumberFormList = FixedList<FixedText, 9>;
NumberFormList NumberForms(const InstrumentReading& reading, BYTE format);

// For kInstrumentFitted: the number in the longest form with at most `most` characters, padded on the left to the
// length of the longest number of the range. Empty if no form fits.
FixedText FittedNumber(const InstrumentReading& reading, BYTE format, int most);

// The width in characters for the block's maximum, decimals and sign.
int NumberWidth(const InstrumentBlock& block);

// Dashes of the width of the block's numbers, with one after the point.
FixedText NoValueNumber(const InstrumentBlock& block, DWORD style);

// The value as degrees, minutes, seconds, hundredths and the hemisphere letter, separated by points.
FixedText AngleText(double degrees, const char (&hemispheres)[6]);

// The text of the digital readout. `style` selects number, time, date or angle (kInstrumentShowTime ...).
FixedText DigitalText(const InstrumentBlock& block, DWORD style, const SYSTEMTIME& time);

}  // namespace kv
