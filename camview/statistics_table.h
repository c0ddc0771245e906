// The figures of the line as text, and the rows of the table of statistics, one for each channel. Main thread only.
#pragma once

#include <windows.h>

#include <string>

#include "camera/line_model.h"
#include "camview/statistics.h"
#include "camview/status_line.h"

namespace camview {

// Returns "9,300 records, 93.0 a second; about 20 lost (18 to 22)".
std::wstring CountsAsText(const camera::LineFigures& line);
// Returns "2 silences, 6.000 s (6.0 %), longest 4.000 s at 0:20.0".
std::wstring SilencesAsText(const camera::LineFigures& line);
// Describes both in short: "about 20 lost; 2 silences, 6.0 s"; "" when there are no such figures. A warning if records
// are certainly lost, or if there is a silence.
StatusLine DescribeLine(const camera::LineFigures& line);

// Handles WM_DRAWITEM of the list: draws its header or a row. Null: there are no statistics.
void DrawStatisticsRow(const DRAWITEMSTRUCT& item, const SelectionStatistics* statistics);

}  // namespace camview
