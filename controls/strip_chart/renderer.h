// The picture of a strip chart: how it is laid out, what it looks like, and how it is brought up to date. Time stands
// on a grid of whole columns of pixels, column 0 beginning at time 0: so what is shown moves by whole pixels, and only
// the columns that changed are drawn. The thread that owns the control.
#pragma once

#include <windows.h>

#include <array>

#include "controls/strip_chart/model.h"
#include "controls/strip_chart/trace.h"
#include "framework/canvas.h"
#include "framework/guards.h"

namespace kv {

struct StripAxis {
  int channel;  // -1: for all
  RECT area;    // of its numbers
  AxisRange range;
  double step;
};

struct StripLayout {
  SIZE size;
  int fontPx, digitPx;  // height of the characters, width of a figure
  RECT legend, plot;
  int labelsPx;     // height of the times below the plot; 0: there are none
  int axes, gapPx;  // gapPx: columns that a sweep leaves free in front of the newest
  std::array<StripAxis, kStripChannels> axis;
  double secondsPerColumn, timeStep, lineWidth;
  long long lastColumn;  // at the right edge, or where a sweep stands
  BOOL sweeps;
};
StripLayout LayoutStrip(const StripModel& model, SIZE size);

// The time axis: which time stands at an x, and where a time stands; off the plot when it is not shown.
double TimeAtX(const StripLayout& layout, LONG x);
LONG XOfTime(const StripLayout& layout, double time);
// The axis by which a channel is drawn.
const StripAxis& AxisOf(const StripLayout& layout, int channel);

struct StripColors {
  COLORREF panel, text, paper, ink, grid, frame, tip, tipText, mark;
  std::array<COLORREF, kStripChannels> lines;
  std::array<COLORREF, kStripZones> zones;
};
StripColors ColorsOf(const StripModel& model);

std::wstring ChannelName(const StripChannel& channel);
std::wstring ChannelUnit(const StripChannel& channel);
LONG WidthOf(HDC dc, const std::wstring& text);

class StripRenderer {
 public:
  // Brings the picture up to date and returns what changed of it; with `redrawAll` it is all drawn.
  RECT Update(StripModel& model, SIZE size, bool redrawAll);
  // The picture with cursor, mark and their tip, and a frame with the focus; what Update made if there are none.
  const Surface& WithMarks(const StripModel& model, bool focused);

  const StripLayout& layoutShown() const { return key_.layout; }
  const Surface& surface() const { return surface_; }
  HDC memoryDc() const { return dc_; }

 private:
  // All that a column depends on beside the samples; compared byte by byte, without the time at the right edge.
  struct Key {
    StripLayout layout;
    StripColors colors;
    DWORD style, channels;
    std::array<StripChannel, kStripChannels> infos;
    std::array<StripZone, kStripZones> zones;
  };

  void FindFont(int heightPx);
  void DrawBackground(const StripModel& model);
  void DrawColumns(const StripModel& model, long long from, long long to);
  void DrawStretch(Canvas& canvas, const StripModel& model, long long from, long long to, LONG x);
  void DrawGrid(Canvas& canvas, const RECT& paper, long long from, long long to, LONG x);
  void Scroll(long long columns);
  void DrawTip(Canvas& canvas, const StripModel& model);

  Surface surface_, marked_;
  MemoryDc dc_{nullptr};
  CoverageShape shape_;
  TraceRows rows_;
  OwnedFont font_;
  Key key_{};
  bool drawn_ = false;
};

}  // namespace kv
