// The tool's one record: all run-time state that start-up, the main dialog and the camera reader thread share, and the
// one setting that is kept between runs.
//
// Start-up allocates it zeroed, keeps it locked for the whole run and frees it; everybody else tests with IsBadWritePtr
// that all of it is writable before use. There is no lock: fields that two threads touch are plain 32-bit words, and
// each says below who writes it. A pair of coordinates may be read half-updated; it is shown right one record later.
#pragma once

#include <windows.h>

#include "app/camera_record.h"
#include "framework/dialog_layout.h"

namespace kv {

// Controls that the main dialog scales with its window.
inline constexpr int kScaledIdFirst = 1010;
inline constexpr int kScaledIdLast = 1999;
// Room for the dialog's own slot and every control in that range that the template has, with spares.
inline constexpr int kLayoutSlots = 64;
inline constexpr int kStatusButtonCount = 1 + kPointCount;

// The main dialog's children, as handles: looking one up by its id costs a call into the system each time.
struct MainControls {
  HWND toolbar, chart, pages, statusBar;
  HWND statusButtons[kStatusButtonCount];  // the port, then the points
};

struct AppContext {
  HGLOBAL hMemory;      // this block's own handle (start-up)
  HWND hDlg;            // the main dialog
  LONG nMenuSelection;  // last framework menu command, counted from 0
  LONG nTabPage;        // current tab page, -1 before the first selection
  DWORD nTabGroup;      // control group that this page shows, 0..7
  DWORD bPaused;        // the display is paused
  DWORD bConnected;     // 1 after a successful connect, 0 after any disconnect
  DWORD dwButtonFlags;  // bits 24..28: status button 1..5 blinks; bit 31: the blink phase
  HANDLE hQuitEvent;    // manual reset; signalled once, at shutdown; the reader thread's only reason to end
  float fScaleX, fScaleY;
  LayoutSlot layout[kLayoutSlots];  // design rectangles; slot 0 is the dialog's client rectangle
  LONG nPort;                       // COM port in use, -1 for none
  HANDLE volatile hPort;            // INVALID_HANDLE_VALUE when closed; main thread writes, reader thread reads
  HANDLE hConnectEvent;             // manual reset; signalled at every disconnect; nobody waits on it
  HANDLE hReaderThread;
  DWORD dwReaderThreadId;
  DWORD volatile bChanged;          // reader thread sets, main thread clears after it took the points
  wchar_t szDataFolder[MAX_PATH];   // kept between runs and otherwise unused
  CameraPoint points[kPointCount];  // latest points; only the reader thread writes; zero until the first record
  MainControls controls;            // found once, when the dialog is made
  HBITMAP hToolbarStrip;            // the toolbar's own images, on the button face
};

// True if all of `context` may be read and written.
inline bool IsContextUsable(AppContext* context) {
  return !IsBadWritePtr(context, sizeof(AppContext));
}

// Loads (save = 0) or saves the data folder. Loading leaves the field alone when nothing is stored or when the stored
// text does not fit 128 characters with its terminator. Returns 0 only for an unusable record; registry failures are
// silent.
BOOL DataFolderSetting(AppContext* context, BOOL save);

}  // namespace kv
