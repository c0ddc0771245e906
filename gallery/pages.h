// The gallery's pages: dialogs of the toolkit (toolkit/pages.h), each with a template and a dialog procedure of its own
// in gallery/pages/NAME_page.cpp and NAME_page.rc. Controls have ids in the page's range (resource_ids.h), and are
// about 400 x 290 dialog units together. A page is made when it is first shown; while it is not shown it may rest. Main
// thread only.
#pragma once

#include <windows.h>

#include <span>
#include <string>

#include "framework/bounded_format.h"
#include "toolkit/languages.h"
#include "toolkit/scaled_dialog.h"

namespace gallery {

struct Page {
  const char* name;  // stable, for the command line and for file names of pictures
  kv::ScaledDialog dialog;
};

// In the order of the list.
std::span<const Page> AllPages();

// The index of a page by name; -1 when there is none.
int PageIndex(const wchar_t* name);

// Text resource `id` with values put in, as FormatBounded does it; cut at 1,000 characters.
template <class... Values>
std::wstring TextWith(UINT id, Values... values) {
  wchar_t text[1000];
  kv::FormatBounded(text, sizeof(text), kv::ResourceText(id).c_str(), values...);
  return text;
}

// Shows text resource `textId` in a control of a page.
void SetPageText(HWND page, int controlId, UINT textId);

// The first page: what the gallery shows and how to use it.
INT_PTR CALLBACK OverviewPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Proportional scaling, tool tips, trackbar ticks, scroll bar, the window store, the calendar.
INT_PTR CALLBACK DialogServicesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The tool's chart, with four points on courses of their own in place of a camera.
INT_PTR CALLBACK ChartPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Pictures as they are, transparent, squared and chosen by name; clicks that fall through to the controls beneath; and
// a log of what the page is told.
INT_PTR CALLBACK BitmapPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The display instruments: all layouts live on a simulated flight, their states, and how small they may be.
INT_PTR CALLBACK InstrumentsPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// A flight deck: horizon, compass and gauges, and a strip chart of the same simulated flight.
INT_PTR CALLBACK FlightDeckPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// Ten million camera records that nobody stores, in columns wider than the window, drawn by the page as they come into
// view.
INT_PTR CALLBACK ListPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The mesh page: a multirotor drawn from the mesh model, turned by a timer and by the mouse.
INT_PTR CALLBACK MeshPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The capture page: the picture of the first capture device that answers, live and recorded to a file, or the plain
// word that none did.
INT_PTR CALLBACK CapturePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The flight export: a sample flight, handed to a flight track view and exported as KML and as waypoints.
INT_PTR CALLBACK FlightPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// A simulated boat's position as NMEA text in a terminal, and the maker's web pages.
INT_PTR CALLBACK NmeaPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The link to the spreadsheet program with its state, and a conversation with a DDE server of the user's choice.
INT_PTR CALLBACK DdePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The page of languages with their files, choosing one, and trying out which words mean yes.
INT_PTR CALLBACK LanguagePageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The page of notes that are opened and saved through the file dialogs.
INT_PTR CALLBACK FilesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

// The page of the notification icon and notices about USB devices.
INT_PTR CALLBACK NoticesPageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace gallery
