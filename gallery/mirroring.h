// Right to left: in a language that is written so, frame, pages, lists and labels are mirrored; pictures, instruments
// and read-outs of numbers are not. Main thread only.
#pragma once

#include <windows.h>

namespace gallery {

// Mirrors a window, or turns it back, for the language that is shown. True when that changed it; its children have to
// be placed anew then.
bool MirrorWindow(HWND window);

// The same for a page with its controls. Controls of the library's own classes, and owner-drawn ones keep their
// direction; so do those whose template marks them WS_EX_NOINHERITLAYOUT (read-outs of numbers), which begin at the
// right.
bool MirrorPage(HWND page);

// To be called when the controls of a mirrored page have been placed: brings scroll bars back to the side where their
// control expects them.
void MendMirroredPage(HWND page);

}  // namespace gallery
