// The time of the window: what is open, from where to where; the current position; the time under the pointer; the
// selection; what the charts show; whether a live port is frozen; and playback on any monotonic clock. And times as
// text. Pure. All times are seconds of the source's clock, which starts at 0.
#pragma once

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "camview/record_store.h"

namespace camview {

inline constexpr double kNoTime = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kSlowest = 0.1, kFastest = 100;
inline constexpr double kShortestShown = 0.001;

struct TimeRange {
  double from = 0, to = 0;
  double Length() const { return to - from; }
  bool operator==(const TimeRange&) const = default;
};

struct ViewTime {
  double begin = 0, end = 0;  // of what is open
  double position = 0;        // during playback, as of `clock`
  double speed = 1;
  bool isPlaying = false;
  double clock = 0;

  // A live port, or a recording that grows. Unless it is frozen, it is followed: the position is its end.
  bool isLive = false, isFrozen = false;
  double hovered = kNoTime;  // the time under the pointer in a chart
  std::optional<TimeRange> selection;
  std::optional<double> cursorB;  // what the charts compare with the shown time
  TimeRange shown;                // by the charts
  double liveSpan = 10;
  bool showsAll = false;  // `shown` grows with what is followed

  bool IsFollowing() const { return isLive && !isFrozen; }
  // The time that all parts of the window show.
  double Shown() const { return std::isnan(hovered) ? position : hovered; }
};

// Begins with a source of this range, at its beginning or, for a live port, following its end; the charts show all of a
// recording. Speed and liveSpan are kept.
void Restart(ViewTime* time, TimeRange whole, bool isLive);

// Sets the range of a source that grows. A followed one moves to its end.
void Grow(ViewTime* time, TimeRange whole);

// A recording has turned out to grow: it is followed if the position is at its end, otherwise like a frozen port. Or it
// does not grow any more.
void SetLive(ViewTime* time, bool isLive);

// ---- Position -------------------------------------------------------------------------------------------------------

// Advances the position to that time of the clock, and stops at the end or follows it if it grows; the charts scroll
// along. Call before the other functions, which do not use the clock, and before reading `position`.
void Advance(ViewTime* time, double clock);

// Starts playback; at the end, from the beginning.
void Play(ViewTime* time);
void Pause(ViewTime* time);
// Moves within the range and scrolls the charts to it; freezes a live port, or follows it at its end.
void Seek(ViewTime* time, double position);
void SetSpeed(ViewTime* time, double speed);  // within kSlowest .. kFastest
// Pauses, and moves by `by` records forwards or backwards from the current one.
void Step(ViewTime* time, const RecordStore& store, int by);
// Freezes a live port, or follows it again.
void Freeze(ViewTime* time, bool freeze);

// ---- Ranges ---------------------------------------------------------------------------------------------------------

// Selects what of it exists.
void Select(ViewTime* time, TimeRange selection);
// Selects the same, moves to its beginning and shows it in the charts; freezes a live port.
void SelectAndShow(ViewTime* time, TimeRange selection);
// Sets the second cursor, within the source.
void SetCursorB(ViewTime* time, double at);
// Shows a range in the charts, moved and shortened so that it lies within the source. For one that is followed, shows
// as many seconds before its end.
void ShowRange(ViewTime* time, TimeRange range);
// Shows that many seconds around the position; 0: everything.
void ShowSeconds(ViewTime* time, double seconds);
// What the user made the charts show. Moves the time under the pointer along. Freezes a live port unless the range ends
// with it.
void ShowByUser(ViewTime* time, TimeRange range);

// ---- Text -----------------------------------------------------------------------------------------------------------

// Parses "75.2", "1:15" or "1:02:03.5": seconds, minutes and seconds, with hours. Both . and , are decimal signs;
// surrounding blanks are allowed. Minutes and seconds after a colon are below 60. Returns false for anything else.
bool ParseTime(std::string_view text, double* seconds);

// Parses two times with "-", "–" (UTF-8) or ".." between them, or a time, "+" and a length: "1:10 - 1:25.5",
// "1:10 + 15". Returns false for anything else, but the second time may be before the first.
bool ParseTimeRange(std::string_view text, TimeRange* range);

// Formats "0:00.000", "1:15.200" or "1:02:03.500" with this number of decimals (0 to 6).
std::string FormatTime(double seconds, int decimals);

}  // namespace camview
