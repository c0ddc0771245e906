// Window class "kvOpticalFlowChart": shows up to four camera points on a black field, each with its own marker icon
// (icon resources 1000..1003 of the program's module). The field of 1024 x 768 camera units fills the control without
// preserving its aspect ratio. There is no grid, text or history. Mouse clicks are ignored; dropped files are forwarded
// to the parent. When the control has the keyboard focus, its edge, if it has one, is drawn in the system's highlight
// color. Styles: none. Notifications: none.
//
// Messages:
//   CHART_CMD (WM_USER + 3)        see ChartCommand; returns 0, or 1 if the state or the address in lParam is invalid
//   WM_COPY                        puts a bitmap on the clipboard as CF_BITMAP, of the client size or, with lParam, of
//                                  width (low word) x height (high word), each clamped to 64..5120 pixels; returns 0
//   WM_GETDLGCODE                  DLGC_STATIC
//   WM_GETOBJECT                   for screen readers: a chart with its window text as the name ("Optical flow" without
//                                  one) and the visible points as the value: "1: 512, 384; 3: 20, 700"
//
// All points are initially "no point". Use only on the window's thread.
#pragma once

#include <windows.h>

#include "camera/camera_record.h"
#include "kv/framework/control_class.h"

namespace kv {

inline constexpr char kChartClass[] = "kvOpticalFlowChart";
inline constexpr int kMarkerIconFirst = 1000;

// The command message, the same for all controls.
inline constexpr UINT CHART_CMD = kControlCommand;

// Operation codes, the low byte of the command's wParam.
enum ChartCommand : BYTE {
  kChartRefresh = 0x00,  // renders and repaints; lParam not used
  kChartClear = 0x01,    // sets all points to "no point" and repaints; lParam not used
  // Exchanges points; lParam is the address of a FlowPoints. With kCommandRead: copies all points and sets the mask
  // bits of the visible ones. With kCommandRemove: sets the masked points to "no point". With neither: sets the masked
  // points, each coordinate clamped to 0..1023. kCommandRedraw repaints at once if a rendering is due.
  kChartPoints = 0x12,
};

struct FlowPoints {
  DWORD mask;  // bit i: point i is valid or selected
  CameraPoint points[kPointCount];
};
static_assert(sizeof(FlowPoints) == 36);

// Registers (`registerIt` not 0) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterChartClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
