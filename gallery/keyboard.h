// The gallery's messages, and its keys beyond those that the dialog manager knows. Main thread only.
//
//   F6, Ctrl+Tab  from the list of pages into the page and back
//   Tab           goes on also from an edit control that would keep it
//   Enter         presses the button that has the focus, and opens the row of a list (as a double click on it does)
//
// The wheel turns what is under the mouse. Keys for a control that has been hidden or disabled under the focus go to
// the list of pages: the dialog manager's search for an Alt key must never begin at a control that it does not come
// back to.
#pragma once

#include <windows.h>

namespace gallery {

// What the loop does with each message that it has taken, with GetMessageW: the gallery speaks Unicode. So it does not
// ask the framework's table of modeless dialogs, which offers messages as 8-bit ones and turns a letter that the code
// page lacks into a question mark.
void Dispatch(HWND frame, MSG* message);

// Gives the focus to the first control of the page that takes it. False when there is none.
bool FocusPage(HWND page);

}  // namespace gallery
