// kvSimpleBitmap: a picture from the module's bitmap resources, stretched into the control, that lets mouse clicks fall
// through to the controls beneath it (framework/control_class.h). For decorations in dialog templates. Main thread
// only.
//
// In a DPI-aware host: the bitmap is stretched to the pixels that its control has; nothing reads the DPI.
//
// Window text: the bitmap's name, at most 256 characters. A number other than 0 (decimal, 0x hexadecimal or 0 octal) is
// the id of a bitmap resource of the window's module; anything else is a resource name. A bitmap that cannot be loaded
// leaves the control without one; it then shows the button-face colour.
//
// Styles, read at each use:
//   kBitmapTransparent    magenta (255, 0, 255) becomes the button-face colour when the bitmap is loaded
//   kBitmapSquareByWidth  the drawn width is at most the client height
//   kBitmapSquareByHeight the drawn height is at most the drawn width
// A picture smaller than the client area sits in its top left corner; the rest is not painted.
//
// Messages:
//   WM_SETTEXT   loads another bitmap and paints it at once; 1. The window text stays that of the creation. An
//                unreadable text changes nothing; 0
//   WM_COPY      puts the bitmap on the clipboard as CF_BITMAP, in its own size or, with lParam not 0, in the size
//                MAKELPARAM(width, height), each 16..5120; 0, or 1 without a bitmap
//   WM_DROPFILES is sent on to the parent; the parent's result
//   WM_GETOBJECT screen readers get a graphic with the window text as its name, unless that is a number
//
// Notifications, posted to the parent as WM_COMMAND after the click has fallen through:
//   1      left button pressed, unless the control beneath returned 0 (as a clicked button does)
//   2, 4   right, middle button pressed
//   0x8001 double click; the bitmap has been copied to the clipboard
#pragma once

#include <windows.h>

#include "framework/control_class.h"

namespace kv {

inline constexpr char kSimpleBitmapClass[] = "kvSimpleBitmap";

inline constexpr DWORD kBitmapTransparent = 0x0002;
// kBitmapSquareByWidth and kBitmapSquareByHeight are those of framework/control_class.h.

inline constexpr WORD kBitmapLeftClick = 1;
inline constexpr WORD kBitmapRightClick = 2;
inline constexpr WORD kBitmapMiddleClick = 4;
inline constexpr WORD kBitmapDoubleClick = 0x8001;  // with the top bit set: not a single click that comes twice

// Registers (non-zero flag) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterSimpleBitmapClass(HINSTANCE instance, BOOL registerIt);

// The size in which a control of this client size and style shows its bitmap.
SIZE SimpleBitmapExtent(SIZE client, DWORD style);

// Draws the control into the client area whose top left corner is at 0, 0. `bitmap` may be null.
void DrawSimpleBitmap(HDC dc, SIZE client, DWORD style, HBITMAP bitmap);

}  // namespace kv
