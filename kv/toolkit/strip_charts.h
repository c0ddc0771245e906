// Typed functions for the strip charts of a dialog (kv/controls/strip_chart/strip_chart.h), selected by control id. All
// functions return 0 and change nothing when the dialog has no strip chart with that id or the chart rejects an
// argument. Main thread only, except where any thread is named.
#pragma once

#include <windows.h>

#include <span>
#include <vector>

#include "kv/controls/strip_chart/strip_chart.h"

namespace kv {

struct StripChannelOptions {
  const wchar_t* name;
  const wchar_t* unit = L"";        // the name is truncated to 47 bytes of UTF-8, the unit to 11
  COLORREF color = CLR_INVALID;     // CLR_INVALID: unchanged; the default is one of eight colors
  double minimum = 0, maximum = 0;  // of the channel's own axis; equal: automatic
};
// Describes a channel, 0..7, and shows it.
BOOL SetStripChartChannel(HWND dialog, int id, int channel, const StripChannelOptions& options);
BOOL ShowStripChartChannel(HWND dialog, int id, int channel, BOOL show);

// Samples are displayed within 50 ms. All are rejected if a time is earlier than the previous one. Any thread: another
// one than the dialog's does not wait for the dialog, which may be closed meanwhile; the samples are queued, or
// rejected when kStripQueueCapacity samples wait already (see QueueStripSamples).
BOOL AppendStripChartSamples(HWND dialog, int id, int channel, std::span<const StripSample> samples);
BOOL AppendStripChartValue(HWND dialog, int id, int channel, double time, double value);
// Lets the program supply the samples of a channel (see StripSource); null removes the source.
BOOL SetStripChartSource(HWND dialog, int id, int channel, const StripSource* source);
// Shows samples that the sources have appended or dropped, within 50 ms.
BOOL UpdateStripChart(HWND dialog, int id);
// The local time in seconds since 1970, for charts that show the time of day. It never decreases, even when the clock
// is set back. Any thread.
double StripChartNow();

// The number of samples from other threads that were rejected.
BOOL GetStripChartRejected(HWND dialog, int id, DWORD* samples);

// Sets the number of samples that each channel stores.
BOOL SetStripChartCapacity(HWND dialog, int id, DWORD samples);
// Reserves space for at least that many characters (up to 16) at the value axis, which aligns charts above each other.
BOOL SetStripChartAxisDigits(HWND dialog, int id, DWORD digits);
// Sets the displayed time span in seconds (0: all stored samples) and the range of the common axis (equal: automatic).
// The chart then follows the newest sample.
BOOL SetStripChartView(HWND dialog, int id, double seconds, double minimum, double maximum);
// Shows a fixed time range, also while samples are appended; the value range does not change.
BOOL ShowStripChartTimes(HWND dialog, int id, StripTimeRange times);
// Displays the newest seconds and follows the newest sample; the value range does not change.
BOOL FollowStripChart(HWND dialog, int id, double seconds);
// The displayed time range, which the user may have changed. `from` equals `to` when all stored samples are shown.
BOOL GetStripChartTimes(HWND dialog, int id, StripTimeRange* times);
// Freezes or releases the display, which the user may also do by the keyboard.
BOOL FreezeStripChart(HWND dialog, int id, BOOL freeze);
BOOL IsStripChartFrozen(HWND dialog, int id);
// Sets or clears style bits (kStripSweep, kStripSeparateAxes, kStripNoLegend ...).
BOOL SetStripChartStyle(HWND dialog, int id, DWORD bits, BOOL set);
// The cursor's time, and the selected time range. Null removes it; reading returns 0 if there is none.
BOOL SetStripChartCursor(HWND dialog, int id, const double* time);
BOOL GetStripChartCursor(HWND dialog, int id, double* time);
BOOL SetStripChartSelection(HWND dialog, int id, const StripTimeRange* range);
BOOL GetStripChartSelection(HWND dialog, int id, StripTimeRange* range);
// The second cursor, with which the chart shows differences of time and values. Null removes it; reading returns 0 if
// there is none.
BOOL SetStripChartCursorB(HWND dialog, int id, const double* time);
BOOL GetStripChartCursorB(HWND dialog, int id, double* time);
// Marks a time with a line and a text (55 bytes of UTF-8). Null as text removes all events.
BOOL AddStripChartEvent(HWND dialog, int id, double time, const wchar_t* text);
// Reads the samples of a channel back, those within the range; null: all. A gap is a value of NaN.
BOOL GetStripChartSamples(HWND dialog, int id, int channel, const StripTimeRange* range,
                          std::vector<StripSample>* samples);
// Saves the samples of all channels, within the range (null: all), as a file of comma-separated values in UTF-8: a line
// with the names, then one for each time at which a channel has a sample, with empty fields for other channels and
// gaps. Numbers have a decimal point. Returns 0, with the reason in GetLastError, and leaves an existing file as it
// was, when the file cannot be written.
BOOL SaveStripChartCsv(HWND dialog, int id, const wchar_t* path, const StripTimeRange* range);
// Removes all samples, events, cursors and the selection.
BOOL ClearStripChart(HWND dialog, int id);
// Replaces all zones, which are colored parts of the value range; at most three.
BOOL SetStripChartZones(HWND dialog, int id, std::span<const StripZone> zones);
// The statistics of a channel over the selection or, without one, the displayed time range.
BOOL GetStripChartStatistics(HWND dialog, int id, int channel, StripStatistics* statistics);

}  // namespace kv
