// Finds truncated texts of a dialog's controls, and shows them as tooltips. Private to the toolkit and tests. Main
// thread only.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace kv {

struct DialogState;

inline constexpr int kMaxTipPx = 400;  // longer texts have several lines

// The first truncated text of a control of a standard class (label, button, combo box, list box, tab control, list
// view's header) in its current font; empty when no text is truncated or the control has another class.
std::wstring TruncatedTextOf(HWND control);

// Appends all texts that DrawFitted of appearance.h truncates to `texts`, until called with null.
void CollectTruncatedTexts(std::vector<std::wstring>* texts);

// The tooltip window for truncated labels and buttons of a dialog. Create it when the dialog has its controls, and call
// MoveTextTips when they have moved. It requests texts with TTN_GETDISPINFOW, see ProvideTextTip.
HWND CreateTextTips(HWND dialog);
void MoveTextTips(HWND dialog, HWND tips);

// Handles TTN_GETDISPINFOW of that window: returns the control's text if it is truncated and the control has no other
// tooltip.
void ProvideTextTip(const DialogState& state, LPARAM lParam);

}  // namespace kv
