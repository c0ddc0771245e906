// Numbers of the page "Extended list". Read by the resource compiler: plain #defines only.
#pragma once

#include "gallery/resource_ids.h"

#define IDC_LIST_BASE (IDC_PAGE_FIRST + 500)
#define IDS_LIST_BASE (IDS_PAGE_FIRST + 500)

#define IDC_LIST_LIST (IDC_LIST_BASE + 0)
#define IDC_LIST_COUNT (IDC_LIST_BASE + 1)
#define IDC_LIST_HEIGHT (IDC_LIST_BASE + 2)
#define IDC_LIST_FIRST (IDC_LIST_BASE + 3)
#define IDC_LIST_MIDDLE (IDC_LIST_BASE + 4)
#define IDC_LIST_LAST (IDC_LIST_BASE + 5)
#define IDC_LIST_COST (IDC_LIST_BASE + 6)
#define IDC_LIST_LABEL (IDC_LIST_BASE + 10)

#define IDS_LIST_COST (IDS_LIST_BASE + 0)
#define IDS_LIST_CELL (IDS_LIST_BASE + 1)
#define IDS_LIST_COLUMN (IDS_LIST_BASE + 10)  // one for each column
