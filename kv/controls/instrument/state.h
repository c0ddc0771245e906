// The state of a display instrument's window. Private to the control and its tests; programs use the messages of
// kv/controls/display_instrument.h.
#pragma once

#include <windows.h>

#include <cstddef>

#include "kv/controls/instrument/layout.h"
#include "kv/controls/instrument_block.h"

namespace kv {

struct InstrumentCache;

// The control's rendering state.
struct InstrumentWork {
  InstrumentCache* cache;  // owned; null when allocation failed, then nothing is rendered
  BOOL bBackgroundDrawn;   // the cache contains the background of `appearance`
  InstrumentAppearance appearance;
  DWORD renderings;  // the number of renderings of the back buffer; wraps
  BOOL bExact;       // the running animation ends at the target itself
  BYTE free[3512];
};

struct InstrumentState {
  HGLOBAL hMemory;  // of this block
  HINSTANCE hInstance;
  HWND hWnd, hParent;
  LONG nId;
  DWORD dwStyle;         // the window's style at creation, changed only by messages
  BOOL bRedraw;          // the back buffer is out of date
  BOOL bAnimating;       // timer 5 is running
  LONG nCountdown;       // ticks until an animation that has reached its target stops
  LONG nWidth, nHeight;  // of the back buffer, in pixels
  HBITMAP hBuffer;       // a top-down 32-bit section; null when the client area is empty
  InstrumentBlock block;
  float target;  // the target of the animation
  SYSTEMTIME time;
  char szText[256];  // the last WM_SETTEXT; the first 32 bytes are the text of a digital readout
  InstrumentWork work;
};
static_assert(sizeof(InstrumentState) == 4936);
static_assert(offsetof(InstrumentState, hInstance) == 4 && offsetof(InstrumentState, hWnd) == 8 &&
              offsetof(InstrumentState, hParent) == 12 && offsetof(InstrumentState, nId) == 16 &&
              offsetof(InstrumentState, dwStyle) == 20 && offsetof(InstrumentState, bRedraw) == 24 &&
              offsetof(InstrumentState, bAnimating) == 28 && offsetof(InstrumentState, nCountdown) == 32 &&
              offsetof(InstrumentState, nWidth) == 36 && offsetof(InstrumentState, hBuffer) == 44 &&
              offsetof(InstrumentState, block) == 48 && offsetof(InstrumentState, target) == 560 &&
              offsetof(InstrumentState, time) == 564 && offsetof(InstrumentState, szText) == 580 &&
              offsetof(InstrumentState, work) == 836);

}  // namespace kv
