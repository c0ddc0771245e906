// The tool's shared state: everything that start-up, the main dialog and the camera reader thread share, and the stored
// data folder.
//
// Start-up allocates the state zeroed, locks it for the whole run and frees it; all others test with IsBadWritePtr that
// it is writable before use. There is no lock: fields used by both threads are 32-bit words, and their comments say
// which thread writes them. A pair of coordinates may be read half updated; the next record corrects it.
#pragma once

#include <windows.h>

#include "camera/camera_record.h"
#include "kv/framework/dialog_layout.h"

namespace kv {

// Controls that the main dialog scales with its window.
inline constexpr int kScaledIdFirst = 1010;
inline constexpr int kScaledIdLast = 1999;
// Capacity for the dialog's own slot and every control of that range in the template, with spares.
inline constexpr int kLayoutSlots = 64;
inline constexpr int kStatusButtonCount = 1 + kPointCount;

// Handles of the main dialog's children: looking one up by id is a system call each time.
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
  HANDLE hQuitEvent;    // manual reset; signaled at shutdown, and ends the reader thread
  float fScaleX, fScaleY;
  LayoutSlot layout[kLayoutSlots];  // design rectangles; slot 0 is the dialog's client rectangle
  LONG nPort;                       // COM port in use, -1 for none
  HANDLE volatile hPort;            // INVALID_HANDLE_VALUE when closed; main thread writes, reader thread reads
  HANDLE hConnectEvent;             // manual reset; signaled at every disconnect; no thread waits for it
  HANDLE hReaderThread;
  DWORD dwReaderThreadId;
  DWORD volatile bChanged;  // set by the reader thread, cleared by the main thread after it has copied the points
  wchar_t szDataFolder[MAX_PATH];   // stored between runs; otherwise unused
  CameraPoint points[kPointCount];  // latest points; written by the reader thread only; zero until the first record
  MainControls controls;            // set when the dialog is created
  HBITMAP hToolbarStrip;            // the toolbar's own images, on the color of buttons
};

// Returns true if all of `context` is readable and writable.
inline bool IsContextUsable(AppContext* context) {
  return !IsBadWritePtr(context, sizeof(AppContext));
}

// Loads (`save` 0) or saves the data folder. Loading does not change the field when nothing is stored or the stored
// text does not fit 128 characters with its terminator. Returns 0 only for an unusable context; registry failures are
// ignored.
BOOL DataFolderSetting(AppContext* context, BOOL save);

}  // namespace kv
