// What all window classes of this library's controls have in common: how they are registered, the codes of their
// command message, how they repaint and talk to their parent; the kinds of controls, and how mouse input reaches the
// control beneath another. Main thread only.
#pragma once

#ifdef _WIN64
#error kv is a 32-bit library: build for Win32
#endif

#include <windows.h>

namespace kv {

// The one command message of the chart, the instruments and the views. The low byte of wParam is the operation; lParam
// is always an address, and each control tests it before use. Numeric value 1027.
inline constexpr UINT kControlCommand = WM_USER + 3;

// Flag bits of the command's wParam.
inline constexpr WPARAM kCommandRead = 0x8000;    // copy the item out to the address in lParam
inline constexpr WPARAM kCommandRemove = 0x4000;  // remove or switch off
inline constexpr WPARAM kCommandRedraw = 0x0100;  // repaint at once if something changed

// Registers (non-zero flag) or unregisters `name`: redrawn on size changes, double clicks, known to the whole process,
// no extra bytes, arrow cursor, and no background of its own. Returns 0 only when registering fails.
BOOL RegisterControlClass(HINSTANCE instance, const char* name, WNDPROC procedure, BOOL registerIt);

// Posts WM_COMMAND to the parent: the control's id in the low word, `code` in the high word, the control in lParam.
void PostNotification(HWND control, WORD code);

// Invalidates the whole window, erasing, and paints it before returning.
void RepaintNow(HWND window);

// The same for a window that has no children, or a part of it. Not asking for children saves a call into the system
// each time.
void RepaintWithoutChildren(HWND window, HRGN part = nullptr);

// Told apart by what their window class name contains.

enum ControlKind {
  kControlOther = 0,
  kControlStatic = 1,
  kControlButton = 2,
  kControlEdit = 3,
  kControlComboBox = 4,
  kControlListBox = 5,
  kControlTab = 6,
  kControlTreeView = 7,
  kControlSimpleBitmap = 8,
};

// Styles of the bitmap control (controls/simple_bitmap.h). Scaled with its dialog, its height follows the width's
// scale, or its width the height's, so that the picture keeps its proportions.
inline constexpr DWORD kBitmapSquareByWidth = 0x0010;
inline constexpr DWORD kBitmapSquareByHeight = 0x0020;

// Only this many characters of a class name are looked at, the terminator included.
inline constexpr int kClassNameCharacters = 64;

// The kind that a class name stands for, whatever its case. Containing the kind's text is enough ("MyEditBox" is an
// edit, and so are the rich edits); with several texts in one name the last of STATIC, BUTTON, EDIT, COMBOBOX, LISTBOX,
// SYSTABCONTROL32, KVSIMPLEBITMAP, SYSTREEVIEW32 decides. kControlOther for an unreadable name.
ControlKind ClassifyClassName(const char* className);

// The kind of a window; kControlOther when it does not exist.
ControlKind ClassifyControl(HWND window);

// In a DPI-aware host: places are the pixels that the host sees; nothing depends on the DPI.

// Hands a mouse message of `window`, or a WM_COMMAND, on to the visible siblings under the mouse cursor that take input
// (buttons, edits, combo boxes, list boxes, tree views), looked for in z-order.
//
//   WM_LBUTTONDOWN                  the first of them: a button is clicked (BM_CLICK), any other gets the message
//   WM_MOUSEMOVE, the other         the first of them gets the keyboard focus and the message
//   button-down and button-up
//   any other (double clicks,       each of them gets the message with wParam and lParam unchanged
//   WM_COMMAND)
//
// In the first two cases lParam is the address of a POINT with the cursor in the sibling's client coordinates, valid
// during the call, and the result is the sibling's. Otherwise the result is 1. Each sibling is visited at most once;
// one that destroys itself ends the walk. `window` itself may be gone afterwards.
LRESULT ForwardMouseMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace kv
