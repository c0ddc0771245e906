// The position in a recording during playback, on any monotonic clock; and times as text. Pure.
#pragma once

#include <string>
#include <string_view>

#include "camview/record_store.h"

namespace camview {

inline constexpr double kSlowest = 0.1, kFastest = 100;

struct Playback {
  double begin = 0, end = 0;  // of the recording, seconds
  double position = 0;        // as of `clock`
  double speed = 1;
  bool isPlaying = false;
  double clock = 0;
};

// Advances the position to that time of the clock, and stops at the end. Call before the other functions, which do not
// use the clock, and before reading `position`.
void Advance(Playback* playback, double clock);

// Starts playback; at the end, from the beginning.
void Play(Playback* playback);
void Pause(Playback* playback);
void Seek(Playback* playback, double position);   // within the recording
void SetSpeed(Playback* playback, double speed);  // within kSlowest .. kFastest
// Pauses, and moves by `by` records forwards or backwards from the current one.
void Step(Playback* playback, const RecordStore& store, int by);

// Parses "75.2", "1:15" or "1:02:03.5": seconds, minutes and seconds, with hours. Both . and , are decimal signs;
// surrounding blanks are allowed. Minutes and seconds after a colon are below 60. Returns false for anything else.
bool ParseTime(std::string_view text, double* seconds);

// Formats "0:00.000", "1:15.200" or "1:02:03.500" with this number of decimals (0 to 6); `sign` is the decimal sign.
std::string FormatTime(double seconds, int decimals, char sign = '.');

}  // namespace camview
