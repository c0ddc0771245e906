// The toolkit's state of an open dialog. Private to the toolkit.
#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <vector>

#include "kv/framework/dialog_layout.h"
#include "kv/framework/guards.h"
#include "kv/toolkit/scaled_dialog.h"

namespace kv {

enum class DialogKind { kModeless, kModal, kPage };

// A page of this dialog.
struct DialogPage {
  const ScaledDialog* options;
  HWND window;
};

// Exists from WM_INITDIALOG to WM_NCDESTROY. Functions hold a shared_ptr to it, because every call that reaches a
// control or the dialog's procedure may destroy the dialog.
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
  std::vector<OwnedFont> fonts;  // the controls' fonts while the dialog is being destroyed
  HWND tips, textTips;
  std::vector<DialogPage> pages;
  HWND shownPage;
  int placeholderId;
  HACCEL accelerators;  // null without a table; the system frees it with the program
  HMENU languageMenu;
  std::array<HBITMAP, kLanguageBitmapArea / sizeof(HBITMAP)> languageBitmaps;

  ~DialogState();
};

// The state of a dialog of the toolkit; null for other windows and destroyed dialogs.
std::shared_ptr<DialogState> DialogStateOf(HWND dialog);

// Opens a dialog. On failure returns null and writes the reason to the debugger.
HWND CreateScaledDialog(HWND owner, const ScaledDialog& dialog, DialogKind kind);
void ReportMissing(const wchar_t* templateName);

// Save and restore position, size and maximized state; a page has none.
void RestorePosition(HWND dialog, const DialogState& state);
void SavePosition(HWND dialog, const ScaledDialog& options);

// Resizes the shown page to its control.
void PlacePage(HWND parent, const DialogState& state);

// Starts or stops the timer of a dialog that has one. A page receives the first tick at once.
void RunTicks(HWND dialog, bool run);

// Updates the texts of the dialog and its pages to the current language, and notifies their procedures.
void ShowLanguage(HWND dialog);

// Sets the texts of the template's controls in the current language; missing ones in English.
void SetTextsOfLanguage(HWND dialog, const wchar_t* templateName);

// Recreate the menu bar and the tooltips in the current language.
void ReplaceMenu(HWND dialog, DialogState& state);
void ReplaceTooltips(HWND dialog, DialogState& state);

// Calls visit(child) for each child window; `visit` may create and destroy children.
template <class Visit>
void VisitChildren(HWND parent, Visit visit) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    children.push_back(child);
  for (HWND child : children) {
    if (GetParent(child) == parent) visit(child);
  }
}

}  // namespace kv
