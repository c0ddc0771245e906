// The state of an extended list, for this folder only.
#pragma once

#include <windows.h>

namespace kv {

struct ListState {
  HGLOBAL hMemory;
  HWND hParent;  // at creation; receives WM_MEASUREITEM and WM_DRAWITEM
  UINT nControlId;
  DWORD dwRowCount;
  BOOL bDirty;      // the surface must be redrawn before it is shown
  BOOL bRedrawing;  // the parent is drawing rows
  LONG nRowHeight;  // as last measured
  SIZE surfaceSize;
  DWORD dwLayout;    // of the surface, when it was drawn (GetLayout)
  HBITMAP hSurface;  // null until the first paint, and while it is drawn into
  LONG nHorizontalOffset;
  LONG nVerticalOffset;
  // Written by kv/lists/list_navigation.cpp; all 0 and unused without it.
  BOOL bNavigated;
  BOOL bSelected;
  DWORD dwSelectedRow;
  LONG nExtent;  // minimum width of the surface, which otherwise has the window's
  BOOL bHeaderPressed;
  LONG nHeaderPressX;  // x in the surface of the last click on the header
  int nWheelRest[2];   // wheel deltas below one step: vertical, horizontal
};

// Returns the state of a list; null for other windows and while the list is being destroyed. Everything that may reach
// the parent (a message, a repaint, a bar that appears) may destroy the list, so get the state again after each such
// call.
ListState* ListStateOf(HWND window);

// Requests the height of a row from the parent.
void MeasureListRows(HWND list);

// Changes the width of the surface, which must then be redrawn.
void SetListSurfaceWidth(ListState& state, LONG width);

void UpdateListBars(HWND list);

}  // namespace kv
