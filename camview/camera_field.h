// Window class "kvCameraField": shows the camera's field of 1024 x 768 units with its aspect ratio, up to four points
// at one time, and the trails that led to them.
//
// Appearance  The field is in the middle of the control, within a frame. Each point has Tarnwick's shape and color, and
//             its number. A trail is a line that fades with age; it breaks where the camera did not see the point. In
//             high contrast there are no colors but the system's. Rendered only when something has changed. Not
//             mirrored in mirrored windows.
// Keyboard    Ctrl+C copies. The keyboard focus is shown.
// Messages    kControlCommand  FieldCommand below; returns 1, or 0 without any change when the address or the data
//                              is invalid
//             WM_COPY          puts a bitmap on the clipboard (CF_BITMAP), of the client size or, with lParam, of width
//                              (low word) x height (high word), each clamped to 64..5120 pixels
//             WM_PRINTCLIENT   draws into the device context in wParam
//             WM_DROPFILES     forwarded to the parent
// Accessible  The name is the window's text, the value the visible points: "1: 512, 384; 3: 20, 700".
// Thread      The thread that owns the window.
#pragma once

#include <windows.h>

#include "camview/record_store.h"
#include "kv/framework/control_class.h"

namespace camview {

inline constexpr char kCameraFieldClass[] = "kvCameraField";

inline constexpr DWORD kFieldMaxRecords = 1u << 16;
struct FieldContent {
  DWORD count;                  // at most kFieldMaxRecords; 0: no points
  const StoredRecord* records;  // by increasing time; the last one is shown; copied
  double now;                   // time from which ages are counted, in the records' seconds
  double trailSeconds;          // age at which a trail ends; 0: no trails
};

// Operation codes, the low byte of kControlCommand's wParam.
enum FieldCommand : BYTE {
  kFieldShow = 18,  // lParam is the address of a FieldContent; kCommandRedraw repaints at once
};

// Returns the color of a point on a black background.
COLORREF PointColor(int point);

// Registers (`registerIt` not 0) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterCameraFieldClass(HINSTANCE instance, BOOL registerIt);

}  // namespace camview
