// Drives a running tarnwick.exe from another process, as a user would: finds its window, reads texts and pixels, clicks
// with the mouse. Used by ./run without a display, and by the end-to-end tests.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace uidriver {

// Waits for the main window to be visible; null after `timeoutMs`.
HWND WaitForTarnwick(DWORD timeoutMs);

// The center of a toolbar button in screen coordinates; {-1, -1} when there is no such command.
POINT ToolbarButtonCenter(HWND window, int command);
// Whether the button is pressed in.
bool IsToolbarButtonChecked(HWND window, int command);

// Brings the control's window to the front, moves the mouse to a point of the control and clicks the left button,
// through the system's input queue. False when another window covers the point; that window then gets the click.
bool ClickAt(HWND control, POINT screen);

// The text of a control; the five status buttons in order (port, points 1 to 4).
std::string TextOf(HWND window, int id);
std::array<std::string, 5> StatusTexts(HWND window);

// A pixel of the screen inside a control, at client coordinates.
COLORREF PixelOf(HWND control, int x, int y);

}  // namespace uidriver
