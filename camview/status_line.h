// A line that says how things are: a mark, whose shape tells as much as its colour, and a sentence. It is an
// owner-drawn label, whose window text is the sentence, so that screen readers find it. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "camview/live_source.h"
#include "camview/recording_loader.h"

namespace camview {

enum class StatusMark { kNone, kGood, kWaiting, kWarning, kError, kRecording };

struct StatusLine {
  StatusMark mark = StatusMark::kNone;
  std::wstring text;
  bool operator==(const StatusLine&) const = default;
};

// Shows another line in the control, if it is another one.
void SetStatusLine(HWND window, int id, const StatusLine& line, StatusLine* shown);
void DrawStatusLine(const DRAWITEMSTRUCT& item, const StatusLine& line);

// A string resource with its %s and %d replaced, cut at 1,000 characters.
std::wstring TextWith(UINT id, ...);
// A time since the beginning, with so many decimals, in the form of the language.
std::wstring TimeAsText(double seconds, int decimals = 3);
// "3 s", "1:15"
std::wstring LengthAsText(double seconds);

// What an opened recording is like, and a live port.
StatusLine DescribeRecording(const LoadedRecording& recording);
StatusLine DescribeLive(const LiveStatus& status);
// What is being recorded, or was.
StatusLine DescribeLiveRecording(const LiveStatus& status);

}  // namespace camview
