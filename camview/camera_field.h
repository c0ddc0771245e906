// Window class "kvCameraField": the camera's field of 1024 x 768 units in its proportions, with up to four points at
// one time and the trails that led to them.
//
// Picture     Each point has Tarnwick's shape and colour, and its number beside it. A trail is a line that fades with
//             age; it breaks where the camera did not see the point. In high contrast there are no colours but the
//             system's. It is rendered only when something has changed. Not mirrored in mirrored windows.
// Keyboard    Ctrl+C copies. The control shows when it has the focus.
// Messages    kControlCommand  FieldCommand below; result 1, or 0 with nothing changed when the address, or what stands
//                              there, is bad
//             WM_COPY          puts an image on the clipboard (CF_BITMAP), at the client size or, with lParam, at width
//                              (low word) x height (high word), each clamped to 64..5120 pixels
//             WM_PRINTCLIENT   draws it into the device context in wParam
//             WM_DROPFILES     sent on to the parent
// Read out    Screen readers hear the window's text as name and as value the points: "1: 512, 384; 3: 20, 700".
// Threads     The thread that owns the window.
#pragma once

#include <windows.h>

#include "camview/record_store.h"
#include "framework/control_class.h"

namespace camview {

inline constexpr char kCameraFieldClass[] = "kvCameraField";

inline constexpr DWORD kFieldMaxRecords = 1u << 16;
struct FieldContent {
  DWORD count;                  // at most kFieldMaxRecords; 0: there are no points
  const StoredRecord* records;  // with increasing time, the last being the one that is shown; copied
  double now;                   // age is counted from here, in the records' seconds
  double trailSeconds;          // age at which a trail ends; 0: no trails
};

// Operation codes, the low byte of kControlCommand's wParam.
enum FieldCommand : BYTE {
  kFieldShow = 18,  // lParam is the address of a FieldContent; with kCommandRedraw it is painted at once
};

// The colour of a point on black.
COLORREF PointColor(int point);

// Registers (non-zero) or unregisters the class; returns 0 only when registering fails.
BOOL RegisterCameraFieldClass(HINSTANCE instance, BOOL registerIt);

}  // namespace camview
