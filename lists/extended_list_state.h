// What the extended list keeps for a window, for the files of this folder only.
#pragma once

#include <windows.h>

namespace kv {

struct ListState {
  HGLOBAL hMemory;
  HWND hParent;  // the one at creation; receives the measure and draw requests
  UINT nControlId;
  DWORD dwRowCount;
  BOOL bDirty;      // the surface must be redrawn before it is shown
  BOOL bRedrawing;  // the parent is being asked for rows
  LONG nRowHeight;  // as last measured
  SIZE surfaceSize;
  HBITMAP hSurface;  // null until a paint needs it, and while it is drawn into
  LONG nHorizontalOffset;
  LONG nVerticalOffset;
  // Written by lists/list_navigation.cpp; all 0 and of no effect without it.
  BOOL bNavigated;
  BOOL bSelected;
  DWORD dwSelectedRow;
  LONG nExtent;  // the surface is as wide as the window, but at least this
  BOOL bHeaderPressed;
  LONG nHeaderPressX;  // in the surface, of the last press on the header
  int nWheelRest[2];   // turned but not yet scrolled: vertical, horizontal
};

// The record of a list. Null for any other window, and for a list that is being destroyed. Whatever may reach the
// parent (a message to it, a repaint, a bar that appears) may end in the list's destruction, so the record is fetched
// again after each such call.
ListState* ListStateOf(HWND window);

// Asks the parent for the height of a row.
void MeasureListRows(HWND list);

// Changes the width of the surface, which must then be redrawn.
void SetListSurfaceWidth(ListState& state, LONG width);

void UpdateListBars(HWND list);

}  // namespace kv
