// Places the main dialog's controls for its current client size. Main thread only.
#pragma once

#include <windows.h>

#include "app/app_context.h"

namespace kv {

// Heights in pixels of the bands that the toolbar and the status bar take.
int ToolbarHeight(const MainControls& controls);
int StatusHeight(const MainControls& controls);

// Toolbar to the top left, status bar and its buttons to the bottom, all controls of the scaled range in proportion
// between them; the dialog is then repainted.
void LayOutMainDialog(HWND dialog, AppContext* context);

}  // namespace kv
