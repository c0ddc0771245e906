// Numbers of the page "Overview". Read by the resource compiler: plain #defines only.
#pragma once

#include "gallery/resource_ids.h"

#define IDC_OVERVIEW_FIRST (IDC_PAGE_FIRST + 0)
#define IDC_OVERVIEW_TEXT (IDC_OVERVIEW_FIRST + 0)
#define IDC_OVERVIEW_INDEX (IDC_OVERVIEW_FIRST + 1)

#define IDS_OVERVIEW_FIRST (IDS_PAGE_FIRST + 0)
#define IDS_OVERVIEW_TEXT (IDS_OVERVIEW_FIRST + 0)
