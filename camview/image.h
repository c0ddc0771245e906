// An image of field, charts and timeline, for the clipboard and for a file. Main thread only.
#pragma once

#include <windows.h>

#include "kv/framework/canvas.h"

namespace camview {

// Draws the controls at their positions in the window. Returns false when allocation fails.
bool DrawImage(HWND window, kv::Surface* image);

}  // namespace camview
