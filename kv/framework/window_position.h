// Stores window positions, and single numbers, in the registry below HKEY_CURRENT_USER, in "WindowPositions" of the
// program's key. Main thread only; nothing is cached: every call reads or writes the registry.
#pragma once

#include <windows.h>

namespace kv {

// Sets the key below HKEY_CURRENT_USER for positions, numbers and the stored language: "Software\\Maker\\Program". The
// text is not copied. Null, and without this call: "Software\korvel", of the programs of this project. Call it before
// anything is stored or read; RunDialog does, for a dialog with a `settingsKey`.
void SetSettingsKey(const char* key);
const char* SettingsKey();

inline constexpr char kWindowPositionsKey[] = "Software\\korvel\\WindowPositions";

inline constexpr int kPositionSave = 0;         // stores the outer rectangle; not while minimized or maximized
inline constexpr int kPositionRestore = 1;      // restores position and size, and shows the window
inline constexpr int kPositionRestoreOnly = 2;  // restores the position only

// Saves or restores the outer rectangle of `window` under the value `name`, as the text "left,top,right,bottom" in
// screen pixels. When nothing is stored, restoring centers the window on the desktop at its present size. A mode above
// 2 reads the stored text, clamps it as a restore does and stores it again, without moving the window.
//
// Returns 0 for a window that does not exist, an unreadable name, a negative mode, and when a minimized or maximized
// window is to be saved. Failure to write the registry is ignored.
BOOL WindowPosition(HWND window, const char* name, int mode);

// Stores a rectangle as saving does.
void StorePosition(const char* name, const RECT& position);

// Writes (kPositionSave) or reads (kPositionRestore, kPositionRestoreOnly) a 32-bit number. `number` does not change
// when nothing is stored or the value has more than 4 bytes. Returns 0 for an unreadable name, an unwritable number and
// any other mode.
BOOL WindowNumber(const char* name, DWORD* number, int mode);

// Centers a window over its owner, if that is not minimized, and removes its boxes to minimize and maximize it.
void PlaceOverOwner(HWND window);

// The size, not larger than the work area of the window's monitor.
SIZE FitToWorkArea(HWND window, SIZE size);

// Call after restoring a window's position: shrinks a window that is larger than its monitor's work area, makes it at
// least `minimumSize` large if the work area is, and centers it on the primary monitor when no monitor shows enough of
// its caption to drag it.
void KeepInSight(HWND window, SIZE minimumSize);

// Parses a stored text: up to four integers separated by commas. A field that is missing, and all after it, repeat the
// first field; text that is not a number is 0; a number beyond 32 bits is clamped.
RECT ParsePosition(const char* text);

// Moves the left and top edges of a rectangle to the screen's edges if they are outside. The right and bottom edges
// stay, so the rectangle becomes smaller.
RECT ClampPosition(RECT position);

// Returns the rectangle of a window of this size in the middle of the desktop.
RECT CenteredPosition(SIZE desktop, SIZE window);

}  // namespace kv
