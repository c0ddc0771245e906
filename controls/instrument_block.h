// The parameter block of a display instrument: the record that owner and control exchange, the style bits that say what
// is made of it, how a default block is built, and the arithmetic of its range. Pure functions; any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace kv {

inline constexpr DWORD kInstrumentVersion = 0x20070806;  // in every block; a block without it is rejected

// State bits. Bit i (0..2) enables zone i.
inline constexpr DWORD kInstrumentNoValue = 0x80000000;  // there is no valid value to show
constexpr DWORD ZoneEnabledBit(int zone) {
  return 1u << zone;
}

// Number format.
inline constexpr BYTE kFormatDecimals = 0x07;  // decimal places, 0..7
inline constexpr BYTE kFormatSign = 0x10;      // always print a sign

inline constexpr int kInstrumentZones = 3;

inline constexpr COLORREF kRgbBits = 0x00FFFFFF;  // of a colour field

// The low four bits of the window style pick the layout; every value not named here is the circular gauge.
inline constexpr DWORD kInstrumentModeBits = 0x000F;
inline constexpr DWORD kModeGauge = 0, kModeDigital = 2, kModeSegmentBar = 3, kModeCompass = 4, kModeCentreBar = 5;

// Further style bits.
inline constexpr DWORD kInstrumentDisabled = 0x0040;   // drawn disabled; follows WM_ENABLE
inline constexpr DWORD kInstrumentNoCaption = 0x0080;  // digital readout without its name
inline constexpr DWORD kInstrumentShowTime = 0x0100;   // digital readout: time of day
inline constexpr DWORD kInstrumentShowDate = 0x0200;   // digital readout: date
inline constexpr DWORD kInstrumentShowAngle = 0x0400;  // digital readout: degrees, minutes, seconds
inline constexpr DWORD kInstrumentReversed = 0x0800;   // segment bar runs the other way

// A coloured part of the range, in units of the value.
struct InstrumentZone {
  float lower, upper;
  COLORREF color;
  BYTE bytes[4];  // the owner's, 0 by default
  DWORD word;     // the owner's, 0 by default
};
static_assert(sizeof(InstrumentZone) == 20);
static_assert(offsetof(InstrumentZone, upper) == 4 && offsetof(InstrumentZone, color) == 8 &&
              offsetof(InstrumentZone, bytes) == 12 && offsetof(InstrumentZone, word) == 16);

struct InstrumentBlock {
  DWORD version;    // kInstrumentVersion
  DWORD state;      // ZoneEnabledBit, kInstrumentNoValue
  char szName[32];  // UTF-8
  char szUnit[6];   // one byte per character (Windows-1252) or UTF-8; the two hemisphere letters in angle mode
  BYTE reserved46;  // 0
  BYTE format;      // kFormatDecimals, kFormatSign
  COLORREF color;   // 0x02BBGGRR; the low 24 bits are drawn
  float minimum, maximum;
  float step;     // also the tolerance at which gliding stops
  float current;  // the displayed value
  BYTE reserved68[128];
  InstrumentZone zones[kInstrumentZones];
  BYTE reserved256[256];
};
static_assert(sizeof(InstrumentBlock) == 512);
static_assert(offsetof(InstrumentBlock, version) == 0 && offsetof(InstrumentBlock, state) == 4 &&
              offsetof(InstrumentBlock, szName) == 8 && offsetof(InstrumentBlock, szUnit) == 40 &&
              offsetof(InstrumentBlock, reserved46) == 46 && offsetof(InstrumentBlock, format) == 47 &&
              offsetof(InstrumentBlock, color) == 48 && offsetof(InstrumentBlock, minimum) == 52 &&
              offsetof(InstrumentBlock, maximum) == 56 && offsetof(InstrumentBlock, step) == 60 &&
              offsetof(InstrumentBlock, current) == 64 && offsetof(InstrumentBlock, reserved68) == 68 &&
              offsetof(InstrumentBlock, zones) == 196 && offsetof(InstrumentBlock, reserved256) == 256);

struct BlockDefaults {
  float minimum, maximum, step;
  BYTE format;
  COLORREF color;    // 0 becomes red
  const char* unit;  // unreadable becomes "%"
  const char* name;  // unreadable becomes "Relative"
};

InstrumentBlock BuildDefaultBlock(const BlockDefaults& defaults);

// Pulls a value into the block's range, whichever way round it stands; NaN becomes the lower end.
float ClampToRange(const InstrumentBlock& block, float value);

// One step of gliding towards `target`: the next displayed value, and whether it is still on its way. A large jump, or
// a way from where no value was, arrives at once; otherwise the way is shortened by a tenth until it is less than the
// block's step. A step finer than the value's own resolution (0 too, and NaN and infinity count as 0) leads to the
// target itself.
struct GlideStep {
  float current;
  bool moving;
};
GlideStep NextGlideStep(const InstrumentBlock& block, float target);

// What is drawn: a range that can be divided by (a block whose ends are equal, infinite or NaN reads as 0 to 100), and
// the value within it. The minimum may be the larger end; the scale then runs backwards.
struct InstrumentReading {
  double minimum, maximum, value;
  bool valid;
};
InstrumentReading ReadingOf(const InstrumentBlock& block);

// Where a value lies in the range, 0 at the minimum and 1 at the maximum, limited to that.
double FractionOf(const InstrumentReading& reading, double value);

// Name and unit as wide text, without a terminator if need be. A name that is not UTF-8 is read in the system's code
// page, a unit in Windows-1252 (0xB0 is the degree sign).
std::wstring InstrumentName(const InstrumentBlock& block);
std::wstring InstrumentUnit(const InstrumentBlock& block);

}  // namespace kv
