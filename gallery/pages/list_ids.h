// Numbers of the page "Extended list". Read by the resource compiler: plain #defines only.
#pragma once

#define IDC_LIST_LIST 1400
#define IDC_LIST_COUNT 1401
#define IDC_LIST_HEIGHT 1402
#define IDC_LIST_FIRST 1403
#define IDC_LIST_MIDDLE 1404
#define IDC_LIST_LAST 1405
#define IDC_LIST_COST 1406
#define IDC_LIST_LABEL 1410

#define IDS_LIST_COST 1400
#define IDS_LIST_COLUMN 1410  // one for each column
