// What a screen reader is told about a control that draws itself: a role, a name and a value as text. The control
// answers WM_GETOBJECT with an IAccessible that gives these three and leaves all else (place, state, parent) to the
// system's own object for the window. The window's text stays what it is. The system's accessibility library is loaded
// when somebody asks, not before. On the thread that owns the window.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

struct AccessibleText {
  std::wstring name, value;  // empty: there is none
};

// Describes a control as it is now; `window` exists. Called for every question.
using DescribeControl = AccessibleText (*)(HWND window);

// The result of WM_GETOBJECT for a control of this role (ROLE_SYSTEM_... of <oleacc.h>); what is asked for other parts
// of the window goes to DefWindowProcA.
LRESULT HandleGetObject(HWND window, WPARAM wParam, LPARAM lParam, LONG role, DescribeControl describe);

// The window's own text, up to 255 characters, for controls whose host names them by it.
std::wstring WindowText(HWND window);

// Tells screen readers that the value is another; costs little when there are none.
void NotifyValueChanged(HWND window);

}  // namespace kv
