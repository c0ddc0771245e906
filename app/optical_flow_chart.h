// Window class "kvOpticalFlowChart": shows up to four camera points on a black field, each with a marker icon of its
// own (icon resources 1000..1003 of the program's module). The field of 1024 x 768 camera units fills the control,
// without keeping its proportions. It has no grid, no text, no history and no input: clicks are swallowed, dropped
// files go to the parent. With the keyboard focus its edge, if it has one, is in the system's highlight colour. Styles:
// none of its own. Notifications: none.
//
// Messages:
//   CHART_CMD (WM_USER + 3)        see ChartCommand; result 0, or 1 if the record or the address in lParam is bad
//   WM_COPY                        puts a picture on the clipboard as CF_BITMAP, at the client size or, with lParam, at
//                                  width (low word) x height (high word), each clamped to 64..5120 pixels; result 0
//   WM_GETDLGCODE                  DLGC_STATIC
//   WM_GETOBJECT                   screen readers get a chart with its window text as the name ("Optical flow" without
//                                  one) and as the value the points shown: "1: 512, 384; 3: 20, 700"
//
// The points start as "no point". All on the window's thread.
#pragma once

#include <windows.h>

#include "app/camera_record.h"
#include "framework/control_class.h"

namespace kv {

inline constexpr char kChartClass[] = "kvOpticalFlowChart";
inline constexpr int kMarkerIconFirst = 1000;

// The chart's command message, the one of all controls.
inline constexpr UINT CHART_CMD = kControlCommand;

// Operation codes, the low byte of the command's wParam.
enum ChartCommand : BYTE {
  kChartRefresh = 0x00,  // render again and repaint; lParam not used
  kChartClear = 0x01,    // all points become "no point"; repaint; lParam not used
  // Exchange points; lParam is the address of a FlowPoints. With kCommandRead: copies all points out and sets the mask
  // bits of those that are shown. With kCommandRemove: the masked points become "no point". With neither: takes the
  // masked points, each coordinate clamped to 0..1023. kCommandRedraw repaints at once if a rendering is due.
  kChartPoints = 0x12,
};

struct FlowPoints {
  DWORD mask;  // bit i = point i is valid or selected
  CameraPoint points[kPointCount];
};
static_assert(sizeof(FlowPoints) == 36);

// Registers (non-zero) or unregisters the class; returns 0 only when registering fails.
BOOL RegisterChartClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
