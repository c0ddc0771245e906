// A dialog defined by a struct and a procedure. It scales with its controls, has a minimum size, stores its position,
// and shows texts, menu and tooltips in the program's language, mirrored for right-to-left languages. Main thread only.
//
//   INT_PTR CALLBACK Panel(HWND panel, UINT message, WPARAM wParam, LPARAM lParam);
//
//   int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
//     return kv::RunDialog(instance, {.templateName = L"PANEL", .procedure = Panel, .positionName = "My.Panel"});
//   }
//
// The template has the class KV_DIALOG and the style KV_RESIZABLE_DIALOG (resource.h). Every dialog has these features:
//
//   Fonts          all texts have one size, which follows the smaller scale, and the font's own proportions. The text of a
//                  label without text becomes a blank. A label of one line is centered vertically, as is the text of a
//                  box beside it; a field is as high as its text requires.
//   Tooltips       show the whole text of a truncated label or button
//   Direction      see languages.h
//   Colors        labels have the system's colors, or contrast with `background`; color changes are forwarded to all
//                  controls
//   Notifications  WM_NOTIFY contains wide texts
//   Keyboard       F6 and Ctrl+Tab move between a dialog and its page (pages.h). Tab leaves a multi-line edit control.
//                  Enter presses the focused button; without a default button it also opens the row of a list, like a
//                  double click. The wheel scrolls the control under the mouse. Not in modal dialogs. Display instruments
//                  and horizons that are tab stops show the focus; Ctrl+C copies their image.
//   Closing        is delayed while a message box or dialog that the dialog owns is open
//   End of the     position and settings are saved when the user logs off, also while a box is open, and the message
//   session        loop ends
#pragma once

#include <windows.h>

#include <climits>
#include <span>

#include "kv/framework/language.h"
#include "kv/framework/tooltips.h"

namespace kv {

inline constexpr COLORREF kDefaultBackground = 0xFFFFFFFF;  // the system's button face

// The language menu (kv/framework/language.h) in a menu bar.
struct LanguageMenu {
  UINT item = 0;          // the item of the menu bar that becomes the menu; 0: none
  UINT firstCommand = 0;  // the first of 24 commands, which the toolkit executes
  UINT firstBitmap = 0;   // the first of 48 bitmap resources of the program
};

// All pointers must remain valid as long as the dialog exists: use string literals and static tables.
struct ScaledDialog {
  // The name or MAKEINTRESOURCEW id of the template, in the program's module.
  const wchar_t* templateName;

  // A dialog procedure, or null. It receives WM_INITDIALOG before the dialog is positioned, and all later messages; the
  // toolkit handles messages for which it returns FALSE. It receives WM_SIZE after the controls have been laid out, and
  // WM_DESTROY after kSaveState. If it returns TRUE for WM_CLOSE, the dialog remains open. It may
  // destroy the dialog at any time.
  DLGPROC procedure = nullptr;
  LPARAM parameter = 0;  // lParam of WM_INITDIALOG

  // The name under which the position is stored (kv/framework/window_position.h). Null: not stored; the template
  // defines the position. The restored position is always on a visible part of the desktop.
  const char* positionName = nullptr;
  // The name under which the maximized state is stored; null: not stored.
  const char* maximizedName = nullptr;

  // The program's version. The system menu then ends with the item "About..." (KV_ABOUT), which shows it with icon 1
  // and the caption. Null: no item; ShowAboutBox (about_box.h) shows more, from any menu.
  const wchar_t* version = nullptr;

  // Of the whole window, in pixels; at least the size at which texts are 11 pixels high, at which they stop shrinking.
  // 0: the size of the template. A smaller screen limits it.
  SIZE minimumSize = {};
  COLORREF background = kDefaultBackground;

  // Tooltips of controls; long texts have several lines. Without a text, a string resource of the current language is
  // used.
  std::span<const TooltipEntry> tips = {};

  // The menu bar: a menu resource of the program's module.
  const wchar_t* menu = nullptr;
  LanguageMenu languageMenu = {};

  // An accelerator table of the program's module. Keys that the focused control uses are not accelerators: in an edit
  // control or combo box all except function keys, and Ctrl with Page Up, Page Down or a letter other than A, C, V, X,
  // Y and Z; Space on a button; single letters in a list or tree. Not in modal dialogs and pages.
  const wchar_t* accelerators = nullptr;

  // The range of ids of the controls that scale. Controls outside the range keep their position, size and font.
  // Controls that are created after WM_INITDIALOG must be outside it. The dialog copies the fonts of its controls after
  // WM_INITDIALOG; it owns the copies and deletes them.
  int firstId = INT_MIN, lastId = INT_MAX - 1;

  // The interval in milliseconds of WM_TIMER with the id kTickTimer; 0: none. A page receives it only while it is
  // shown, the first one at once.
  UINT tickMs = 0;

  // The size in pixels of the parts of the client area that do not scale, for a toolbar or a status bar.
  int leftMargin = 0, topMargin = 0, bottomMargin = 0;

  // For RunDialog: the beginning of the names of the language libraries ("panel" for panelGE.dll), and the name under
  // which the choice is stored. Null: English only.
  const wchar_t* languages = nullptr;
  // The initial language.
  int language = kStoredLanguage;
  // For RunDialog: the registry key of the program's settings, see SetSettingsKey (kv/framework/window_position.h).
  // Every program that is not of this project should have its own.
  const char* settingsKey = nullptr;
};

// Sent to the procedure after WM_INITDIALOG, and when the language has changed: set texts that are not in the template,
// such as names of instruments and items of lists. wParam is the language.
inline constexpr UINT kLanguageChanged = WM_APP + 0x3F00;

// Sent to the procedure before WM_DESTROY, and when the session ends (wParam 1; the process may end as soon as the
// procedure returns): save settings and complete files. The position has been saved.
inline constexpr UINT kSaveState = WM_APP + 0x3F03;

inline constexpr UINT_PTR kTickTimer = 0x6B76;

// Sent to the procedure when the user copied a display instrument or horizon that is a tab stop. wParam is its id;
// lParam is 1, or 0 if the clipboard is not available.
inline constexpr UINT kControlCopied = WM_APP + 0x3F02;

// Runs a whole program: initializes the process (common controls, rich edit controls, all window classes, the stored
// language), opens the dialog, dispatches messages until it is closed, and releases everything. Returns the exit code:
// 0 when the dialog is closed, that of PostQuitMessage, or -1 when the dialog cannot be opened.
int RunDialog(HINSTANCE instance, const ScaledDialog& dialog);

// Opens a modeless dialog, for programs that register the classes and set `modules` (kv/framework/modules.h)
// themselves. The dialog is in the table of modeless dialogs until it is destroyed. Returns null on failure. IDCANCEL,
// which Escape sends, does not close it.
//
// On failure this function, RunDialog and RunModalDialog write the reason to the debugger (OutputDebugString): the
// template is missing (last error ERROR_RESOURCE_NAME_NOT_FOUND), or the window class of one of its controls is not
// registered (ERROR_CANNOT_FIND_WND_CLASS).
HWND OpenDialog(HWND owner, const ScaledDialog& dialog);

// Runs a modal dialog and returns the id of its button (IDOK, IDCANCEL, or the result that the procedure passes to
// EndDialog); -1 when it cannot be opened. It is centered over `owner`, with the stored size, and cannot be minimized
// or maximized.
INT_PTR RunModalDialog(HWND owner, const ScaledDialog& dialog);

// Dispatches messages until the window is destroyed or the process quits; returns the exit code. Handles the keys of
// all modeless dialogs of the table; dialogs of the toolkit receive characters of every script.
int RunMessageLoop(HWND window);

// The size of the dialog relative to its template; 1 for other windows.
struct DialogScale {
  float x, y;
};
DialogScale ScaleOf(HWND dialog);

// The height of a dialog's texts in pixels, as MakeFont (appearance.h) requires it.
int TextHeightOf(HWND dialog);

// Enables or disables a control. If a control with the focus is disabled, the focus moves to the next one first.
void EnableControl(HWND dialog, int id, bool enabled);

// Whether a check box or radio button is checked.
bool IsChecked(HWND dialog, int id);

// Sets the focus to the first control that accepts it. Returns false if there is none.
bool FocusFirstControl(HWND dialog);

// Sets the accessible name of an owner-drawn control, in any script: sets its window text without its window procedure,
// which may convert the text to a code page or use it for another purpose.
void NameControl(HWND dialog, int id, const wchar_t* name);

// A copy of the header of a WM_NOTIFY: the system's structs for key notifications are packed and not aligned.
NMHDR NotificationOf(LPARAM lParam);

}  // namespace kv
