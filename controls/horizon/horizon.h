// The window class "kvHorizon": an artificial horizon that shows pitch and roll as sky and ground behind a fixed
// aircraft symbol, slip under the roll pointer, and on request the heading on a tape.
//
// Styles      The low four bits of the window style are the layout: round or rectangular. kHorizonTape shows the tape.
//             The control copies the style when it is created; later changes go through kHorizonStyle.
// Owner       Sends a HorizonAttitude. Until the first one there is no value; then, and with kHorizonNoValue, a striped
//             flag lies across the face.
// Gliding     On request the control moves to a new attitude in steps of 20 ms, a tenth of the way each; what is more
//             than a fifth of a range away is shown at once.
// Drawing     From 0 x 0 pixels up. The case is kept as a picture; of a new attitude only the face is drawn anew, of a
//             new heading only the tape. Edges are exact at every angle. What is drawn grows with the control's pixels;
//             nothing reads the dpi. Not mirrored in mirrored windows: right stays right.
// Messages    WM_ENABLE    draws disabled or enabled (style bit kHorizonDisabled; not by WS_DISABLED).
//             WM_COPY, a double click: picture on the clipboard (CF_BITMAP), sizes as for the display instrument.
//             WM_DROPFILES sent on to the parent.
//             kControlCommand  below.
// Notifies    Nothing.
// Read out    Screen readers hear the window's text as name and pitch, roll and heading, in degrees, as value.
// Threads     The thread that owns the window. Timer 5 of the window is the control's.
#pragma once

#include <windows.h>

#include "framework/control_class.h"

namespace kv {

inline constexpr char kHorizonClass[] = "kvHorizon";
inline constexpr DWORD kHorizonVersion = 0x20261125;  // in every HorizonAttitude; others are rejected

// Style bits.
inline constexpr DWORD kHorizonModeBits = 0x000F;
inline constexpr DWORD kHorizonRound = 0, kHorizonRectangular = 1;  // other modes are round
inline constexpr DWORD kHorizonTape = 0x0010;
inline constexpr DWORD kHorizonDisabled = 0x0040;  // drawn disabled; follows WM_ENABLE

inline constexpr DWORD kHorizonNoValue = 0x80000000;  // state bit

struct HorizonAttitude {
  DWORD version;  // kHorizonVersion
  DWORD state;    // kHorizonNoValue, or 0
  float pitch;    // degrees, nose up positive, limited to +-90
  float roll;     // degrees, right wing down positive
  float slip;     // 1: the mark stands its own width to the right; limited to +-2
  float heading;  // degrees clockwise from north
};
static_assert(sizeof(HorizonAttitude) == 24);

// Codes of kControlCommand (low byte of wParam). Each returns 1 when it did what it was asked for and 0, with nothing
// changed, when it rejects an address or what stands there. With kCommandRead the item is copied to lParam; with
// kCommandRedraw a change is painted before the call returns.
inline constexpr WPARAM kHorizonRender = 0;  // renders and paints anew; no address
inline constexpr WPARAM kHorizonStyle = 3;   // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kHorizonValue = 18;  // a HorizonAttitude; one with a number that is not finite is rejected

inline constexpr WPARAM kHorizonGlide = 0x0200;  // flag of kHorizonValue

// Registers (non-zero flag) or unregisters the class; returns 0 only when registering fails.
BOOL RegisterHorizonClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
