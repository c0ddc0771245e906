// Window class "kvHorizon": an artificial horizon that shows pitch and roll as sky and ground behind a fixed aircraft
// symbol, slip under the roll pointer, and optionally the heading on a tape.
//
// Styles         The low four bits of the window style select the mode, round or rectangular; kHorizonTape shows the
//                heading tape, in controls from about 150 pixels. The control copies the style when it is created;
//                change it with kHorizonStyle.
// Values         The program sends a HorizonAttitude. Before the first one, and with kHorizonNoValue, a striped flag
//                covers the horizon.
// Animation      Optionally, the control moves to a new attitude in steps of 20 ms, each a tenth of the remaining
//                distance. A distance of more than a fifth of the range is not animated: the attitude is shown at once.
// Drawing        At every size from 0 x 0 pixels. The case is cached; a new attitude redraws only the horizon, a new
//                heading only the tape. Edges are antialiased. Everything is drawn in proportion to the control's size
//                in pixels; the DPI is not used. Not mirrored in mirrored windows.
// Notifications  None.
// Accessibility  WM_GETOBJECT: the name is the window text, the value pitch, roll and heading in degrees.
// Thread         The thread that owns the window. Timer 5 of the window is reserved for the control.
//
// Messages:
//   WM_ENABLE        draws enabled or disabled (style bit kHorizonDisabled; WS_DISABLED has no effect)
//   WM_COPY          puts the image on the clipboard as CF_BITMAP, with the sizes of the display instrument. A double
//                    click copies at the control's size
//   WM_DROPFILES     is forwarded to the parent
//   kControlCommand  see below
#pragma once

#include <windows.h>

#include "kv/framework/control_class.h"

namespace kv {

inline constexpr char kHorizonClass[] = "kvHorizon";
inline constexpr DWORD kHorizonVersion = 0x20261125;  // in every HorizonAttitude; others are rejected

// Style bits. Modes not listed here are round.
inline constexpr DWORD kHorizonModeBits = 0x000F;
inline constexpr DWORD kHorizonRound = 0, kHorizonRectangular = 1;
inline constexpr DWORD kHorizonTape = 0x0010;
inline constexpr DWORD kHorizonDisabled = 0x0040;  // drawn disabled; set and cleared by WM_ENABLE

inline constexpr DWORD kHorizonNoValue = 0x80000000;  // state bit

struct HorizonAttitude {
  DWORD version;  // kHorizonVersion
  DWORD state;    // kHorizonNoValue, or 0
  float pitch;    // degrees, positive: nose up; clamped to +-90
  float roll;     // degrees, positive: right wing down
  float slip;     // 1: the mark is its own width right of the center; clamped to +-2
  float heading;  // degrees clockwise from north
};
static_assert(sizeof(HorizonAttitude) == 24);

// Codes of kControlCommand (low byte of wParam). Each returns 1 on success; it returns 0 and changes nothing when it
// rejects the address or its content. With kCommandRead the item is copied to lParam. With kCommandRedraw a change is
// painted before the call returns.
inline constexpr WPARAM kHorizonRender = 0;  // renders and paints everything; no address
inline constexpr WPARAM kHorizonStyle = 3;   // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kHorizonValue = 18;  // a HorizonAttitude; rejected if a number is not finite

inline constexpr WPARAM kHorizonAnimate = 0x0200;  // kHorizonValue: animate to the attitude

// Registers (non-zero flag) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterHorizonClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
