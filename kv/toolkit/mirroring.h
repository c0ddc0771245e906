// Mirroring: in a right-to-left language, a dialog and its controls are mirrored; images, instruments and readouts of
// numbers are not. Private to the toolkit. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Mirrors a dialog, or undoes that, for the current language. Returns true if the dialog has changed; then lay out its
// controls again.
bool MirrorDialog(HWND dialog);

// Call it after the controls of a dialog have been laid out: moves scroll bars to the side where their control expects
// them.
void FixMirroredDialog(HWND dialog);

}  // namespace kv
