// A dialog that needs no more than a record and a procedure: it grows and shrinks with its controls, keeps a smallest
// size, remembers its place, and shows texts, menu and tool tips in the language of the program, from right to left
// where that is written so. Main thread only.
//
//   INT_PTR CALLBACK Panel(HWND panel, UINT message, WPARAM wParam, LPARAM lParam);
//
//   int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
//     return kv::RunDialog(instance, {.templateName = L"PANEL", .procedure = Panel, .positionName = "My.Panel"});
//   }
//
// The template names the class KV_DIALOG and has the style KV_RESIZABLE_DIALOG (resource.h). What every dialog does:
//
//   fonts     labels, buttons and fields follow the size as framework/dialog_layout.h has it; list boxes, list views
//   and
//             edit controls of many lines, too. A label without a text gets a blank for one.
//   tips      a label or button that its place cuts shows its whole text under the mouse
//   direction see languages.h
//   colours   labels have the system's, or read on `background`; a change is handed on to all controls
//   notices   WM_NOTIFY brings wide texts
//   keys      F6 and Ctrl+Tab cross between a dialog and its page (pages.h); Tab leaves an edit control that would keep
//             it; Enter presses the focused button, or opens the row of a list as a double click does unless the dialog
//             has a default button; the wheel turns what is under the mouse. Not in modal dialogs.
//   closing   is put off while a box that the dialog owns is open
#pragma once

#include <windows.h>

#include <climits>
#include <span>

#include "framework/language.h"
#include "framework/tooltips.h"

namespace kv {

inline constexpr COLORREF kDefaultBackground = 0xFFFFFFFF;  // the system's button face

// The menu of languages (framework/language.h) and how a menu bar holds it.
struct LanguageMenu {
  UINT item = 0;          // of the menu bar, which becomes the menu; 0: there is none
  UINT firstCommand = 0;  // the 24 commands, which the toolkit carries out
  UINT firstBitmap = 0;   // the 48 images, bitmap resources of the program
};

// What its addresses lead to must live as long as the dialog: string literals and static tables, as a rule.
struct ScaledDialog {
  // The template's name, or MAKEINTRESOURCEW id, in the program's own module.
  const wchar_t* templateName;

  // An ordinary dialog procedure, or null. It sees WM_INITDIALOG before the dialog gets its place, and every message
  // after that; what it returns FALSE for is done here. WM_SIZE reaches it when the controls have been placed, and
  // WM_DESTROY when the position has been saved. A WM_CLOSE for which it returns TRUE does not close the dialog. It may
  // destroy the dialog at any time.
  DLGPROC procedure = nullptr;
  LPARAM parameter = 0;  // handed to it with WM_INITDIALOG

  // Under which the dialog's place is remembered (framework/window_position.h), and whether it was maximised. Null: not
  // remembered, and the template says where it opens. It always comes back where it can be seen.
  const char* positionName = nullptr;
  const char* maximisedName = nullptr;

  // Of the whole window, in pixels. 0: as in the template.
  SIZE minimumSize = {};
  COLORREF background = kDefaultBackground;

  // Tips of controls, from string resources of the language that is shown unless a text is given.
  std::span<const TooltipEntry> tips = {};

  // The menu bar: a menu resource of the program's own module.
  const wchar_t* menu = nullptr;
  LanguageMenu languageMenu = {};

  // Keys for commands: an accelerator table of the program's own module. Keys that the focused control uses stay with
  // it: all but function keys and Ctrl with another letter than A, C, V, X, Y or Z in an edit control or combo box,
  // Space on a button, single letters in a list or a tree. Not in modal dialogs and pages.
  const wchar_t* accelerators = nullptr;

  // The ids of the controls that scale. Controls outside the range keep place, size and font; those that are made after
  // WM_INITDIALOG must have such ids. The fonts that controls have after WM_INITDIALOG are copied; from then on the
  // dialog owns the fonts of its controls, and deletes them.
  int firstId = INT_MIN, lastId = INT_MAX - 1;

  // The parts of the client area that do not scale (toolbar, status bar), in pixels.
  int leftMargin = 0, topMargin = 0, bottomMargin = 0;

  // The program's languages, which RunDialog takes up: the stem of the language libraries beside it ("panel" for
  // panelGE.dll), under which the choice is stored as well, and the one to begin with. Null: English only.
  const wchar_t* languages = nullptr;
  int language = kStoredLanguage;
};

// Sent to the procedure when the language has changed, and once after WM_INITDIALOG: what the template does not hold
// (names of instruments, items of lists) takes its text now. wParam is the language.
inline constexpr UINT kLanguageChanged = WM_APP + 0x3F00;

// The whole program: prepares the process (common controls, rich edits, all window classes, the stored language), opens
// the dialog, runs until it is closed, and undoes everything. The exit code: that of PostQuitMessage, 0 when the dialog
// was closed, -1 when it could not be opened.
int RunDialog(HINSTANCE instance, const ScaledDialog& dialog);

// For programs with a start-up of their own, which register the classes and set `modules` (framework/modules.h): opens
// a modeless dialog, which joins the table of modeless dialogs and leaves it when it is destroyed. Null when it could
// not be opened. IDCANCEL, which Escape sends, closes nothing.
//
// This one, RunDialog and RunModalDialog tell a debugger (OutputDebugString) what is missing: the template, for which
// the last error is ERROR_RESOURCE_NAME_NOT_FOUND, or the window class of a control that it names
// (ERROR_CANNOT_FIND_WND_CLASS).
HWND OpenDialog(HWND owner, const ScaledDialog& dialog);

// Opens a modal dialog and returns the id of the button (IDOK, IDCANCEL, or what the procedure ends it with); -1 when
// it could not be opened.
INT_PTR RunModalDialog(HWND owner, const ScaledDialog& dialog);

// Dispatches messages until the window is destroyed or the process is to quit; returns the exit code. Every modeless
// dialog of the table gets its keys; those of the toolkit take letters of every script.
int RunMessageLoop(HWND window);

// How far the dialog is from the size of its template: 1 as in the template. 1 for other windows.
struct DialogScale {
  float x, y;
};
DialogScale ScaleOf(HWND dialog);

// Enables or disables a control. When it has the focus, that goes on to the next one first.
void EnableControl(HWND dialog, int id, bool enabled);

// Gives the focus to the first control that takes it. False when there is none.
bool FocusFirstControl(HWND dialog);

// Gives a control that draws itself its name for screen readers, in any script: its window text, but past its class,
// which may speak the code page or take a text for more than a name.
void NameControl(HWND dialog, int id, const wchar_t* name);

// The head of a WM_NOTIFY, copied: the system's records for pressed keys are packed and lie at odd addresses.
NMHDR NotificationOf(LPARAM lParam);

}  // namespace kv
