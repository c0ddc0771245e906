// The window class "kvDisplayInstrument": shows one measured value as circular gauge, digital read-out (number, time of
// day, date or angle), segment bar, compass or centre-zero bar.
//
// Styles      The low four bits of the window style pick the layout, further bits vary it: kMode..., kInstrument... in
//             controls/instrument_block.h. The control copies the style when it is created; later changes go through
//             kCommandStyle, a change of the window's own style is not noticed.
// Owner       Describes the value by an InstrumentBlock (512 bytes: name, unit, range, step, number format, colour,
//             zones) and then sends values. Values, range, step and zone bounds are in the owner's own unit; the
//             compass takes degrees. A value is always clamped to the range.
// Gliding     On request the control moves to a new value in steps of 20 ms: a tenth of the way each, while the way is
//             at most a fifth of the range; a larger jump is shown at once. It ends within a step of the block; with
//             kValueExact at the value itself.
// Drawing     From 0 x 0 pixels up. The control renders into a back buffer, and only what changed: of a new value the
//             needle, the digits, the segments that look different. Only that is invalidated; painting copies it. New
//             colours of the system show at the next paint.
// Resources   Each control has one GDI object, a bitmap of its size, and eight bytes of memory for each pixel. Fonts
// and
//             the rest are shared by all controls of a thread: at most 50 GDI objects more, until the thread ends. So
//             the limit is Windows' own, 10,000 windows and as many GDI objects in a process.
// DPI         In a DPI-aware host: what is drawn grows with the control's pixels; nothing reads the dpi.
// Messages    WM_ENABLE    draws disabled or enabled (style bit kInstrumentDisabled; not by WS_DISABLED).
//             WM_SETTEXT   kept by the control (255 characters); the compass takes it as its name (31). The window's
//                          own text stays that of creation. Result 0.
//             WM_COPY      puts the picture on the clipboard as CF_BITMAP. lParam 0: as large as the control; otherwise
//                          width (low word) and height (high word) in pixels, each clamped to 16..5120. A double click
//                          does the same at the control's own size.
//             WM_DROPFILES sent on to the parent.
//             WM_SYSCOLORCHANGE  renders and paints anew, like kCommandRender.
//             kControlCommand  below.
//             All answer 1 when the control has no record (memory was short at its creation).
// Notifies    Nothing.
// Read out    Screen readers (WM_GETOBJECT) hear the block's name and, as the value, what is shown with its unit
//             ("42 %", "11:15:41"); none while there is no valid value. So give every block a name, also where none is
//             drawn.
// Threads     The thread that owns the window. Timer 5 of the window is the control's.
#pragma once

#include <windows.h>

#include "controls/instrument_block.h"
#include "framework/control_class.h"

namespace kv {

inline constexpr char kDisplayInstrumentClass[] = "kvDisplayInstrument";

// Codes of kControlCommand (low byte of wParam). Each returns 0, also when it refuses a bad address. With kCommandRead
// the item is copied to lParam instead of from it; with kCommandRedraw a change is painted before the call returns,
// otherwise the control is invalidated and shows it at its next paint. Other codes do nothing.
inline constexpr WPARAM kCommandRender = 0;  // renders and paints anew; no address
inline constexpr WPARAM kCommandReset = 1;   // the mode's default block, compass and centre-zero bar named "Compass"
inline constexpr WPARAM kCommandStyle = 3;   // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kCommandBlock = 17;  // an InstrumentBlock; one without its version tag is refused
inline constexpr WPARAM kCommandValue = 18;  // a float; writing from an unreadable address, or NaN, means "no value"
inline constexpr WPARAM kCommandTime = 19;   // a SYSTEMTIME; digital read-out of time or date only
inline constexpr WPARAM kCommandZone = 20;   // an InstrumentZone; its index in wParam's high word, clamped to 0..2

// Flags of single commands.
inline constexpr WPARAM kValueGlide = 0x0200;  // kCommandValue: glide to the value; read: the value that it glides to
// kCommandValue: this and no other value is shown in the end. Ends or redirects a running glide even if the value is
// the current one already; without it, a value equal to the current one or to the glide's end changes nothing.
inline constexpr WPARAM kValueExact = 0x0400;
inline constexpr WPARAM kZoneEnable = 0x0400;  // kCommandZone: the zone is shown; without it, it is not

inline constexpr int kInstrumentSmallestPicture = 16, kInstrumentLargestPicture = 5120;  // of WM_COPY, per side

// Registers the class (non-zero flag) or unregisters it. Returns 0 only when registering fails.
BOOL RegisterDisplayInstrumentClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
