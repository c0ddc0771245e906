// Window class "kvDisplayInstrument": shows one measured value as a circular gauge, digital readout (number, time of
// day, date or angle), segment bar, compass or center-zero bar.
//
// Styles         The low four bits of the window style select the mode; further bits are options (kMode...,
//                kInstrument... in kv/controls/instrument_block.h). The control copies the style when it is created.
//                Change it with kCommandStyle; later changes of the window style have no effect.
// Values         The program describes the value with an InstrumentBlock (512 bytes: name, unit, range, step, number
//                format, color, zones), then sends values. Values, range, step and zone bounds are in the program's
//                unit; the compass uses degrees. Values are clamped to the range.
// Animation      Optionally, the control moves to a new value in steps of 20 ms, each a tenth of the remaining
//                distance. A distance of more than a fifth of the range is not animated: the value is shown at
//                once. An animation ends within a step of the block or, with kValueExact, at the value itself.
// Drawing        At every size from 0 x 0 pixels. The control renders into a back buffer, and renders and invalidates
//                only the parts that have changed, such as the needle, digits or single segments. Painting copies the
//                buffer. New system colors are used at the next paint.
// Resources      Each control has one GDI object, a bitmap of its size, and uses eight bytes of memory per pixel. All
//                controls of a thread share fonts and other objects: up to 50 GDI objects, until the thread ends. The
//                number of controls is limited only by Windows: 10,000 windows and 10,000 GDI objects per process.
// DPI            Everything is drawn in proportion to the control's size in pixels, captions with kInstrumentFitted.
//                The DPI is not used.
// Notifications  None.
// Accessibility  WM_GETOBJECT: the name is the block's name. The value is the displayed text with its unit ("42 %",
//                "11:15:41"), empty if there is no valid value. So name every block, even if no name is drawn.
// Thread         The thread that owns the window. Timer 5 of the window is reserved for the control.
//
// Messages:
//   WM_ENABLE          draws enabled or disabled (style bit kInstrumentDisabled; WS_DISABLED has no effect)
//   WM_SETTEXT         stores the text in the control (up to 255 characters); the compass uses it as its name (31). The
//                      window text does not change. Returns 0
//   WM_COPY            puts the image on the clipboard as CF_BITMAP. lParam 0: at the control's size; otherwise width
//                      (low word) and height (high word) in pixels, each clamped to 16..5120. A double click copies at
//                      the control's size
//   WM_DROPFILES       is forwarded to the parent
//   WM_SYSCOLORCHANGE  renders and paints, like kCommandRender
//   kControlCommand    see below
// All return 1 when the control has no state (allocation failed when it was created).
#pragma once

#include <windows.h>

#include "kv/controls/instrument_block.h"
#include "kv/framework/control_class.h"

namespace kv {

inline constexpr char kDisplayInstrumentClass[] = "kvDisplayInstrument";

// Codes of kControlCommand (low byte of wParam). Each returns 0, also when it rejects a bad address. With kCommandRead
// the item is copied to lParam instead of from it. With kCommandRedraw a change is painted before the call returns;
// otherwise the control is invalidated. Other codes do nothing.
inline constexpr WPARAM kCommandRender = 0;  // renders and paints everything; no address
inline constexpr WPARAM kCommandReset = 1;   // the mode's default block, compass and center-zero bar named "Compass"
inline constexpr WPARAM kCommandStyle = 3;   // a DWORD: bits to set, or with kCommandRemove to clear; read: the style
inline constexpr WPARAM kCommandBlock = 17;  // an InstrumentBlock; rejected without its version tag
inline constexpr WPARAM kCommandValue = 18;  // a float; NaN, or writing from an unreadable address, means "no value"
inline constexpr WPARAM kCommandTime = 19;   // a SYSTEMTIME; only for a digital readout of time or date
inline constexpr WPARAM kCommandZone = 20;   // an InstrumentZone; its index, in wParam's high word, is clamped to 0..2

// Flags of single commands.
inline constexpr WPARAM kValueAnimate =
    0x0200;  // kCommandValue: animate to the value; read: the target of the animation
// kCommandValue: the control ends at exactly this value, also if an animation is running: the animation is redirected
// or ended even if this is the current value. Without it, a value equal to the current one or to the animation's target
// has no effect.
inline constexpr WPARAM kValueExact = 0x0400;
inline constexpr WPARAM kZoneEnable = 0x0400;  // kCommandZone: shows the zone; without this flag, hides it

// Limits of width and height for WM_COPY, in pixels.
inline constexpr int kInstrumentMinCopySize = 16, kInstrumentMaxCopySize = 5120;

// Registers the class (non-zero flag) or unregisters it. Returns 0 only when registering fails.
BOOL RegisterDisplayInstrumentClass(HINSTANCE instance, BOOL registerIt);

}  // namespace kv
