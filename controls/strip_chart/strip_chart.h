// The window class "kvLineRecorder": a strip chart of up to eight channels over time. It keeps the newest samples of
// each channel in a ring, shows them as a paper that scrolls or as a sweep, and lets its user hold, zoom, pan, read
// values at a cursor and mark a stretch to see its statistics. controls/line_recorder.h registers it.
//
// Styles      The low four bits of the window style are the mode, further bits vary it: kStrip... below. The control
//             copies the style when it is created; later changes go through kStripStyle.
// Times       Seconds, from whatever the owner counts from, within +-kStripMaxTime; those of one channel never
//             decrease, and channels may have different ones. With kStripTimeOfDay a multiple of 86,400 is a midnight.
// Values      In the channel's unit. NaN is a gap, and so is what is infinite or beyond +-kStripMaxValue.
// Picture     From 0 x 0 pixels up; text and lines grow with the control, nothing reads the dpi. Numbers have the point
//             of the display instruments. New samples show within 50 ms, at most twenty pictures a second, or at once
//             with kCommandRedraw. What it costs depends on the pixels, not on the samples. Time runs from left to
//             right in mirrored windows as well.
// Keyboard    Left, Right and Up, Down pan, + and - zoom the time (with Ctrl the values), Home goes to the oldest
//             sample, End to the newest and follows it, Space holds and releases, Ctrl with Left or Right moves the
//             cursor, Shift with Left or Right marks from it, Escape removes cursor and mark and returns to the view
//             that the owner set, Ctrl+C copies.
// Mouse       The wheel zooms the time (with Ctrl the values, with Shift it pans), dragging pans, dragging with Shift
//             marks a stretch, and the cursor follows the pointer. A double click does what Escape does.
// Messages    WM_ENABLE    draws disabled or enabled (style bit kStripDisabled; not by WS_DISABLED).
//             WM_COPY      puts picture (CF_BITMAP) and values (CF_UNICODETEXT) on the clipboard, Ctrl+C likewise.
//                          lParam as for the display instrument: the picture's width and height, each clamped to
//                          16..5120, or 0. The text is a table with tabs, decimal separator as the user has it: one
//                          row for each sample shown, or where those are more than kStripMaxTextRows, one for each
//                          column of pixels with minimum and maximum.
//             WM_PRINTCLIENT  draws what it shows into the device context in wParam.
//             WM_DROPFILES sent on to the parent.
//             kControlCommand  below.
// Notifies    kStripNotify... as WM_COMMAND, posted, when the user (not a message) has changed something.
// Read out    Screen readers hear the window's text as name, or the names of the channels, and as value the values at
//             the cursor, or without one the newest.
// Threads     The thread that owns the window. Timer 5 of the window is the control's.
#pragma once

#include <windows.h>

#include <cstddef>

#include "framework/control_class.h"

namespace kv {

inline constexpr char kStripChartClass[] = "kvLineRecorder";
inline constexpr DWORD kStripVersion = 0x20261125;  // in every StripChannel and StripView; others are rejected

inline constexpr int kStripChannels = 8, kStripZones = 3;
inline constexpr DWORD kStripDefaultCapacity = 100000, kStripMaxCapacity = 1u << 26;  // samples of each channel
inline constexpr double kStripMaxTime = 1e15, kStripMaxValue = 1e300;
inline constexpr DWORD kStripMaxTextRows = 65536;

// Style bits.
inline constexpr DWORD kStripModeBits = 0x000F;
inline constexpr DWORD kStripPaper = 0, kStripSweep = 1;  // other modes are paper
inline constexpr DWORD kStripOwnAxes = 0x0010;            // a value axis for each channel instead of one for all
inline constexpr DWORD kStripNoLegend = 0x0020;
inline constexpr DWORD kStripDisabled = 0x0040;  // drawn disabled; follows WM_ENABLE
inline constexpr DWORD kStripNoGrid = 0x0080;
inline constexpr DWORD kStripTimeOfDay = 0x0100;     // the time axis shows hours, minutes and seconds
inline constexpr DWORD kStripNoAxes = 0x0200;        // no numbers
inline constexpr DWORD kStripNoStatistics = 0x0400;  // a marked stretch has no tip with its statistics

struct StripSample {
  double time, value;
};
static_assert(sizeof(StripSample) == 16);

struct StripSamples {
  DWORD count;
  const StripSample* samples;  // read during the call only
};

inline constexpr DWORD kStripVisible = 1;  // state bit of channels
struct StripChannel {
  DWORD version;    // kStripVersion
  DWORD state;      // kStripVisible
  char szName[48];  // UTF-8
  char szUnit[12];  // UTF-8
  COLORREF color;
  double minimum, maximum;  // of its own axis (kStripOwnAxes); equal, backwards or not finite: as the values need
};
static_assert(sizeof(StripChannel) == 88 && offsetof(StripChannel, color) == 68);

// A coloured part of the value range.
struct StripZone {
  double lower, upper;
  COLORREF color;
  DWORD channel;  // whose axis it is in with kStripOwnAxes
};
static_assert(sizeof(StripZone) == 24);

inline constexpr DWORD kStripFollow = 1;  // state bits of views: the newest sample stands at the right
inline constexpr DWORD kStripHold = 2;    // the picture stands; samples are still kept, and show when it is released
struct StripView {
  DWORD version;            // kStripVersion
  DWORD state;              // kStripFollow, kStripHold
  double span;              // seconds shown; 0: all that is kept
  double end;               // the time at the right edge; with kStripFollow, reading only
  double minimum, maximum;  // of the axis for all channels; equal, backwards or not finite: as the values need
  double zoom, shift;       // of values: the range divided by `zoom`, then moved by `shift` parts of itself; 1 and 0
};
static_assert(sizeof(StripView) == 56 && offsetof(StripView, zoom) == 40);

// Values at a time: those of the nearest sample of each channel; NaN where there is none.
struct StripReading {
  double time;
  double values[kStripChannels];  // reading only
};
static_assert(sizeof(StripReading) == 72);

// From one time to another, both included.
struct StripStretch {
  double from, to;
};

// Of the values that are not gaps. Without any, `count` is 0 and the rest NaN.
struct StripStatistics {
  double count, minimum, maximum, mean;
  double deviation;  // standard deviation of the sample (n - 1); 0 for a single value
};
static_assert(sizeof(StripStatistics) == 40);

// Codes of kControlCommand (low byte of wParam). Each returns 1 when it did what it was asked for and 0, with nothing
// changed, when it rejects an address or what stands there. With kCommandRead the item is copied to lParam; with
// kCommandRedraw a change is painted before the call returns. A channel or zone is named in wParam's high word.
inline constexpr WPARAM kStripRender = 0;     // renders and paints anew; no address
inline constexpr WPARAM kStripClear = 1;      // forgets all samples, cursor and mark; no address
inline constexpr WPARAM kStripStyle = 3;      // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kStripChannel = 17;   // a StripChannel; with kCommandRemove the channel and its samples go
inline constexpr WPARAM kStripAppend = 18;    // StripSamples; all or, where a time is not allowed, none
inline constexpr WPARAM kStripZone = 20;      // a StripZone; shown with kStripZoneEnable, otherwise not
inline constexpr WPARAM kStripCapacity = 21;  // a DWORD, 1..kStripMaxCapacity; rejected when memory is short
inline constexpr WPARAM kStripViewItem = 22;  // a StripView
inline constexpr WPARAM kStripCursor = 23;    // a StripReading; with kCommandRemove it goes; reading without one: 0
inline constexpr WPARAM kStripMark = 24;      // a StripStretch, likewise
inline constexpr WPARAM kStripStatistics =
    25;                                    // read only: StripStatistics of a channel over the mark, or what is shown
inline constexpr WPARAM kStripCount = 26;  // read only: a DWORD, how many samples of a channel are kept

inline constexpr WPARAM kStripZoneEnable = 0x0400;  // flag of kStripZone

// Notification codes.
inline constexpr WORD kStripNotifyView = 1, kStripNotifyCursor = 2, kStripNotifyMark = 3;
inline constexpr WORD kStripNotifyClick = 4;  // a click that dragged nothing; the cursor is where it was

}  // namespace kv
