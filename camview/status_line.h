// A status line: a mark, distinguished by shape as well as color, and a sentence. It is an owner-drawn label whose
// window text is the sentence, for screen readers. Main thread only.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "camera/events.h"
#include "camview/live_source.h"
#include "camview/recording_loader.h"

namespace camview {

enum class StatusMark { kNone, kGood, kWaiting, kWarning, kError, kRecording };

struct StatusLine {
  StatusMark mark = StatusMark::kNone;
  std::wstring text;
  bool operator==(const StatusLine&) const = default;
};

void DrawStatusLine(const DRAWITEMSTRUCT& item, const StatusLine& line);

// Returns "1 record", "2,000 records".
std::wstring RecordsAsText(long long count);
std::wstring BytesAsText(long long count);
// Returns date and local time of day of a UTC time in units of 100 ns since 1601, in the user's formats; "" if there is
// no such time.
std::wstring ClockAsText(std::uint64_t fileTime);
// Returns a time since the beginning with this number of decimals, in the format of the language.
std::wstring TimeAsText(double seconds, int decimals = 3);
// Returns a rate as typed, "92.9"; "" for 0.
std::wstring RateAsText(double rate);
// Returns a duration: "3 s", "1:15".
std::wstring LengthAsText(double seconds);

// Describe a recording, with `figures` of its line ("about 20 lost"; may be empty) and their warning, and a live port.
StatusLine DescribeRecording(const LoadedRecording& recording, const StatusLine& figures = {});
StatusLine DescribeLive(const LiveStatus& status);
// Describes the current or last recording of a live port.
StatusLine DescribeLiveRecording(const LiveRecording& recording);

// Describes kind, length and amount of an event.
std::wstring DescribeEvent(const camera::Event& event);

}  // namespace camview
