// Layout, drawing and partial updates of a strip chart. The time axis consists of whole columns of pixels; column 0
// begins at time 0. Therefore the chart scrolls by whole pixels, and only changed columns are drawn. The thread that
// owns the control.
#pragma once

#include <windows.h>

#include <array>

#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/trace.h"
#include "kv/framework/canvas.h"
#include "kv/framework/guards.h"

namespace kv {

struct StripAxis {
  int channel;  // -1: the common axis
  RECT area;    // the area of its numbers
  AxisRange range;
  double step;
};

struct StripLayout {
  SIZE size;
  int fontPx, digitPx;  // character height, digit width
  int symbolPx;         // radius; 0: none
  RECT legend, plot;
  int labelsPx;     // height of the times below the plot; 0: none
  int axes, gapPx;  // gapPx: free columns after the newest sample of a sweep
  std::array<StripAxis, kStripChannels> axis;
  double secondsPerColumn, timeStep, lineWidth;
  long long lastColumn;  // at the right edge, or the newest of a sweep
  BOOL sweeps, isLogarithmic;
};
StripLayout LayoutStrip(const StripModel& model, SIZE size);

// Conversion between times and x coordinates; for times that are not displayed, x is outside the plot.
double TimeAtX(const StripLayout& layout, LONG x);
LONG XOfTime(const StripLayout& layout, double time);
// The resolution with which a value of the channel is read.
double ReadingStep(const StripLayout& layout, int channel, double value);
// The symbol of a channel (kStripSymbols).
void DrawSymbol(Canvas& canvas, int channel, PointD center, double radius, COLORREF color, COLORREF inside);
// The axis of a channel.
const StripAxis& AxisOf(const StripLayout& layout, int channel);

struct StripColors {
  COLORREF panel, text, ground, ink, grid, frame, tooltip, tooltipText, selection, hidden;
  std::array<COLORREF, kStripChannels> lines;
  std::array<COLORREF, kStripZones> zones;
};
StripColors ColorsOf(const StripModel& model);

std::wstring ChannelName(const StripChannel& channel);
std::wstring ChannelUnit(const StripChannel& channel);
LONG WidthOf(HDC dc, const std::wstring& text);
// Draws a line of text, which its area does not clip; `align`: DT_... flags.
void DrawTextIn(HDC dc, const std::wstring& text, RECT area, COLORREF color, UINT align);
// Leaves out the middle of a text that is too wide, because names of channels often differ only at the end.
std::wstring ShortenedText(HDC dc, const std::wstring& text, LONG width);

// Whether the image has an overlay, which changes when the chart scrolls.
bool HasOverlay(const StripModel& model);

class StripRenderer {
 public:
  // Updates the image and returns the changed rectangles; with `redrawAll` draws everything.
  RECT Update(StripModel& model, SIZE size, bool redrawAll);
  // The image with cursors, events, tooltip, `zoomed` part (may be empty) and focus frame; without them, the image of
  // Update.
  const Surface& WithOverlay(const StripModel& model, const RECT& zoomed, bool focused);

  const StripLayout& layoutShown() const { return key_.layout; }
  const Surface& surface() const { return surface_; }
  // The channel in whose legend a point is; -1: none.
  int LegendItemAt(POINT place) const;
  HDC memoryDc() const { return dc_; }

 private:
  // Everything except the samples on which a column depends; compared byte by byte, without the time at the right edge.
  struct Key {
    StripLayout layout;
    StripColors colors;
    DWORD style, channels, hasSelection;
    StripTimeRange selection;
    std::array<StripChannel, kStripChannels> infos;
    std::array<StripZone, kStripZones> zones;
  };

  void FindFont(int heightPx);
  void DrawBackground(const StripModel& model);
  void DrawColumns(const StripModel& model, long long from, long long to);
  void DrawSpan(Canvas& canvas, const StripModel& model, long long from, long long to, LONG x);
  TraceView ViewOf(const StripModel& model, unsigned channel) const;
  void DrawSymbols(Canvas& canvas, const StripModel& model, unsigned channel, long long from, long long to, LONG x);
  void DrawGrid(Canvas& canvas, const RECT& ground, long long from, long long to, LONG x);
  void DrawTimes();
  void Scroll(long long columns);
  void DrawLegend(Canvas& canvas, const StripModel& model);
  void DrawEvents(Canvas& canvas, const StripModel& model);
  void DrawCursor(Canvas& canvas, double time, const wchar_t* name);
  void DrawTooltip(Canvas& canvas, const StripModel& model);
  RECT PlaceTooltip(SIZE size, LONG bottom, LONG from, LONG to, LONG other) const;

  Surface surface_, overlaid_;
  MemoryDc dc_{nullptr};
  CoverageShape shape_;
  TraceRows rows_;
  OwnedFont font_;
  Key key_{};
  std::array<RECT, kStripChannels> legendItems_{};
  bool drawn_ = false;
  long long timesKept_ = 0;  // columns by which the chart can scroll until another time is shown, or one no more
};

}  // namespace kv
