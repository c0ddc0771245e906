// The window class "kvDisplayInstrument": shows one measured value as circular gauge, digital readout (number, time of
// day, date or angle), segment bar, compass or centre-zero bar.
//
// Styles      The low four bits of the window style select the mode, further bits vary it: kMode..., kInstrument... in
//             controls/instrument_block.h. The control copies the style when it is created; change it by kCommandStyle.
//             Later changes of the window's own style have no effect.
// Owner       Describes the value by an InstrumentBlock (512 bytes: name, unit, range, step, number format, colour,
//             zones) and then sends values. Values, range, step and zone bounds are in the owner's own unit; the
//             compass takes degrees. A value is always clamped to the range.
// Gliding     On request the control moves to a new value in steps of 20 ms, each a tenth of the way, while the way is
//             at most a fifth of the range; a larger jump is shown at once. It ends within a step of the block, or with
//             kValueExact at the value itself.
// Drawing     From 0 x 0 pixels up. The control renders into a back buffer, and only what has changed: of a new value
//             the needle, the digits, the segments that look different. Only that is invalidated; painting copies it.
//             New system colours show at the next paint.
// Resources   Each control has one GDI object, a bitmap of its size, and eight bytes of memory for each pixel. Fonts
//             and the rest are shared by all controls of a thread: at most 50 GDI objects more, until the thread ends.
//             So the limit is Windows' own: 10,000 windows and as many GDI objects in a process.
// DPI         In a DPI-aware host, what is drawn grows with the control's pixels; nothing reads the DPI.
// Notifies    Nothing.
// Read aloud  Screen readers (WM_GETOBJECT) get the block's name and, as the value, what is shown with its unit
//             ("42 %", "11:15:41"), or nothing while there is no valid value. So name every block, drawn or not.
// Threads     The thread that owns the window. Timer 5 of the window is the control's.
//
// Messages:
//   WM_ENABLE          draws enabled or disabled (style bit kInstrumentDisabled; WS_DISABLED has no effect)
//   WM_SETTEXT         stores the text in the control (255 characters); the compass takes it as its name (31). The
//                      window's own text stays that of creation. Returns 0
//   WM_COPY            puts the image on the clipboard as CF_BITMAP. lParam 0: as large as the control; otherwise width
//                      (low word) and height (high word) in pixels, each clamped to 16..5120. A double click does the
//                      same at the control's own size
//   WM_DROPFILES       is sent on to the parent
//   WM_SYSCOLORCHANGE  renders and paints again, like kCommandRender
//   kControlCommand    see below
// All return 1 when the control has no state (allocation failed at its creation).
#pragma once

#include <windows.h>

#include "controls/instrument_block.h"
#include "framework/control_class.h"

namespace kv {

inline constexpr char kDisplayInstrumentClass[] = "kvDisplayInstrument";

// Codes of kControlCommand (low byte of wParam). Each returns 0, also when it rejects a bad address. With kCommandRead
// the item is copied to lParam instead of from it; with kCommandRedraw a change is painted before the call returns,
// otherwise the control is invalidated and shows it at its next paint. Other codes do nothing.
inline constexpr WPARAM kCommandRender = 0;  // renders and paints anew; no address
inline constexpr WPARAM kCommandReset = 1;   // the mode's default block, compass and centre-zero bar named "Compass"
inline constexpr WPARAM kCommandStyle = 3;   // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kCommandBlock = 17;  // an InstrumentBlock; one without its version tag is rejected
inline constexpr WPARAM kCommandValue = 18;  // a float; writing from an unreadable address, or NaN, means "no value"
inline constexpr WPARAM kCommandTime = 19;   // a SYSTEMTIME; digital readout of time or date only
inline constexpr WPARAM kCommandZone = 20;   // an InstrumentZone; its index in wParam's high word, clamped to 0..2

// Flags of single commands.
inline constexpr WPARAM kValueGlide = 0x0200;  // kCommandValue: glide to the value; read: the value that it glides to
// kCommandValue: this and no other value is shown in the end. Ends or redirects a running glide even if the value is
// the current one already; without it, a value equal to the current one or to the glide's end changes nothing.
inline constexpr WPARAM kValueExact = 0x0400;
inline constexpr WPARAM kZoneEnable = 0x0400;  // kCommandZone: the zone is shown; without it, it is not

inline constexpr int kInstrumentMinCopySize = 16, kInstrumentMaxCopySize = 5120;  // of WM_COPY, per side

// Registers the class (non-zero flag) or unregisters it. Returns 0 only when registering fails.
BOOL RegisterDisplayInstrumentClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
