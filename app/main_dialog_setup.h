// What the main dialog does once, when it is created, and its tab pages. Main thread only.
#pragma once

#include <windows.h>

#include "app/app_context.h"

namespace kv {

// WM_INITDIALOG: keeps the record, prepares all controls, starts the reader thread and the timers, restores the
// window's place. Returns the dialog procedure's answer: 0 (the focus is ours), or 1 for an unusable record.
INT_PTR SetUpMainDialog(HWND dialog, AppContext* context);

// Shows the controls of a tab page and hides those of all others. Nothing for the page that is shown already.
void SelectTabPage(HWND dialog, AppContext* context, int page);

// Gives the toolbar its images anew, on the button face of the present system colours.
void RefreshToolbarImages(HWND dialog, AppContext* context);

}  // namespace kv
