// Typed access to the strip charts of a dialog (controls/strip_chart/strip_chart.h), by the id of the control. Each
// call returns 0, with nothing changed, when the dialog has no strip chart of that id or the chart rejects what it is
// given. Main thread only.
#pragma once

#include <windows.h>

#include <span>

#include "controls/strip_chart/strip_chart.h"

namespace kv {

struct StripChannelText {
  const wchar_t* name;
  const wchar_t* unit = L"";        // name and unit are cut to 47 and 11 bytes of UTF-8
  COLORREF color = CLR_INVALID;     // CLR_INVALID: the colour stays, at first one of eight
  double minimum = 0, maximum = 0;  // of an axis of its own; equal: as the values need
};
// Describes a channel, 0..7, and shows it.
BOOL SetStripChartChannel(HWND dialog, int id, int channel, const StripChannelText& text);
BOOL ShowStripChartChannel(HWND dialog, int id, int channel, BOOL show);

// Samples show within 50 ms. None is taken when a time is earlier than the one before.
BOOL AppendStripChartSamples(HWND dialog, int id, int channel, std::span<const StripSample> samples);
BOOL AppendStripChartValue(HWND dialog, int id, int channel, double time, double value);
// Seconds since 1970 of the local time, to append with where the chart shows the time of day. It never goes back, even
// when the clock is set.
double StripChartNow();

// How many samples of each channel are kept.
BOOL SetStripChartCapacity(HWND dialog, int id, DWORD samples);
// Seconds shown, 0 for all that is kept, and the range of the axis for all channels, equal as the values need. The
// newest sample stands at the right then.
BOOL SetStripChartView(HWND dialog, int id, double seconds, double minimum, double maximum);
// Shows these times, whether samples come or not; the values stay as they are shown.
BOOL ShowStripChartTimes(HWND dialog, int id, StripStretch times);
// What is shown, which the user may have changed. `from` is `to` where all that is kept is shown.
BOOL GetStripChartTimes(HWND dialog, int id, StripStretch* times);
BOOL HoldStripChart(HWND dialog, int id, BOOL hold);
// The cursor's time and the marked stretch. Null removes it; reading without one returns 0.
BOOL SetStripChartCursor(HWND dialog, int id, const double* time);
BOOL GetStripChartCursor(HWND dialog, int id, double* time);
BOOL SetStripChartMark(HWND dialog, int id, const StripStretch* stretch);
BOOL GetStripChartMark(HWND dialog, int id, StripStretch* stretch);
// Forgets all samples, cursor and mark.
BOOL ClearStripChart(HWND dialog, int id);
// Shows these coloured parts of the value range, at most three, and no others.
BOOL SetStripChartZones(HWND dialog, int id, std::span<const StripZone> zones);
// Of a channel, over the marked stretch or what is shown.
BOOL ReadStripChartStatistics(HWND dialog, int id, int channel, StripStatistics* statistics);

}  // namespace kv
