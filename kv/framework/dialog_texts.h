// Replaces the texts of an open dialog from a dialog template, to change its language. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Sets the caption of `dialog` and the texts of its controls from a dialog template (classic or extended) of `module`,
// given by name or MAKEINTRESOURCEW id. Controls are found by id. A control keeps its text if its id is -1, if the
// template has no text or a resource number for it, or if the dialog does not have it. An empty caption in the template
// is ignored.
//
// Returns 0 when the window or the template does not exist or the template is truncated; the texts found before the end
// are set.
BOOL SetDialogTexts(HWND dialog, HINSTANCE module, const wchar_t* templateName);

}  // namespace kv
