// A dialog that needs no more than a record and a procedure: it grows and shrinks with its controls, keeps a smallest
// size, has a background, tool tips and a language, and remembers its place. Main thread only.
//
//   INT_PTR CALLBACK Panel(HWND panel, UINT message, WPARAM wParam, LPARAM lParam);
//
//   int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
//     return kv::RunDialog(instance, {.templateName = L"PANEL", .procedure = Panel, .positionName = "My.Panel"});
//   }
//
// The template names the class "kvDialog" and has WS_CLIPCHILDREN; with WS_THICKFRAME its user may resize it.
#pragma once

#include <windows.h>

#include <climits>
#include <span>

#include "framework/tool_tips.h"

namespace kv {

inline constexpr COLORREF kFaceBackground = 0xFFFFFFFF;  // the system's button face

// What its addresses lead to must live as long as the dialog: string literals and static tables, as a rule.
struct ScaledDialog {
  // The template's name, or MAKEINTRESOURCEW id, in the program's own module.
  const wchar_t* templateName;

  // An ordinary dialog procedure, or null. It sees WM_INITDIALOG before the dialog gets its place, and every message
  // after that; what it answers FALSE is done here. WM_SIZE reaches it when the controls have been placed, and
  // WM_DESTROY when the position has been saved. A WM_CLOSE that it answers TRUE does not close the dialog.
  DLGPROC procedure = nullptr;
  LPARAM parameter = 0;  // handed to it with WM_INITDIALOG

  // Under which the dialog's place is remembered (framework/window_position.h). Null: nothing is remembered, and the
  // template says where it opens.
  const char* positionName = nullptr;

  // Of the whole window, in pixels. 0: as in the template.
  SIZE smallest = {};
  COLORREF background = kFaceBackground;

  // Tips of controls, from string resources of the language that is shown unless a text is given.
  std::span<const ToolTipEntry> tips = {};

  // The ids of the controls that scale. Controls outside the range keep place, size and font. The fonts that controls
  // have after WM_INITDIALOG are copied; from then on the dialog owns the fonts of its controls, and deletes them.
  int lowestId = INT_MIN, highestId = INT_MAX;

  // The parts of the client area that do not scale (toolbar, status bar), in pixels.
  int leftMargin = 0, topMargin = 0, bottomMargin = 0;

  // The program's languages, which RunDialog takes up: the stem of the language libraries beside it ("panel" for
  // panelGE.dll), under which the choice is stored as well. Null: English only.
  const wchar_t* languages = nullptr;
};

// Sent to the procedure when the language has changed, and once after WM_INITDIALOG: what the template does not hold
// (names of instruments, column titles) takes its text now. wParam is the language.
inline constexpr UINT kLanguageShown = WM_APP + 0x3F00;

// The whole program: prepares the process (common controls, rich edits, all window classes, the stored language), opens
// the dialog, runs until it is closed, and undoes everything. The exit code: that of PostQuitMessage, 0 when the dialog
// was closed, -1 when it could not be opened.
int RunDialog(HINSTANCE instance, const ScaledDialog& dialog);

// For programs with a start-up of their own, which register the classes and set `modules` (framework/modules.h): opens
// a modeless dialog, which joins the table of modeless dialogs and leaves it when it is destroyed. Null when the
// template is missing. IDCANCEL, which Escape sends, closes nothing.
HWND OpenDialog(HWND owner, const ScaledDialog& dialog);

// Opens a modal dialog and returns the id of the button (IDOK, IDCANCEL, or what the procedure ends it with); -1 when
// the template is missing.
INT_PTR AskByDialog(HWND owner, const ScaledDialog& dialog);

// Dispatches messages until the window is destroyed or the process is to quit; returns the exit code. Every modeless
// dialog of the table gets its keys; those of the toolkit take letters of every script.
int RunMessageLoop(HWND window);

// How far the dialog is from the size of its template: 1 as in the template. 1 for other windows.
struct DialogScale {
  float x, y;
};
DialogScale ScaleOf(HWND dialog);

}  // namespace kv
