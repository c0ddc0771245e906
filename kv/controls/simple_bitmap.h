// Window class "kvSimpleBitmap": a bitmap resource of the module, stretched into the control. It forwards mouse clicks
// to the controls behind it (kv/framework/control_class.h). For decorations in dialog templates. Main thread only.
//
// Window text: the bitmap's name, at most 256 characters. A number other than 0 (decimal, 0x hexadecimal or 0 octal) is
// the id of a bitmap resource of the window's module; any other text is a resource name. If the bitmap cannot be
// loaded, the control shows the button-face color.
//
// Styles, read at each use:
//   kBitmapTransparent    magenta (255, 0, 255) becomes the button-face color when the bitmap is loaded
//   kBitmapSquareByWidth  the drawn width is at most the client height
//   kBitmapSquareByHeight the drawn height is at most the drawn width
// A bitmap smaller than the client area is drawn in the top left corner; the rest is not painted.
//
// Messages:
//   WM_SETTEXT   loads another bitmap, paints it at once and returns 1. The window text does not change. With an
//                unreadable text, does nothing and returns 0
//   WM_COPY      puts the bitmap on the clipboard as CF_BITMAP, in its own size or, if lParam is not 0, with the width
//                and height MAKELPARAM(width, height), each clamped to 16..5120. Returns 0, or 1 without a bitmap
//   WM_DROPFILES is forwarded to the parent; returns the parent's result
//   WM_GETOBJECT a graphic whose accessible name is the window text, unless that is a number
//
// Notifications, posted to the parent as WM_COMMAND after the click has been forwarded:
//   1      left button pressed, unless the control behind it returned 0 (as a clicked button does)
//   2, 4   right, middle button pressed
//   0x8001 double click; the bitmap has been copied to the clipboard
#pragma once

#include <windows.h>

#include "kv/framework/control_class.h"

namespace kv {

inline constexpr char kSimpleBitmapClass[] = "kvSimpleBitmap";

inline constexpr DWORD kBitmapTransparent = 0x0002;
// kBitmapSquareByWidth and kBitmapSquareByHeight are in kv/framework/control_class.h.

inline constexpr WORD kBitmapLeftClick = 1;
inline constexpr WORD kBitmapRightClick = 2;
inline constexpr WORD kBitmapMiddleClick = 4;
inline constexpr WORD kBitmapDoubleClick = 0x8001;  // the top bit distinguishes it from a single click

// Registers (non-zero flag) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterSimpleBitmapClass(HINSTANCE instance, BOOL registerIt);

// The size at which a control with this client size and style draws its bitmap.
SIZE SimpleBitmapExtent(SIZE client, DWORD style);

// Draws the control at (0, 0). `bitmap` may be null.
void DrawSimpleBitmap(HDC dc, SIZE client, DWORD style, HBITMAP bitmap);

}  // namespace kv
