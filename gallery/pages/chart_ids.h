// Numbers of the page "Optical flow chart". Read by the resource compiler: plain #defines only.
#pragma once

#include "gallery/resource_ids.h"

#define IDC_CHART_FIRST (IDC_PAGE_FIRST + 200)
#define IDS_CHART_FIRST (IDS_PAGE_FIRST + 200)

#define IDC_CHART_VIEW (IDC_CHART_FIRST + 0)
#define IDC_CHART_POINT (IDC_CHART_FIRST + 1)  // four of them
#define IDC_CHART_PLACE (IDC_CHART_FIRST + 5)  // four of them
#define IDC_CHART_PAUSE (IDC_CHART_FIRST + 10)
#define IDC_CHART_CLEAR (IDC_CHART_FIRST + 11)
#define IDC_CHART_COPY (IDC_CHART_FIRST + 12)
#define IDC_CHART_RESULT (IDC_CHART_FIRST + 13)
#define IDC_CHART_LABEL (IDC_CHART_FIRST + 14)

#define IDS_CHART_NOTHING_COPIED (IDS_CHART_FIRST + 0)
#define IDS_CHART_COPIED (IDS_CHART_FIRST + 1)
#define IDS_CHART_NOT_COPIED (IDS_CHART_FIRST + 2)
#define IDS_CHART_POSITION (IDS_CHART_FIRST + 3)
