// What the library's window classes share: registration, the flags of the command message, repainting and notifications
// to the parent; the kinds of controls; and forwarding mouse input to the control behind it. Main thread only.
//
// In a DPI-aware program, coordinates and sizes of the whole library are in the program's pixels. Nothing depends on
// the DPI, except what its header says.
#pragma once

#ifdef _WIN64
#error kv is a 32-bit library: build for Win32
#endif

#include <windows.h>

namespace kv {

// The command message of the chart, the instruments and the views. The low byte of wParam is the operation; lParam is
// always an address, which the control tests before use. Numeric value 1027.
inline constexpr UINT kControlCommand = WM_USER + 3;

// Flag bits of the command's wParam.
inline constexpr WPARAM kCommandRead = 0x8000;    // copy the item out to the address in lParam
inline constexpr WPARAM kCommandRemove = 0x4000;  // remove or switch off
inline constexpr WPARAM kCommandRedraw = 0x0100;  // repaint at once if something changed

// Registers (`registerIt` not 0) or unregisters the class `name`: redrawn on size changes, receives double clicks,
// global to the process, no extra bytes, arrow cursor, null background brush. Returns 0 only when registering fails.
BOOL RegisterControlClass(HINSTANCE instance, const char* name, WNDPROC procedure, BOOL registerIt);

// Posts WM_COMMAND to the parent: the control's id in the low word, `code` in the high word, the control in lParam.
void PostNotification(HWND control, WORD code);

// Invalidates the whole window with erasing, and repaints it at once.
void RepaintNow(HWND window);

// The same for a window without children, or for a part of it. Excluding children saves a system call.
void RepaintWithoutChildren(HWND window, HRGN part = nullptr);

// Kinds of controls, distinguished by their class names.

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

// Styles of the bitmap control (kv/controls/simple_bitmap.h). When the dialog scales, the control's height follows the
// width's scale, or its width the height's, so the bitmap keeps its proportions.
inline constexpr DWORD kBitmapSquareByWidth = 0x0010;
inline constexpr DWORD kBitmapSquareByHeight = 0x0020;

// The number of characters of a class name that are compared, terminator included.
inline constexpr int kClassNameCharacters = 64;

// Returns the kind for a class name, ignoring case. A name need only contain the text of a kind ("MyEditBox" is an
// edit, and rich edits are). If it contains several, the last of STATIC, BUTTON, EDIT, COMBOBOX, LISTBOX,
// SYSTABCONTROL32, KVSIMPLEBITMAP, SYSTREEVIEW32 decides. Returns kControlOther for an unreadable name.
ControlKind ClassifyClassName(const char* className);

// Returns the kind of a window; kControlOther when it does not exist.
ControlKind ClassifyControl(HWND window);

// Returns whether a window has exactly that class, ignoring case.
bool IsOfClass(HWND window, const char* className);

// Forwards a mouse message of `window`, or a WM_COMMAND, to the visible siblings under the mouse cursor that accept
// input (buttons, edits, combo boxes, list boxes, tree views), in z-order.
//
//   WM_LBUTTONDOWN                  the first of them: a button is clicked (BM_CLICK), any other gets the message
//   WM_MOUSEMOVE, the other         the first of them gets the keyboard focus and the message
//   button-down and button-up
//   any other (double clicks,       each of them gets the message with wParam and lParam unchanged
//   WM_COMMAND)
//
// In the first two cases lParam is the address of a POINT with the cursor in the sibling's client coordinates, valid
// during the call, and the result is the sibling's. Otherwise the result is 1. Each sibling receives at most one
// message; if one destroys itself, forwarding ends. `window` may have been destroyed when the function returns.
LRESULT ForwardMouseMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace kv
