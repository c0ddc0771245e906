// What a page of the gallery is.
//
// A page is a child dialog of class "kvDialog" with a template and a dialog procedure of its own, in
// gallery/pages/NAME_page.cpp and NAME_page.rc (included by gallery.rc). It has one line in the table of pages.cpp. The
// frame shows its title and its description above it, creates it when it is first selected, keeps it as large as the
// space allows, and destroys it at the end. A page that is not selected is hidden and may rest.
//
// Template: DIALOGEX, STYLE DS_CONTROL | WS_CHILD | WS_CLIPCHILDREN, CLASS "kvDialog", FONT 8, "Microsoft Sans Serif",
// 0, 0, 1; about 400 x 270 dialog units; controls with ids in the page's range (resource_ids.h).
//
// The dialog procedure hands every message that it does not finish itself to HandlePageMessage, which
//
//   WM_INITDIALOG      captures the layout of all controls in IDC_PAGE_FIRST..IDC_PAGE_LAST; create further ones before
//   WM_SIZE            scales them in proportion, with a font for lists and edit controls of many lines
//   WM_PAINT           fills the background (the dialog class does not erase)
//   WM_CTLCOLORSTATIC  gives labels that background, and the text colour that the system reads on it
//   WM_SYSCOLORCHANGE  hands it on to the controls
//   WM_NOTIFY          shows the whole text of a label or button that is cut, as a tip
//   kTextsChanged      sets the texts of the page's template anew: those at TEXT_OF(control) of the language library,
//                      English where it has none; mirrors the page where the language asks for it
//   WM_NCDESTROY       frees what it keeps
//
// and returns the dialog procedure's result. All on the main thread.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

struct Page {
  const char* name;               // stable, for the command line and for file names of pictures
  const wchar_t* dialogTemplate;  // of the gallery's own module
  DLGPROC procedure;
};

// Sent to the frame and to each page that exists after modules.resources has changed.
inline constexpr UINT kTextsChanged = WM_APP + 1;
// Sent to a page when it is shown (wParam 1) or hidden (wParam 0): the time to start or stop timers.
inline constexpr UINT kPageShown = WM_APP + 2;

INT_PTR HandlePageMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The colour of a page's background.
COLORREF PageColor();

// Enables or disables a control of the page. The focus goes on to the next one before its control is disabled.
void EnableControl(HWND page, int controlId, bool enabled);

// The head of a WM_NOTIFY, copied: the system's records for pressed keys are packed and lie at odd addresses.
NMHDR NotificationOf(LPARAM lParam);

// Gives a control that draws itself its name for a screen reader, in any script: as its window text, but past its
// class, which speaks the code page, and which may take a text for more than a name.
void NameControl(HWND page, int controlId, const std::wstring& name);

// Shows text resource `textId` in a control of the page.
void SetPageText(HWND page, int controlId, UINT textId);

}  // namespace gallery
