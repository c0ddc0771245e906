// Right to left: in a language that is written so, a dialog is mirrored with its controls; pictures, instruments and
// read-outs of numbers are not. For the files of this folder only. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Mirrors a dialog, or turns it back, for the language that is shown. True when that changed it; its controls have to
// be placed anew then.
bool MirrorDialog(HWND dialog);

// To be called when the controls of a dialog have been placed: brings scroll bars back to the side where their control
// expects them.
void FixMirroredDialog(HWND dialog);

}  // namespace kv
