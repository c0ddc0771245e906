// The state of a strip chart's window, shared by the files of the control. Private to it and its tests.
#pragma once

#include <windows.h>

#include "controls/strip_chart/model.h"
#include "controls/strip_chart/renderer.h"

namespace kv {

struct StripChart {
  HWND window = nullptr;
  StripModel model;
  StripRenderer renderer;
  bool redrawAll = true;  // all is to be drawn
  bool waiting = false;   // timer 5 runs until new samples are shown
  bool hovering = false;  // the cursor follows the pointer, which is at this x
  LONG hoverX = 0;
  enum class Drag { kNone, kPan, kMark } drag = Drag::kNone;
  LONG dragX = 0, wheel = 0;
  bool dragged = false;  // since the button went down
};

struct StripState {
  HGLOBAL hMemory;  // of this record
  StripChart* chart;
};

// Brings the picture up to date and invalidates what changed; everything, when cursor or mark are to be drawn with it.
void RefreshStrip(StripChart& chart);
// kControlCommand.
LRESULT OnStripCommand(StripChart& chart, WPARAM wParam, LPARAM lParam);
// WM_COPY.
LRESULT CopyStrip(StripChart& chart, LPARAM requested);

}  // namespace kv
