// The state of a strip chart's window, shared by the files of the control. Private to it and its tests.
#pragma once

#include <windows.h>

#include <climits>

#include "kv/controls/strip_chart/model.h"
#include "kv/controls/strip_chart/renderer.h"
#include "kv/controls/strip_chart/sample_queue.h"

namespace kv {

inline constexpr UINT_PTR kShowTimer = 5;

struct StripChart {
  explicit StripChart(HWND control) : window(control), queue(control) {
    model.style = static_cast<DWORD>(GetWindowLongA(window, GWL_STYLE));
  }

  HWND window;
  SampleQueue queue;
  StripModel model;
  StripRenderer renderer;
  bool redrawAll = true;  // the next update draws everything
  bool waiting = false;   // kShowTimer runs until new samples are drawn
  bool focused = false;
  bool hovering = false;     // the cursor follows the mouse pointer, at pointerX
  LONG pointerX = LONG_MIN;  // of the last mouse move; LONG_MIN after the pointer has left
  enum class Drag { kNone, kPan, kSelect, kZoom } drag = Drag::kNone;
  LONG dragX = 0, dragY = 0, wheel = 0;
  RECT zoomed{};         // the part of the plot in which the user is about to zoom
  bool dragged = false;  // moved since the button was pressed
};

// Appends the samples that other threads have queued.
void TakeQueued(StripChart& chart);
// Shows what has changed at once. Not by WM_PAINT, which takes several calls into the system.
void ShowNow(StripChart& chart);
// Handles kControlCommand.
LRESULT OnStripCommand(StripChart& chart, WPARAM wParam, LPARAM lParam);
// Handles WM_COPY.
LRESULT CopyStrip(StripChart& chart, LPARAM requested);

}  // namespace kv
