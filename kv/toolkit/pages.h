// Pages: dialogs inside a dialog, of which one is shown at a time. A page is created when it is first shown. Main
// thread only.
//
// A page is a ScaledDialog whose template has the style KV_PAGE; its `positionName`, `minimumSize`, menu and languages
// are ignored. It scales with its parent and changes its language with it. The parent is also a dialog of
// kv/toolkit/scaled_dialog.h; a control of its template (a group box, or an invisible label) is the pages' position.
#pragma once

#include <windows.h>

#include "kv/toolkit/scaled_dialog.h"

namespace kv {

// Sent to a page when it is shown (wParam 1) or hidden (wParam 0). A regular timer needs no code: see `tickMs`.
inline constexpr UINT kPageShown = WM_APP + 0x3F01;

// Shows a page instead of the previous one, at the position and size of the control `placeholderId` of `parent`, which
// it follows. If the focus was in the previous page, it moves to this one. The address of `page` identifies the page,
// which exists until the parent is destroyed. Returns its window; null, and the previous page remains, if `parent` is
// not a dialog of the toolkit or the page cannot be created.
HWND ShowPage(HWND parent, int placeholderId, const ScaledDialog& page);

// The page that is shown; null before the first ShowPage.
HWND ShownPage(HWND parent);

// The window of a page; null before it is first shown.
HWND PageWindow(HWND parent, const ScaledDialog& page);

}  // namespace kv
