// Window class "kvTimeline": a slider over a whole recording. Where it is damaged or silent is marked on it, and a
// stretch of it can be selected.
//
// Picture     The kinds of stretches differ in height and pattern as well as in colour: lost bytes full and hatched,
//             malformed ones half as high, silence a hollow bar. However short, each is two pixels wide. What of it
//             does not change with the position is drawn once. Not mirrored in mirrored windows.
// Keyboard    Left, Right ask the parent for a step by one record; PageUp, PageDown move by a twentieth, Home, End to
//             the ends. With Shift they select from where the position was. Escape removes the selection.
// Mouse       Clicking and dragging move the position; with Shift they select. The wheel asks for steps.
// Messages    kControlCommand  TimelineCommand below; result 1, or 0 with nothing changed when the address, or what
//                              stands there, is bad
//             WM_PRINTCLIENT   draws it into the device context in wParam
//             WM_DROPFILES     sent on to the parent
// Notifies    kTimelineNotify... as WM_COMMAND, posted, when the user (not a message) has changed something. Several
//             steps may be one notification each.
// Read out    Screen readers hear a slider, the window's text as name and the position as value.
// Threads     The thread that owns the window.
#pragma once

#include <windows.h>

#include "camview/record_store.h"
#include "framework/control_class.h"

namespace camview {

inline constexpr char kTimelineClass[] = "kvTimeline";

struct TimelineSpan {
  double from, to;  // seconds, from <= to
};

inline constexpr DWORD kTimelineMaxStretches = 1u << 20;
struct TimelineMarks {
  DWORD count;               // at most kTimelineMaxStretches
  const Stretch* stretches;  // of one kind in rising order; copied
};

// Operation codes, the low byte of kControlCommand's wParam; lParam is an address. With kCommandRead the item is copied
// there.
enum TimelineCommand : BYTE {
  kTimelineRange = 17,      // a TimelineSpan; pulls position and selection into it
  kTimelinePosition = 18,   // a double, pulled into the range
  kTimelineShowMarks = 19,  // TimelineMarks; not read
  kTimelineSelection = 24,  // a TimelineSpan; with kCommandRemove it goes; reading without one: 0
};

// Notification codes.
inline constexpr WORD kTimelineNotifyPosition = 1, kTimelineNotifySelection = 2, kTimelineNotifyBack = 3,
                      kTimelineNotifyForward = 4;

// Registers (non-zero) or unregisters the class; returns 0 only when registering fails.
BOOL RegisterTimelineClass(HINSTANCE instance, BOOL registerIt);

}  // namespace camview
