// Whether the texts of a page's controls find room. Main thread only.
#pragma once

#include <windows.h>

#include <string>

namespace gallery {

// The first text of a control of a standard class (label, button, combo box, list box, tab control, list view's header)
// that is cut at its place, in the font that it has; empty when all are whole or the control is of another class.
std::wstring CutTextOf(HWND control);

// The tool tip window of a page that shows the whole text of a label or button where its place cuts it. Made when the
// page has its controls; tell it when they have moved. It asks the page by WM_NOTIFY, see AnswerTextTip.
HWND CreateTextTips(HWND page);
void MoveTextTips(HWND page, HWND tips);

// The page's answer to that window's TTN_GETDISPINFOW: gives it the text if that is cut. Always true.
bool AnswerTextTip(HWND page, LPARAM lParam);

}  // namespace gallery
