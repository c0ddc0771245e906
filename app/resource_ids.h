// Numbers shared by the tool's code and resource script. The resource compiler reads this file, so it contains only
// #defines.
#pragma once

#define IDI_PROGRAM 1
#define IDI_PROGRAM_SMALL 2
#define IDB_TOOLBAR 2
#define IDI_MARKER_1 1000
#define IDI_MARKER_2 1001
#define IDI_MARKER_3 1002
#define IDI_MARKER_4 1003

#define IDC_TOOLBAR 1001
#define IDC_VERSION 1011
#define IDC_PAGES 1013
#define IDC_CHART 1100
#define IDC_STATUS_BAR 9001
#define IDC_PORT 9002
#define IDC_POINT_1 9003
#define IDC_POINT_2 9004
#define IDC_POINT_3 9005
#define IDC_POINT_4 9006

#define IDM_CLOSE 105
#define IDM_ABOUT 902
#define IDM_WEB_SITE 903
#define IDM_CONNECT 3002
#define IDM_RESERVED 3003
#define IDM_PAUSE 3004
