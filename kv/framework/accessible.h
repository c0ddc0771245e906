// Accessibility of controls that draw themselves: a role, a name and a value as text. A control returns from
// WM_GETOBJECT an IAccessible that implements these three; everything else (location, state, parent) comes from the
// system's standard object for the window. The window's text does not change. The system's accessibility library is
// loaded with the first request. Call from the thread that owns the window.
#pragma once

#include <windows.h>

#include <string>

namespace kv {

struct AccessibleText {
  std::wstring name, value;  // empty: none
};

// Describes the current state of a control. `window` exists. Called for each request.
using DescribeControl = AccessibleText (*)(HWND window);

// Returns the result of WM_GETOBJECT for a control of this role (ROLE_SYSTEM_... of <oleacc.h>). Requests for other
// parts of the window go to DefWindowProcA.
LRESULT HandleGetObject(HWND window, WPARAM wParam, LPARAM lParam, LONG role, DescribeControl describe);

// Returns the window's text, up to 255 characters, for controls that use it as their name.
std::wstring WindowText(HWND window);

// Notifies screen readers that the value has changed. Costs little when none runs.
void NotifyValueChanged(HWND window);

}  // namespace kv
