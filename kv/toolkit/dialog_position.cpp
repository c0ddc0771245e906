// Where the toolkit's dialogs were: position, size and maximized state.
#include <windows.h>

#include "kv/framework/window_position.h"
#include "kv/toolkit/dialog_state.h"
#include "kv/toolkit/scaled_dialog.h"

namespace kv {

void RestorePosition(HWND dialog, const DialogState& state) {
  const ScaledDialog& options = state.options;
  if (options.positionName) WindowPosition(dialog, options.positionName, kPositionRestore);
  if (state.kind == DialogKind::kModal) PlaceOverOwner(dialog);
  KeepInSight(dialog, state.minimumSize);
  DWORD maximized = FALSE;
  if (options.maximizedName) WindowNumber(options.maximizedName, &maximized, kPositionRestore);
  if (maximized) ShowWindow(dialog, SW_MAXIMIZE);
}

// Also of a maximized or minimized window, which WindowPosition would not save.
void SavePosition(HWND dialog, const ScaledDialog& options) {
  DWORD maximized = IsZoomed(dialog) != FALSE;
  if (options.maximizedName && !IsIconic(dialog)) WindowNumber(options.maximizedName, &maximized, kPositionSave);
  if (!options.positionName || WindowPosition(dialog, options.positionName, kPositionSave)) return;
  WINDOWPLACEMENT placement{.length = sizeof(placement)};
  MONITORINFO monitor{.cbSize = sizeof(monitor)};
  if (!GetWindowPlacement(dialog, &placement) ||
      !GetMonitorInfoW(MonitorFromWindow(dialog, MONITOR_DEFAULTTONEAREST), &monitor))
    return;
  // It is relative to the monitor's work area.
  RECT& normal = placement.rcNormalPosition;
  OffsetRect(&normal, monitor.rcWork.left - monitor.rcMonitor.left, monitor.rcWork.top - monitor.rcMonitor.top);
  StorePosition(options.positionName, normal);
}

}  // namespace kv
