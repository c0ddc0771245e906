// Numbers of the page "Optical flow chart". Read by the resource compiler: plain #defines only.
#pragma once

#define IDC_CHART_VIEW 1200
#define IDC_CHART_POINT 1201  // four of them
#define IDC_CHART_PLACE 1205  // four of them
#define IDC_CHART_PAUSE 1210
#define IDC_CHART_CLEAR 1211
#define IDC_CHART_COPY 1212
#define IDC_CHART_RESULT 1213
#define IDC_CHART_LABEL 1214

#define IDS_CHART_NOTHING_COPIED 1200
#define IDS_CHART_COPIED 1201
#define IDS_CHART_NOT_COPIED 1202
