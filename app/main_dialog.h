// The main dialog "DLG_MAIN": a toolbar with the connect button, the chart on a tab page, and a status bar with the
// port and the four points. It starts the reader thread, connects and disconnects, passes new points to the chart every
// 50 ms, blinks status buttons every 250 ms, and shuts down the camera link when it closes. Main thread only.
#pragma once

#include <windows.h>

#include "app/app_context.h"

namespace kv {

inline constexpr wchar_t kMainDialogTemplate[] = L"DLG_MAIN";
inline constexpr char kMainPositionName[] = "Tarnwick.Main";

inline constexpr UINT_PTR kPointsTimer = 1, kBlinkTimer = 2;
inline constexpr UINT kPointsPeriodMs = 50, kBlinkPeriodMs = 250;

// dwButtonFlags: bit kBlinkFlagShift + i makes status button i (0..4) blink; the top bit is the phase.
inline constexpr int kBlinkFlagShift = 24;
inline constexpr DWORD kBlinkPhase = 0x80000000;

// The commands of framework menus.
inline constexpr UINT kMenuCommandFirst = 32768, kMenuCommandLast = 33767;

// Dialog procedure; the creation parameter is the AppContext, which must outlive the dialog. Closing posts the quit
// message and does not destroy the window, which exists until the process ends.
INT_PTR CALLBACK MainDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace kv
