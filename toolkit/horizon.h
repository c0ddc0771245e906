// Typed access to the artificial horizons of a dialog (controls/horizon/horizon.h), by the id of the control. Each call
// paints a change at once, and returns 0, with nothing changed, when the dialog has no horizon of that id or a number
// is not finite. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// Degrees: nose up, right wing down and clockwise from north are positive. `slip` 1 is the width of its mark.
struct Attitude {
  double pitch = 0, roll = 0, slip = 0, heading = 0;
};
BOOL SetHorizonAttitude(HWND dialog, int id, const Attitude& attitude, BOOL glide);
// Shows that there is no value.
BOOL ClearHorizonAttitude(HWND dialog, int id);

}  // namespace kv
