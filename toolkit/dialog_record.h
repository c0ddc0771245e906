// What the toolkit keeps for an open dialog, for the files of this folder only.
#pragma once

#include <windows.h>

#include <vector>

#include "framework/dialog_layout.h"
#include "framework/guards.h"
#include "toolkit/scaled_dialog.h"

namespace kv {

// Belongs to its window, from WM_INITDIALOG to WM_NCDESTROY.
struct DialogRecord {
  ScaledDialog what;
  bool isModal;
  WNDPROC classProcedure;
  std::vector<LayoutSlot> slots;
  DialogScale scale{1, 1};
  SIZE smallest;
  OwnedBrush background;         // null: the system's
  std::vector<OwnedFont> fonts;  // the controls' last ones, once the dialog is being destroyed
  HWND tips;
};

// Null for a window that is no dialog of the toolkit.
DialogRecord* DialogRecordOf(HWND dialog);

// Sets what the dialog shows in the language of the process, and tells its procedure.
void ShowLanguage(HWND dialog, DialogRecord& record);

// The template's texts, in English where the language lacks the template.
void SetTextsOfLanguage(HWND dialog, const wchar_t* templateName);

}  // namespace kv
