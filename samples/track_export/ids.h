#pragma once

#define IDC_KML 101
#define IDC_WAYPOINTS 102
#define IDC_SPREADSHEET 103
#define IDC_STATUS 104
