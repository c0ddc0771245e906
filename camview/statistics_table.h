// The rows of the table of statistics, one for each channel. Main thread only.
#pragma once

#include <windows.h>

#include "camview/statistics.h"

namespace camview {

// Handles WM_DRAWITEM of the list: draws its header or a row. Null: there are no statistics.
void DrawStatisticsRow(const DRAWITEMSTRUCT& item, const SelectionStatistics* statistics);

}  // namespace camview
