// The list of events in the window, and the commands that go from event to event, copy and export them. Main thread
// only.
#pragma once

#include <windows.h>

#include "camview/event_table.h"
#include "camview/window.h"

namespace camview {

// Draws a row or the header of IDC_EVENTS.
void DrawEventRow(const DRAWITEMSTRUCT& item, const EventTable& events);
// Sets the list's accessible name to its selected row.
void NameEventRow(HWND list, const EventTable& events);
// The number of rows: the events, and one that says how many are not listed.
size_t EventRows(const EventTable& events);

// Goes to the next event, or to the previous one, and says which it is.
void GoToEvent(View& view, bool isForward);
// Handles a notification of the list.
void OnEventList(View& view, UINT code);
// Copies all events as a table.
void CopyEvents(View& view);
// Asks for a file and writes all events to it as comma-separated values.
void ExportEvents(View& view);

}  // namespace camview
