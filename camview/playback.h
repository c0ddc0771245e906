// The position in a recording that is played, on any clock that does not go back; and times as text. Pure.
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

// Moves the position to where it is at that time of the clock, and stops at the end. To be called before the others,
// which leave the clock alone, and before `position` is read.
void Advance(Playback* playback, double clock);

// From the end it starts again at the beginning.
void Play(Playback* playback);
void Pause(Playback* playback);
void Seek(Playback* playback, double position);   // within the recording
void SetSpeed(Playback* playback, double speed);  // within kSlowest .. kFastest
// Pauses at the next record after (`by` > 0) or before the one that is shown, `by` records away.
void Step(Playback* playback, const RecordStore& store, int by);

// "75.2", "1:15", "1:02:03.5": seconds, minutes and seconds, with hours. Both . and , are decimal signs; blanks around
// are allowed. Minutes and seconds after a colon are below 60. False for anything else.
bool ParseTime(std::string_view text, double* seconds);

// "0:00.000", "1:15.200", "1:02:03.500" with that many decimals (0 to 6); `sign` is the decimal one.
std::string FormatTime(double seconds, int decimals, char sign = '.');

}  // namespace camview
