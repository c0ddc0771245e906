// Paints the main dialog's background: blue with bands that fade from the toolbar and the status bar, and a panel with
// a rounded frame and a shadow on which the tab control lies. Main thread only.
#pragma once

#include <windows.h>

#include "app/main_dialog_geometry.h"

namespace kv {

void PaintMainBackground(HDC dc, SIZE client, const BackgroundShape& shape);

}  // namespace kv
