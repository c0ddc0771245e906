// What the toolkit keeps for an open dialog, for the files of this folder only.
#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <vector>

#include "framework/dialog_layout.h"
#include "framework/guards.h"
#include "toolkit/scaled_dialog.h"

namespace kv {

enum class DialogKind { kModeless, kModal, kPage };

// A dialog inside this one.
struct DialogPage {
  const ScaledDialog* options;
  HWND window;
};

// Lives from WM_INITDIALOG to WM_NCDESTROY, and longer for whoever holds it: every call that reaches a control or the
// dialog's own procedure may destroy the dialog.
struct DialogState {
  ScaledDialog options;
  DialogKind kind;
  WNDPROC classProcedure;
  std::vector<LayoutSlot> slots;
  DialogScale scale{1, 1};
  SIZE minimumSize;
  bool hasDefaultButton;  // in its template
  OwnedBrush background;  // null: the system's
  OwnedFont listFont;
  std::vector<OwnedFont> fonts;  // the controls' last ones, once the dialog is being destroyed
  HWND tips, textTips;
  std::vector<DialogPage> pages;
  HWND shownPage;
  int placeholderId;
  HACCEL accelerators;  // null without a table; the system frees it with the program
  HMENU languageMenu;
  std::array<HBITMAP, kLanguageBitmapArea / sizeof(HBITMAP)> languageBitmaps;

  ~DialogState();
};

// Null for a window that is no dialog of the toolkit, or no longer.
std::shared_ptr<DialogState> DialogStateOf(HWND dialog);

// Opens a dialog of a kind; null when it could not be opened, which is explained to a debugger.
HWND CreateScaledDialog(HWND owner, const ScaledDialog& dialog, DialogKind kind);
void ReportMissing(const wchar_t* templateName);

// Keeps the shown page as large as its place.
void PlacePage(HWND parent, const DialogState& state);

// Sets what the dialog and its pages show in the language of the process, and tells their procedures.
void ShowLanguage(HWND dialog);

// The template's texts, in English where the language lacks them.
void SetTextsOfLanguage(HWND dialog, const wchar_t* templateName);

// Puts a menu bar and tool tips in the language that is shown in the place of the former.
void ReplaceMenu(HWND dialog, DialogState& state);
void ReplaceTooltips(HWND dialog, DialogState& state);

// Calls visit(child) for each child window that is there at the beginning and still is when its turn comes.
template <class Visit>
void VisitChildren(HWND parent, Visit visit) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    children.push_back(child);
  for (HWND child : children) {
    if (GetParent(child) == parent) visit(child);
  }
}

// Whether a window is of that class, in any case.
bool IsOfClass(HWND window, const wchar_t* name);

}  // namespace kv
