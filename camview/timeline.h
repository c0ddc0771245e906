// Window class "kvTimeline": a slider over a whole recording that marks its events, and in which a time can be
// selected.
//
// Appearance  The kinds of marks differ in height and pattern as well as in color: damage is full and hatched, losses
//             are lines of two thirds of the height, malformed bytes a solid bar of half the height, silence a hollow
//             bar of a third; where a point is not seen, there is a dashed line above that. Each is at least two pixels
//             wide. The part that does not depend on the position is drawn once. Not mirrored in mirrored windows.
// Keyboard    Left, Right request a step by one record from the parent; PageUp, PageDown move by a twentieth, Home, End to
//             the ends. With Shift they select from the previous position. Escape removes the selection.
// Mouse       Clicking and dragging move the position; with Shift they select. The wheel requests steps.
// Messages    kControlCommand  TimelineCommand below; returns 1, or 0 without any change when the address or the
//                              data is invalid
//             WM_PRINTCLIENT   draws into the device context in wParam
//             WM_DROPFILES     forwarded to the parent
// Notifies    kTimelineNotify... posted as WM_COMMAND when the user (not a message) has changed something. Several
//             steps may be one notification each.
// Accessible  A slider with the window's text as name and the position as value.
// Thread      The thread that owns the window.
#pragma once

#include <windows.h>

#include "camera/events.h"
#include "camview/view_time.h"
#include "kv/framework/control_class.h"

namespace camview {

inline constexpr char kTimelineClass[] = "kvTimeline";

struct TimelineMark {
  camera::EventKind kind;
  double from, to;  // seconds
};

inline constexpr DWORD kTimelineMaxMarks = 1u << 20;
struct TimelineMarks {
  DWORD count;                // at most kTimelineMaxMarks
  const TimelineMark* marks;  // each kind in ascending order; copied
};

// Operation codes, the low byte of kControlCommand's wParam; lParam is an address. kCommandRead copies the item to it.
enum TimelineCommand : BYTE {
  kTimelineRange = 17,      // a TimeRange; limits position and selection
  kTimelinePosition = 18,   // a double, clamped to the range
  kTimelineShowMarks = 19,  // TimelineMarks; cannot be read
  kTimelineVisible = 20,    // a TimeRange that other controls show: a bracket at the top, unless it is the whole
  kTimelineSelection = 24,  // a TimeRange; kCommandRemove removes it; reading returns 0 without one
};

// Notification codes.
inline constexpr WORD kTimelineNotifyPosition = 1, kTimelineNotifySelection = 2, kTimelineNotifyBack = 3,
                      kTimelineNotifyForward = 4;

// Registers (`registerIt` not 0) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterTimelineClass(HINSTANCE instance, BOOL registerIt);

}  // namespace camview
