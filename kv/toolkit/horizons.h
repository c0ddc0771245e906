// Typed functions for the artificial horizons of a dialog (kv/controls/horizon/horizon.h), selected by control id.
// Changes are painted at once. All functions return 0 and change nothing when the dialog has no horizon with that id or
// a number is not finite. Main thread only.
#pragma once

#include <windows.h>

namespace kv {

// In degrees: nose up, right wing down and clockwise from north are positive. A `slip` of 1 moves its mark by the
// mark's width.
struct Attitude {
  double pitch = 0, roll = 0, slip = 0, heading = 0;
};
BOOL SetHorizonAttitude(HWND dialog, int id, const Attitude& attitude, BOOL animate);
// Shows that there is no value.
BOOL ClearHorizonAttitude(HWND dialog, int id);

}  // namespace kv
