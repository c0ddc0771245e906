// The parameter block of a display instrument, which program and control exchange; the style bits; default blocks; and
// the arithmetic of the range. Pure functions; any thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <string>

namespace kv {

inline constexpr DWORD kInstrumentVersion =
    0x20070806;  // the version tag of every block; a block without it is rejected

// State bits. Bit i (0..2) enables zone i.
inline constexpr DWORD kInstrumentNoValue = 0x80000000;  // there is no valid value
constexpr DWORD ZoneEnabledBit(int zone) {
  return 1u << zone;
}

// Number format.
inline constexpr BYTE kFormatDecimals = 0x07;  // mask of the number of decimals, 0..7
inline constexpr BYTE kFormatSign = 0x10;      // always show a sign

inline constexpr int kInstrumentZones = 3;

inline constexpr COLORREF kRgbBits = 0x00FFFFFF;  // mask of the RGB part of a color field

// The low four bits of the window style select the mode; values not listed here select the circular gauge.
inline constexpr DWORD kInstrumentModeBits = 0x000F;
inline constexpr DWORD kModeGauge = 0, kModeDigital = 2, kModeSegmentBar = 3, kModeCompass = 4, kModeCenterBar = 5;

// Further style bits.
inline constexpr DWORD kInstrumentDisabled = 0x0040;   // drawn disabled; set and cleared by WM_ENABLE
inline constexpr DWORD kInstrumentNoCaption = 0x0080;  // digital readout without the name
inline constexpr DWORD kInstrumentShowTime = 0x0100;   // digital readout: time of day
inline constexpr DWORD kInstrumentShowDate = 0x0200;   // digital readout: date
inline constexpr DWORD kInstrumentShowAngle = 0x0400;  // digital readout: degrees, minutes, seconds
inline constexpr DWORD kInstrumentReversed = 0x0800;   // segment bar in the opposite direction
// Fits texts to the control and the range: readouts and bars show all digits of a number or, without space for them, no
// number; captions grow with the control; a wide center-zero bar is drawn horizontally. The toolkit always sets it.
inline constexpr DWORD kInstrumentFitted = 0x1000;

// A colored part of the range, in the unit of the value.
struct InstrumentZone {
  float lower, upper;
  COLORREF color;
  BYTE bytes[4];  // for the program's use, 0 by default
  DWORD word;     // for the program's use, 0 by default
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
  float step;     // also the distance to the target at which an animation stops
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
  COLORREF color;    // 0: red
  const char* unit;  // unreadable: "%"
  const char* name;  // unreadable: "Relative"
};

InstrumentBlock BuildDefaultBlock(const BlockDefaults& defaults);

// Clamps a value to the block's range, also if the minimum is larger than the maximum. NaN becomes the lower bound.
float ClampToRange(const InstrumentBlock& block, float value);

// One step of an animation to `target`: the next displayed value, and whether the animation continues. A distance of
// more than a fifth of the range, or an animation without a previous value, ends at once. Otherwise the distance
// decreases by a tenth until it is less than the block's step. With a step smaller than the value's resolution (or 0,
// NaN or infinite), the animation ends at the target itself.
struct AnimationStep {
  float current;
  bool moving;
};
AnimationStep NextAnimationStep(const InstrumentBlock& block, float target);

// The range and value to draw. The range is never empty: equal, infinite or NaN bounds are replaced by 0 and 100. The
// minimum may be larger than the maximum; then the scale is reversed.
struct InstrumentReading {
  double minimum, maximum, value;
  bool valid;
};
InstrumentReading ReadingOf(const InstrumentBlock& block);

// A value's position in the range, clamped to 0 (minimum) to 1 (maximum).
double FractionOf(const InstrumentReading& reading, double value);

// Name and unit as wide text; the fields need no terminator. A name that is not valid UTF-8 is decoded in the system's
// code page, a unit in Windows-1252 (0xB0 is the degree sign).
std::wstring InstrumentName(const InstrumentBlock& block);
std::wstring InstrumentUnit(const InstrumentBlock& block);

}  // namespace kv
