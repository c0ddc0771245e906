// Sees and moves a running tarnwick.exe from another process, as a person would: finds its window, reads texts and
// pixels, clicks with the mouse. Used by ./run when nobody is looking, and by the end-to-end tests.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace uidriver {

// The main window, once it is visible; null if none shows within `timeoutMs`.
HWND WaitForTarnwick(DWORD timeoutMs);

// Where a toolbar button's centre is on the screen; {-1, -1} when there is no such command.
POINT ToolbarButtonCentre(HWND window, int command);
// Whether the button is pressed in.
bool IsToolbarButtonChecked(HWND window, int command);

// Brings the control's window to the front, moves the mouse to a place on the control and clicks the left button,
// through the system's input queue. False when something else lies there; the click then goes to that.
bool ClickAt(HWND control, POINT screen);

// The text of a control; the five status buttons in order (port, points 1 to 4).
std::string TextOf(HWND window, int id);
std::array<std::string, 5> StatusTexts(HWND window);

// A pixel of the screen inside a control, at client coordinates.
COLORREF PixelOf(HWND control, int x, int y);

}  // namespace uidriver
