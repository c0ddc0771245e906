// NMEA text for consumers of a navigation receiver: position, speed and course as a "$GPRMC" sentence. Main thread
// only.
//
// Quirk: the sentence differs from the standard: the fraction of the minutes contains whole seconds, the date contains
// the minute in place of the month, and there is no checksum. Its readers rely on this form.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kv {

// Capacity for every sentence, with the longest numbers that a double can print.
inline constexpr size_t kSentenceSize = 1024;

struct GprmcFix {
  double latitude;   // degrees, south negative
  double longitude;  // degrees, west negative
  double speed;      // printed as given
  double course;     // printed as given
};

// The magnitude of an angle, truncated (not rounded) to whole units.
struct AngleParts {
  int degrees;
  int minutes;
  int seconds;
};

// Splits the magnitude of an angle in degrees. NaN gives zeros; values beyond the range of int are clamped.
AngleParts SplitAngle(double angle);

// Writes the sentence for `time`, including the "*" that would introduce a checksum. Returns its length; the rest of
// the buffer is zeroed.
size_t FormatGprmcSentence(const SYSTEMTIME& time, const GprmcFix& fix, char (&sentence)[kSentenceSize]);

// Stores the terminated sentence of a fix at the local time, without its trailing "*". `destination` must be writable
// for the sentence's length including the "*"; otherwise it does not change. The unnamed parameters are values of a
// receiver that the sentence does not contain. Always returns 1.
BOOL formatGprmc(char* destination, double latitude, double longitude, double, double, double speed, double course,
                 DWORD, DWORD, DWORD);

}  // namespace kv
