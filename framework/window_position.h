// Remembers in the registry where the user left a window, and single numbers beside it. Main thread only; nothing is
// cached, so every call reads or writes "Software\korvel\WindowPositions" below HKEY_CURRENT_USER.
//
// In a DPI-aware host: a rectangle is stored and restored in the pixels that the host sees, also when the screen has
// another DPI by then.
#pragma once

#include <windows.h>

namespace kv {

inline constexpr char kWindowPositionsKey[] = "Software\\korvel\\WindowPositions";

inline constexpr int kPositionSave = 0;         // store the outer rectangle; not while minimised or maximised
inline constexpr int kPositionRestore = 1;      // position and size, and show the window
inline constexpr int kPositionRestoreOnly = 2;  // position only

// Saves or restores the outer rectangle of `window` under the value `name`, as the text "left,top,right,bottom" in
// screen pixels. Without a stored text a restore centres the window on the desktop at its present size. A mode above 2
// reads the stored text, clamps it as a restore does and stores it again; the window does not move.
//
// Returns 0 for a window that does not exist, a name that cannot be read, a negative mode, and a save of a minimised or
// maximised window. A registry that cannot be written is not a failure.
BOOL WindowPosition(HWND window, const char* name, int mode);

// Writes (kPositionSave) or reads (kPositionRestore, kPositionRestoreOnly) one 32-bit number. A number that is not
// stored, or is stored with more than 4 bytes, stays what the caller preset. Returns 0 for an unreadable name, an
// unwritable number and any other mode.
BOOL WindowNumber(const char* name, DWORD* number, int mode);

// To be called for a window whose place was restored, whatever that was: gives it at least the size `minimumSize`, and
// centres it on the primary monitor when no monitor shows enough of its caption to drag it by.
void KeepInSight(HWND window, SIZE minimumSize);

// The rectangle in a stored text: up to four comma-separated whole numbers. A field whose comma is missing, and all
// after it, repeat the first field; what is no number is 0; a number beyond 32 bits is the nearest that fits.
RECT ParsePosition(const char* text);

// A rectangle that begins beyond the left or top edge of the screen begins at that edge instead; its right and bottom
// edges stay, so it becomes smaller by the part that was outside.
RECT ClampPosition(RECT position);

// A window of this size in the middle of the desktop.
RECT CentredPosition(SIZE desktop, SIZE window);

}  // namespace kv
