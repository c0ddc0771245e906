// Whether the texts of a dialog's controls find room. For the files of this folder, and for tests. Main thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kv {

struct DialogState;

// The first text of a control of a standard class (label, button, combo box, list box, tab control, list view's header)
// that is cut at its place, in the font that it has; empty when all are whole or the control is of another class.
std::wstring TruncatedTextOf(HWND control);

// From now on the texts that DrawFitted of appearance.h cuts are added to `texts`; with null no longer.
void CollectTruncatedTexts(std::vector<std::wstring>* texts);

// The tool tip window of a dialog that shows the whole text of a label or button where its place cuts it. Made when the
// dialog has its controls; tell it when they have moved. It asks the dialog by WM_NOTIFY, see ProvideTextTip.
HWND CreateTextTips(HWND dialog);
void MoveTextTips(HWND dialog, HWND tips);

// What the dialog does with that window's TTN_GETDISPINFOW: gives it the text if that is cut, and the control has no
// tip of its own.
void ProvideTextTip(const DialogState& state, LPARAM lParam);

}  // namespace kv
