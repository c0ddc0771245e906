// What display instruments write: numbers of fixed width, and the readout's time, date, angle and dashes. Pure
// functions; any thread.
#pragma once

#include <windows.h>

#include <string_view>

#include "controls/instrument/fixed_text.h"
#include "controls/instrument_block.h"

namespace kv {

// What InstrumentName and InstrumentUnit return, without taking memory.
FixedText DecodedName(const InstrumentBlock& block);
FixedText DecodedUnit(const InstrumentBlock& block);

// A number of fixed width: the integer part is padded or cut at its upper end to what `width` leaves for it, so a
// number that outgrows its display keeps its low digits in place instead of moving the point. `format` as in the block.
FixedText FixedWidthNumber(double value, int width, BYTE format);

// The text without its leading blanks, for writing it centred.
FixedText WithoutPadding(std::wstring_view text);

// The number with as many digits as it needs; what rounds to zero has no sign.
FixedText PlainNumber(double value, int decimals, bool sign);

// The number as it is, then ever shorter: with fewer decimal places, and at last to three digits with a power of ten,
// where that is shorter still. For whoever has room for one of them. A block's format has at most seven places.
using NumberFormList = FixedList<FixedText, 9>;
NumberFormList NumberForms(double value, int decimals, bool sign);

// The width in characters that the block's maximum, decimal places and sign ask for.
int NumberWidth(const InstrumentBlock& block);

// Dashes of the block's width, with one behind the point.
FixedText NoValueNumber(const InstrumentBlock& block);

// The value as degrees, minutes, seconds, hundredths and the hemisphere letter, separated by points.
FixedText AngleText(double degrees, const char (&hemispheres)[6]);

// The text of the digital readout. `style` picks between number, time, date and angle (kInstrumentShowTime ...).
FixedText DigitalText(const InstrumentBlock& block, DWORD style, const SYSTEMTIME& time);

}  // namespace kv
