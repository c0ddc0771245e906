// Window class "kvLineRecorder": a strip chart of up to eight channels over time. A ring buffer stores the newest
// samples of each channel; or the program supplies them. The chart scrolls or sweeps; the user can freeze the display,
// zoom, pan, hide channels, read values at a cursor or between two, and select a time range to see its statistics.
//
// Styles         The low four bits of the window style select the mode; further bits are options (kStrip... below). The
//                control copies the style when it is created; change it with kStripStyle.
// Times          In seconds since an origin that the program chooses, within +-kStripMaxTime. The times of a channel
//                never decrease; channels may have different times. With kStripTimeOfDay, multiples of 86,400 are
//                midnight.
// Values         In the channel's unit. NaN, infinite values and values beyond +-kStripMaxValue are gaps, which last until
//                the next value. What the ring buffer discards disappears, even while the display is frozen.
// Drawing        At every size from 0 x 0 pixels; text and lines are in proportion to the size, the DPI is not used.
//                Numbers have a decimal point, as in display instruments. New samples are drawn within 50 ms, at most
//                twenty times a second, or at once with kCommandRedraw. The time that drawing takes depends on the
//                number of pixels, not of samples. Time increases from left to right in mirrored windows, too.
// Notifications  kStripNotify..., posted as WM_COMMAND, for changes by the user, not by messages.
// Accessibility  WM_GETOBJECT: the name is the window text or, without one, the names of the channels. The value is the
//                values at the cursor or, without one, the newest values.
// Thread         The thread that owns the window; QueueStripSamples can be called by all threads. Timer 5 of the window
//                is reserved for the control.
//
// Keyboard and mouse:
//   Left, Right, Up, Down     pan
//   +, -, wheel               zoom the time; with Ctrl, the values
//   Home                      shows the oldest sample
//   End                       shows the newest sample and follows it
//   Space                     freezes or releases the display
//   Ctrl+Left, Ctrl+Right     move the cursor; it also follows the mouse pointer
//   Shift+Left, Shift+Right   select a time range from the cursor
//   Ctrl+C                    copies, like WM_COPY
//   Escape, double click      remove cursors and selection and return to the view that the program has set
//   Dragging, Shift+wheel     pan
//   Ctrl+dragging             zooms into a rectangle; Backspace returns to the view before
//   Ctrl+click, B             set the second cursor; B removes it, too
//   Click in the legend, 1-8  hide and show a channel
//   Shift+dragging            selects a time range
//
// Messages:
//   WM_ENABLE        draws enabled or disabled (style bit kStripDisabled; WS_DISABLED has no effect)
//   WM_COPY          puts image (CF_BITMAP) and values (CF_UNICODETEXT) on the clipboard. lParam: width and height of
//                    the image as for the display instrument, each clamped to 16..5120, or 0. The text is a table
//                    separated by tabs, with the user's decimal separator: one row for each displayed sample or, for
//                    more than kStripMaxTextRows samples, one row for each column of pixels, with minimum and maximum
//   WM_PRINTCLIENT   draws the control into the device context in wParam
//   WM_DROPFILES     is forwarded to the parent
//   kControlCommand  see below
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

#include "kv/framework/control_class.h"

namespace kv {

inline constexpr char kStripChartClass[] = "kvLineRecorder";
inline constexpr DWORD kStripVersion = 0x20261125;  // in every StripChannel and StripView; others are rejected

// Limits. Capacities are in samples per channel.
inline constexpr int kStripChannels = 8, kStripZones = 3;
inline constexpr DWORD kStripDefaultCapacity = 100000, kStripMaxCapacity = 1u << 26;
inline constexpr double kStripMaxTime = 1e15, kStripMaxValue = 1e300;
inline constexpr DWORD kStripMaxTextRows = 65536, kStripMaxEvents = 256;

// Style bits. In modes not listed here, the chart scrolls (kStripScroll).
inline constexpr DWORD kStripModeBits = 0x000F;
inline constexpr DWORD kStripScroll = 0, kStripSweep = 1;
inline constexpr DWORD kStripSeparateAxes = 0x0010;  // each channel has its own value axis
inline constexpr DWORD kStripNoLegend = 0x0020;
inline constexpr DWORD kStripDisabled = 0x0040;      // drawn disabled; set and cleared by WM_ENABLE
inline constexpr DWORD kStripLogarithmic = 0x0080;   // logarithmic value axes; values of 0 and below are not drawn
inline constexpr DWORD kStripTimeOfDay = 0x0100;     // the time axis shows hours, minutes and seconds
inline constexpr DWORD kStripSymbols = 0x0200;       // symbols on the lines: colors alone need not tell them apart
inline constexpr DWORD kStripNoStatistics = 0x0400;  // no tooltip with the statistics of the selection
inline constexpr DWORD kStripElapsed = 0x0800;       // times are minutes and seconds, 1:15, or with hours, 1:02:03

struct StripSample {
  double time, value;
};
static_assert(sizeof(StripSample) == 16);

// A time range, including both ends.
struct StripTimeRange {
  double from, to;
};

struct StripSamples {
  DWORD count;
  const StripSample* samples;  // used only during the call
};

// Samples that the program stores itself: the chart copies none of them, as an owner-data list view copies no items. It
// asks for what its columns of pixels need, so millions of samples are drawn in a few milliseconds.
//
// The functions are called on the thread of the window, while it handles a message of any kind. `context` is passed to
// each of them. They and the context must remain valid until the source is removed or replaced, or the window is
// destroyed. Change the samples on that thread, too, and not from within the functions, which must not call the chart.
//
// Samples have numbers from numbers().first to numbers().end - 1, at most 2^31 - 1 of them; dropping the oldest samples
// does not change the numbers of the others. Their times never decrease. A gap is a sample without a value (as above),
// or lies between a sample with kStripGapBefore and the previous one.
inline constexpr DWORD kStripGapBefore =
    1;  // state bit of StripSuppliedSample: nothing is known between the two samples
struct StripSuppliedSample {
  double time, value;
  DWORD state;
};
struct StripNumbers {
  long long first, end;
};
struct StripExtent {
  double minimum, maximum;  // minimum > maximum: no values
};
struct StripSource {
  DWORD version;  // kStripVersion
  void* context;
  StripNumbers (*numbers)(void* context, int channel);
  // The first sample at or after a time; `end` if there is none. Times may be rounded.
  long long (*find)(void* context, int channel, double time);
  // Stores `count` samples, which exist.
  void (*read)(void* context, int channel, long long number, DWORD count, StripSuppliedSample* samples);
  // The minimum and maximum of the values of samples from..to-1. Null: the chart reads the samples, which takes long if
  // there are millions.
  StripExtent (*extent)(void* context, int channel, long long from, long long to);
  // The time range in which the user can move the display, and whose end it follows. Null: that of the samples.
  StripTimeRange (*times)(void* context, int channel);
};

inline constexpr DWORD kStripVisible = 1;  // state bit of StripChannel
struct StripChannel {
  DWORD version;  // kStripVersion
  DWORD state;    // kStripVisible
  char name[48];  // UTF-8
  char unit[12];  // UTF-8
  COLORREF color;
  double minimum, maximum;  // of its axis (kStripSeparateAxes); automatic unless finite and minimum < maximum
};
static_assert(sizeof(StripChannel) == 88 && offsetof(StripChannel, color) == 68);

// A colored part of the value range.
struct StripZone {
  double lower, upper;
  COLORREF color;
  DWORD channel;  // with kStripSeparateAxes: the channel whose axis defines the values
};
static_assert(sizeof(StripZone) == 24);

// State bits of StripView.
inline constexpr DWORD kStripFollow = 1;  // the newest sample is at the right edge
inline constexpr DWORD kStripFrozen = 2;  // the display is frozen; new samples are stored and shown after its release
struct StripView {
  DWORD version;            // kStripVersion
  DWORD state;              // kStripFollow, kStripFrozen
  double span;              // displayed seconds; 0: all stored samples
  double end;               // the time at the right edge; with kStripFollow, it can only be read
  double minimum, maximum;  // of the common axis; automatic unless finite and minimum < maximum
  double zoom, shift;       // the value range is divided by `zoom`, then moved by `shift` times itself; default 1 and 0
};
static_assert(sizeof(StripView) == 56 && offsetof(StripView, zoom) == 40);

// The values at a time. A channel's value is that of the sample at or before this time; NaN before its first and after
// its newest sample and in gaps, from the sample that begins a gap to the next one.
struct StripReading {
  double time;
  double values[kStripChannels];  // can only be read
};
static_assert(sizeof(StripReading) == 72);

// A vertical line with a text at a time.
struct StripEvent {
  double time;
  char text[56];  // UTF-8
};
static_assert(sizeof(StripEvent) == 64);

// Reads samples of a channel back. With a source, gaps between samples are not included.
struct StripReadBack {
  double from, to;       // times, including both ends
  DWORD capacity;        // of `samples`; may be 0
  StripSample* samples;  // gets the first of them, in the order of their times
  DWORD count;           // gets the number of samples within from..to, which may exceed the capacity
};

// Statistics of the values that are not gaps. Without values, `count` is 0 and the other fields are NaN.
struct StripStatistics {
  double count, minimum, maximum, mean;
  double deviation;  // standard deviation of the sample (n - 1); 0 for a single value
};
static_assert(sizeof(StripStatistics) == 40);

// Codes of kControlCommand (low byte of wParam). Each returns 1 on success; it returns 0 and changes nothing when it
// rejects the address or its content. With kCommandRead the item is copied to lParam. With kCommandRedraw a change is
// painted before the call returns. wParam's high word is the index of a channel or zone.
inline constexpr WPARAM kStripRender = 0;     // renders and paints everything; no address
inline constexpr WPARAM kStripClear = 1;      // removes all samples, events, cursors and selection; no address
inline constexpr WPARAM kStripStyle = 3;      // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kStripChannel = 17;   // a StripChannel; kCommandRemove removes the channel and its samples
inline constexpr WPARAM kStripAppend = 18;    // StripSamples; all are rejected if one time is not allowed
inline constexpr WPARAM kStripZone = 20;      // a StripZone; shown with kStripZoneEnable, otherwise hidden
inline constexpr WPARAM kStripCapacity = 21;  // a DWORD, 1..kStripMaxCapacity; rejected if allocation fails
inline constexpr WPARAM kStripViewItem = 22;  // a StripView
// The cursor, a StripReading; kCommandRemove removes it. Reading returns 0 if there is none.
inline constexpr WPARAM kStripCursor = 23;
// The second cursor, B: the tooltip of the cursor shows the differences of time and values.
inline constexpr WPARAM kStripCursorB = 31;
// A StripEvent, which is added; beyond kStripMaxEvents the earliest is discarded. kCommandRemove removes all.
inline constexpr WPARAM kStripEventItem = 32;
// Read only: a StripReadBack.
inline constexpr WPARAM kStripReadBack = 33;
// The selection, a StripTimeRange; kCommandRemove removes it. Reading returns 0 if there is none.
inline constexpr WPARAM kStripSelection = 24;
// Read only: StripStatistics of a channel over the selection or, without one, the displayed time range.
inline constexpr WPARAM kStripStatistics = 25;
inline constexpr WPARAM kStripCount = 26;  // read only: a DWORD, the number of stored samples of a channel
// A DWORD: space for at least that many characters, up to 16, at each value axis; it aligns charts above each other.
inline constexpr WPARAM kStripAxisDigits = 27;

// A StripSource: the channel's samples are the program's. kStripAppend is rejected then. kCommandRemove removes the
// source; the channel is empty then. Set the source again when other samples take the place of those shown.
inline constexpr WPARAM kStripSource = 28;
// Samples of the sources have been appended or dropped: they are shown as with kStripAppend. No address.
inline constexpr WPARAM kStripUpdate = 29;
// Read only: a DWORD, the number of samples of QueueStripSamples that were rejected since the chart was created.
inline constexpr WPARAM kStripRejected = 30;

inline constexpr WPARAM kStripZoneEnable = 0x0400;  // kStripZone: shows the zone

// Notification codes.
inline constexpr WORD kStripNotifyView = 1, kStripNotifyCursor = 2, kStripNotifySelection = 3;
inline constexpr WORD kStripNotifyCursorSet = 4;  // the cursor was placed, by a click without dragging or by keys
inline constexpr WORD kStripNotifyChannels = 5;   // a channel was hidden or shown
inline constexpr WORD kStripNotifyCursorB = 6;    // the second cursor was set or removed

// Appends samples from any thread, without waiting for the window: they are queued, and shown within about 50 ms. Every
// command on the window's thread finds those that were queued before. Returns 0 and queues none of them if the window
// is not, or no longer, a strip chart, if a time is not allowed, or if the queue of the chart is full:
// kStripQueueCapacity samples wait, because the window's thread has not handled messages for long. The caller decides
// whether to try again later or to give up; in that case a sample of NaN shows the gap. Only one thread should append
// to a channel: otherwise samples that another thread overtakes are rejected later (kStripRejected). The chart's window
// may be destroyed at any time.
inline constexpr DWORD kStripQueueCapacity = 65536;
BOOL QueueStripSamples(HWND chart, int channel, std::span<const StripSample> samples);

// Registers (non-zero flag) or unregisters the class "kvLineRecorder". Returns 0 only when registering fails.
BOOL RegisterLineRecorderClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
