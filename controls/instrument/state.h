// The state record of a display instrument's window. Private to the control and its tests; owners use the messages of
// controls/display_instrument.h.
#pragma once

#include <windows.h>

#include <cstddef>

#include "controls/instrument/layout.h"
#include "controls/instrument_block.h"

namespace kv {

struct InstrumentCache;

// What the control keeps between two renderings.
struct InstrumentWork {
  InstrumentCache* cache;  // owned; null when memory is short, and then nothing is rendered
  BOOL bBackgroundDrawn;   // the cache has the background of `appearance`
  InstrumentAppearance appearance;
  DWORD renderings;  // how often the back buffer was rendered, wrapping
  BOOL bExact;       // the glide under way ends at the target itself
  BYTE free[3516];
};

struct InstrumentState {
  HGLOBAL hMemory;  // of this record
  HINSTANCE hInstance;
  HWND hWnd, hParent;
  LONG nId;
  DWORD dwStyle;         // the window's style at creation, changed only by messages
  BOOL bRedraw;          // the back buffer is out of date
  BOOL bGliding;         // timer 5 runs
  LONG nCountdown;       // ticks until a glide that has arrived stops
  LONG nWidth, nHeight;  // of the back buffer, in pixels
  HBITMAP hBuffer;       // a top-down 32-bit section; null when the client area is empty
  InstrumentBlock block;
  float target;  // where the displayed value glides to
  SYSTEMTIME time;
  char szText[256];  // last WM_SETTEXT; the digital readout stores what it shows in the first 32 bytes
  InstrumentWork work;
};
static_assert(sizeof(InstrumentState) == 4936);
static_assert(offsetof(InstrumentState, hInstance) == 4 && offsetof(InstrumentState, hWnd) == 8 &&
              offsetof(InstrumentState, hParent) == 12 && offsetof(InstrumentState, nId) == 16 &&
              offsetof(InstrumentState, dwStyle) == 20 && offsetof(InstrumentState, bRedraw) == 24 &&
              offsetof(InstrumentState, bGliding) == 28 && offsetof(InstrumentState, nCountdown) == 32 &&
              offsetof(InstrumentState, nWidth) == 36 && offsetof(InstrumentState, hBuffer) == 44 &&
              offsetof(InstrumentState, block) == 48 && offsetof(InstrumentState, target) == 560 &&
              offsetof(InstrumentState, time) == 564 && offsetof(InstrumentState, szText) == 580 &&
              offsetof(InstrumentState, work) == 836);

}  // namespace kv
