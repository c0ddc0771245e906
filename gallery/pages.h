// The gallery's pages: dialogs of the toolkit (kv/toolkit/pages.h), each with a template and a dialog procedure in
// gallery/pages/NAME_page.cpp and NAME_page.rc. The ids of controls are in the page's range (resource_ids.h); a page is
// about 400 x 290 dialog units. A page is created when it is first shown, and may pause while it is hidden. Main thread
// only.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <string_view>

#include "kv/toolkit/scaled_dialog.h"

namespace gallery {

struct Page {
  const char* name;  // stable; for the command line and file names of screenshots
  kv::ScaledDialog dialog;
};

// In the order of the list.
std::span<const Page> AllPages();

// Returns the index of a page by name; -1 when there is none.
int PageIndex(std::string_view name);

// Returns the names of all pages, separated by blanks.
std::wstring PageNames();

inline constexpr UINT kChartTickMs = 50;  // as in the tool

// The first page: an overview of the gallery and how to use it.
INT_PTR CALLBACK OverviewPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Proportional scaling, tooltips, trackbar ticks, scroll bar, stored window positions, the calendar.
INT_PTR CALLBACK DialogServicesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The tool's chart, with four simulated points.
INT_PTR CALLBACK ChartPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The bitmap control: unscaled, transparent, square and selected by name; clicks that are forwarded to the controls
// behind it; and a log of notifications.
INT_PTR CALLBACK BitmapPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The display instruments: all modes with a simulated flight, their states, and their minimum sizes.
INT_PTR CALLBACK InstrumentsPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Horizon, compass, gauges and a strip chart of the same simulated flight.
INT_PTR CALLBACK FlightDeckPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The extended list: ten million camera records that are not stored, in columns wider than the window, drawn when they
// become visible.
INT_PTR CALLBACK ListPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The mesh model: a multirotor, rotated by a timer and by the mouse.
INT_PTR CALLBACK MeshPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Video capture: live frames of the first working capture device, recorded to a file, or a message that there is none.
INT_PTR CALLBACK CapturePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Flight export: a sample flight in a flight track view, exported as KML and as waypoints.
INT_PTR CALLBACK FlightPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// NMEA: a simulated boat's position as text in a terminal, and the vendor's web pages.
INT_PTR CALLBACK NmeaPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// DDE: the link to the spreadsheet program with its state, and a conversation with any DDE server.
INT_PTR CALLBACK DdePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Languages: their files, switching the language, and words that mean yes.
INT_PTR CALLBACK LanguagePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// File dialogs: notes that are opened and saved.
INT_PTR CALLBACK FilesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The notification icon, and notifications about USB devices.
INT_PTR CALLBACK NoticesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
