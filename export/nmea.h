// NMEA text for the consumers of a navigation receiver: position, speed and course as a "$GPRMC" sentence. Main thread.
//
// The sentence has a form of its own: the minutes' fraction carries whole seconds, the date carries the minute where
// others put the month, and no checksum follows. Its readers rely on that form.
#pragma once

#include <windows.h>

#include <cstddef>

namespace kv {

// Room for every sentence, with the longest numbers that a double can print.
inline constexpr size_t kSentenceSize = 1024;

struct GprmcFix {
  double latitude;   // degrees, south negative
  double longitude;  // degrees, west negative
  double speed;      // printed as given
  double course;     // printed as given
};

// An angle without its sign, cut (not rounded) to whole units.
struct AngleParts {
  int degrees;
  int minutes;
  int seconds;
};

// Splits the magnitude of an angle in degrees. NaN gives zeros; what an int cannot hold gives the nearest one.
AngleParts SplitAngle(double angle);

// The whole sentence at `time`, with the "*" that would introduce a checksum. Returns its length; the rest of the
// buffer is zeroed.
size_t FormatGprmcSentence(const SYSTEMTIME& time, const GprmcFix& fix, char (&sentence)[kSentenceSize]);

// Stores the sentence of a fix at the local time, without its closing "*", and a terminator. The sentence's length
// counted with the "*" is the size that `destination` must have; if that is not writable, it is left unchanged. The
// unnamed values are what a receiver knows besides; the sentence has no field for them. Always 1.
BOOL formatGprmc(char* destination, double latitude, double longitude, double, double, double speed, double course,
                 DWORD, DWORD, DWORD);

}  // namespace kv
