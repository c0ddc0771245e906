// Window class "kvDistribution": four panels, one for each point, that show how often it was where.
//
// Styles      0: scatter plots of the places. kDistributionOfX, kDistributionOfY: histograms of a coordinate. The control
//             reads the style when it is used.
// Appearance  Each panel has the range of its values. In a scatter plot, x and y have the same scale, y increases
//             downwards as in the field, the shade of a cell is the logarithm of its count, and a cross marks the mean,
//             with arms of a standard deviation. A histogram has the highest count at its axis, a line at the mean and
//             dashed ones a standard deviation beside it. A cell is a value, or several in a range that is wider than the
//             panel. In high contrast there are no colors but the system's. Not mirrored in mirrored windows.
// Keyboard    1-4 shows a point alone, 0 or Escape all of them. Of one alone, the arrow keys, Home and End move the
//             cursor, which reads the count of a cell; Escape removes it. Ctrl+C copies.
// Mouse       The pointer reads a cell; a double click shows a point alone, or all.
// Messages    kControlCommand  DistributionCommand below; returns 1, or 0 without any change when the address or the data
//                              is invalid
//             WM_COPY          puts image and counts on the clipboard: CF_BITMAP as for the field, CF_UNICODETEXT as a
//                              table separated by tabs, with a row for each value or, of places, for each cell that has a
//                              count. Cells are larger if the table would exceed kDistributionMaxRows
//             WM_PRINTCLIENT   draws into the device context in wParam
//             WM_DROPFILES     forwarded to the parent
// Accessible  The name is the window's text. The value is what the cursor or the pointer reads, otherwise the figures of
//             the points.
// Thread      The thread that owns the window.
#pragma once

#include <windows.h>

#include "camera/camera_record.h"
#include "kv/framework/control_class.h"

namespace camview {

inline constexpr char kDistributionClass[] = "kvDistribution";
inline constexpr DWORD kDistributionOfX = 1, kDistributionOfY = 2;
inline constexpr size_t kDistributionMaxRows = 65536;

// Counts of the values from `left`, `top` on, by rows; all within 0..1023. A histogram has one row and the top 0.
struct DistributionCounts {
  LONG left, top;
  DWORD width, height;  // 0: the point was not seen
  const DWORD* counts;  // width * height; copied
};
struct DistributionContent {
  DistributionCounts points[kv::kPointCount];
};

// Operation codes, the low byte of kControlCommand's wParam.
enum DistributionCommand : BYTE {
  kDistributionShow = 18,  // lParam is the address of a DistributionContent; kCommandRedraw repaints at once
};

// Registers (`registerIt` not 0) or unregisters the class. Returns 0 only when registering fails.
BOOL RegisterDistributionClass(HINSTANCE instance, BOOL registerIt);

}  // namespace camview
