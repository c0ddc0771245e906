// Pages: dialogs inside a dialog, one shown at a time, each made when it is first shown. Main thread only.
//
// A page is a ScaledDialog whose template has the style KV_PAGE; `positionName`, `minimumSize`, menu and languages are
// not looked at. It scales with its place and changes its language with its parent. The parent is a dialog of
// toolkit/scaled_dialog.h, too; its template has a control (a group box, or a label that is not visible) where its
// pages lie.
#pragma once

#include <windows.h>

#include "toolkit/scaled_dialog.h"

namespace kv {

// Sent to a page when it is shown (wParam 1) or hidden (wParam 0): the time to start or stop timers.
inline constexpr UINT kPageShown = WM_APP + 0x3F01;

// Shows a page over the control `placeholderId` of `parent`, as large as that and following it, in place of the one
// that was shown. When the focus was in that one, it goes into this one. The page is known by the address of its
// record, and lives until the parent is destroyed. Returns its window; null, with the former page still shown, when
// `parent` is no dialog of the toolkit or the page cannot be opened.
HWND ShowPage(HWND parent, int placeholderId, const ScaledDialog& page);

// The page that is shown; null before the first.
HWND ShownPage(HWND parent);

// The window of a page that has been shown once; null before.
HWND PageWindow(HWND parent, const ScaledDialog& page);

}  // namespace kv
